// node main.mjs TEXT [SOURCE.cpp DEPENDENCIES.d]
//
// Builds the agent.

import { embedText } from "../../../cmake/embedText.mjs";
import { buildAgent } from "./build.mjs";

/** A source that defines the text as string literals that no compiler finds too long. */
function cppSource(text) {
    const pieces = text.match(/.{1,100}/g).map((piece) => `    "${piece.replaceAll(/["\\]/g, "\\$&")}"`);
    return `#include "agent/AgentScript.h"

static constexpr char text[] =
${pieces.join("\n")};

constinit const std::string_view agentScript{text, sizeof text - 1};
`;
}

await embedText(buildAgent, cppSource);
