// What must hold for the agent's text. Each check throws an error that says what is wrong.

import assert from "node:assert/strict";
import * as acorn from "acorn";
import { modules, rootModule } from "./moduleTable.mjs";

/** The name and the dependencies of each registered module, in the order of their registration. */
function registrations(text) {
    const isRegistration = (statement) =>
        statement.type === "ExpressionStatement" &&
        statement.expression.type === "CallExpression" &&
        statement.expression.callee.type === "MemberExpression" &&
        statement.expression.callee.object.name === "System" &&
        statement.expression.callee.property.name === "register";
    return acorn
        .parse(text, { ecmaVersion: 5 })
        .body.filter(isRegistration)
        .map(({ expression: { arguments: [name, dependencies] } }) => [
            name.value,
            dependencies.elements.map((element) => element.value),
        ]);
}

/** The sources import what the module table says, in its order. */
export function checkModules(text) {
    assert.deepEqual(registrations(text), modules, "The modules are not what build/moduleTable.mjs says.");
}

/** Only the helpers of the prelude are called: the compiler knows others, which nobody would define. */
export function checkHelpers(text) {
    const known = new Set(["__extends", "__awaiter", "__generator", "__moduleName", "__initZarvik"]);
    for (const token of acorn.tokenizer(text, { ecmaVersion: 5 }))
        if (token.type.label === "name" && token.value.startsWith("__") && !known.has(token.value))
            throw new Error(`The compiled sources need the helper ${token.value}; write them without it.`);
}

/** How the plug-in puts the agent into a string literal for the frames of a page. */
export function escapeForFrames(text) {
    return text.replaceAll("\\r", "\\\\r").replaceAll("\\n", "\\\\n").replaceAll("'", "\\'");
}

const start = 'if(typeof Object.assign!="function")';
const end = `System.require("${rootModule}");`;
const maximumLength = 33_000;

/** The finished text is what the engine and the plug-in can take. */
export function checkText(text) {
    acorn.parse(text, { ecmaVersion: 5 });
    assert.ok(text.startsWith(start), `The text does not begin with ${start}`);
    assert.ok(text.endsWith(end), `The text does not end with ${end}`);
    assert.match(text, /^[\x20-\x7e]*$/, "The text is not one line of ASCII characters.");
    assert.ok(!text.includes("\\"), "The text holds a backslash, which does not survive the frame starter's escaping.");
    const literal = `'${escapeForFrames(text)}'`;
    assert.equal((0, eval)(literal), text, "The text does not survive the frame starter's literal.");
    assert.ok(text.length <= maximumLength, `The text has ${text.length} characters, more than ${maximumLength}.`);
}
