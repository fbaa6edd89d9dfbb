// What must hold for the page's text. Each check throws an error that says what is wrong.

import assert from "node:assert/strict";
import * as acorn from "acorn";
import { full } from "acorn-walk";

/** The engine reads the script, and it makes no code out of text. */
export function checkScript(name, text) {
    const evaluators = new Set(["eval", "Function", "execScript"]);
    const found = [];
    full(acorn.parse(text, { ecmaVersion: 2017, sourceType: "script" }), (node) => {
        const isUse = node.type === "Identifier" && evaluators.has(node.name);
        const isMember =
            node.type === "MemberExpression" &&
            evaluators.has(node.computed ? node.property.value : node.property.name);
        const isConstructor = node.type === "MemberExpression" && isConstructorOfFunction(node);
        const isTimerWithText =
            node.type === "CallExpression" &&
            /^set(Timeout|Interval|Immediate)$/.test(node.callee.name ?? node.callee.property?.name) &&
            ["Literal", "TemplateLiteral"].includes(node.arguments[0]?.type);
        if (isUse || isMember || isConstructor || isTimerWithText)
            found.push(text.slice(Math.max(0, node.start - 40), node.end + 40));
    });
    assert.deepEqual(found, [], `The ${name} script makes code out of text.`);
    assert.doesNotMatch(text, /<!--|<\/?script/i, `The ${name} script would end its element.`);
}

const isConstructorOfFunction = ({ property, computed, object }) =>
    (computed ? property.value : property.name) === "constructor" && /Function|Arrow/.test(object.type);

export const placeholder = "$PDF_URL_PLACEHOLDER";
const maximumLength = 2_500_000;

export function checkPage(text) {
    assert.equal(text.split(placeholder).length, 2, "The page does not hold the place of the document's URL once.");
    const [foreign] = text.match(/.{0,40}[^\x20-\x7e\n].{0,40}/) ?? [];
    assert.equal(foreign, undefined, "The page is not ASCII text.");
    assert.ok(text.length <= maximumLength, `The page has ${text.length} characters, more than ${maximumLength}.`);
    const markup = text.replaceAll(/(<script[^>]*>)[^]*?<\/script>/g, "$1");
    const references = markup.match(/(?:src|href)=[^\s>]*|@import[^;]*|url\((?!["']?data:)[^)]*/g) ?? [];
    assert.deepEqual(references, [], "The page refers to something outside of it.");
}
