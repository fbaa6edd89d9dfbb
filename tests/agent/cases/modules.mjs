import assert from "node:assert/strict";
import { createRequire } from "node:module";
import { test } from "node:test";
import { agentText, openPage, run } from "../support.mjs";

const ts = createRequire(new URL("../../../src/agent/package.json", import.meta.url))("typescript");

test("the module system resolves cycles, externals and imports", async (t) => {
    const page = await openPage(t, "", null);
    await run(page, agentText);
    const log = await page.evaluate(async () => {
        const log = [];
        const define = (name, dependencies) =>
            System.register(name, dependencies, (exportValue, context) => {
                exportValue("early", name);
                return {
                    setters: dependencies.map(
                        (each) => (exports) => log.push(`${name} gets ${each} ${Object.keys(exports)}`),
                    ),
                    execute: () => void (log.push(`${name} runs`), exportValue("late", context)),
                };
            });
        const errorOf = (action) => {
            try {
                action();
            } catch (error) {
                return `${error.name}: ${error.message}`;
            }
        };
        define("a", []);
        define("a", ["b", "external"]);
        define("b", ["a"]);
        System.registerExternal("external", { given: 1 });
        const a = System.require("a");
        log.push(`same ${System.require("a") === a}`);
        log.push(`import ${(await a.late.import("b")) === System.require("b")} ${a.late.id}`);
        log.push(errorOf(() => System.require("toString")));
        return log;
    });
    assert.deepEqual(log, [
        "b gets a early",
        "b runs",
        "a gets b early,late",
        "a gets external given",
        "a runs",
        "same true",
        "import true a",
        "Error: Cannot resolve 'toString'",
    ]);
});

test("a second evaluation keeps the System object and runs everything anew", async (t) => {
    const page = await openPage(t, "", null);
    await run(page, agentText);
    const result = await page.evaluate((text) => {
        const before = [System, System.require, System.require("BaseBridge").default, __initZarvik, __awaiter];
        System.registerExternal("mine", {});
        (0, eval)(text);
        const after = [System, System.require, System.require("BaseBridge").default, __initZarvik, __awaiter];
        let mine = "kept";
        try {
            System.require("mine");
        } catch {
            mine = "gone";
        }
        return [...before.map((value, index) => value === after[index]), mine];
    }, agentText);
    assert.deepEqual(result, [true, false, false, false, true, "gone"]);
});

test("Object.assign is added where it is missing and left alone where it is not", async (t) => {
    const page = await openPage(t, "", null);
    const result = await page.evaluate((text) => {
        const native = Object.assign;
        (0, eval)(text);
        const leftAlone = Object.assign === native;
        delete Object.assign;
        (0, eval)(text);
        const added = Object.assign;
        const { enumerable } = Object.getOwnPropertyDescriptor(Object, "assign");
        const target = { a: 1 };
        const returned = added(target, null, { b: 2 }, undefined, Object.create({ inherited: 3 }), "xy");
        Object.assign = native;
        return { leftAlone, replaced: added !== native, enumerable, returned: returned === target, target };
    }, agentText);
    const target = { 0: "x", 1: "y", a: 1, b: 2 };
    assert.deepEqual(result, { leftAlone: true, replaced: true, enumerable: false, returned: true, target });
});

// Written for any page whose own compiled code finds our helpers; the browser's own generators say what is right.
const generatorProgram = `
    function* outer(log) {
        for (let turn = 0; turn < 3; turn++) {
            try {
                try {
                    if (turn === 1) continue;
                    log.push(yield "o" + turn);
                    if (turn === 2) throw new Error("own");
                } catch (error) { log.push("caught " + error.message); if (turn === 0) yield "from catch"; }
                finally { log.push("finally " + turn); yield "f" + turn; }
            } finally { log.push("outermost " + turn); }
        }
        return "done";
    }
    async function wait(log) {
        try { log.push(await Promise.resolve(1)); await Promise.reject(new Error("no")); }
        catch (error) { log.push(error.message); return "recovered"; }
        finally { log.push("async finally"); }
    }
    class Base {
        constructor(x) { this.x = x; }
        static make() { return new this(5); }
        get twice() { return this.x * 2; }
    }
    class Derived extends Base { say() { return "x" + this.twice; } }
    globalThis.program = async function () {
        const logs = [];
        const moves = [["next"], ["next", "v"], ["throw", new Error("thrown")], ["return", "early"]];
        for (const first of moves) for (const second of moves) for (const third of moves) {
            const log = [];
            const generator = outer(log);
            const next = moves[0];
            for (const [method, value] of [first, second, third, second, next, third, first, next, next, next, next])
                try { const r = generator[method](value); log.push(method + " " + r.value + " " + r.done); }
                catch (error) { log.push("out " + error.message); }
            logs.push(log.join("|"));
        }
        const log = [];
        logs.push(await wait(log), log.join());
        const made = Derived.make();
        logs.push(made.say(), made instanceof Derived && made instanceof Base && made.constructor === Derived);
        try { (function () { const Bad = 3; class X extends Bad {} })(); } catch (error) { logs.push(error.name); }
        return logs;
    };`;

test("the helpers do for compiled code what the engine does for the original", async (t) => {
    const page = await openPage(t, "", null);
    const original = await page.evaluate((code) => ((0, eval)(code), program()), generatorProgram);
    await run(page, agentText);
    const compiled = ts.transpileModule(generatorProgram, {
        compilerOptions: { target: "ES5", module: "None", noEmitHelpers: true },
    }).outputText;
    assert.match(compiled, /__extends\(Derived/);
    assert.match(compiled, /__generator\(this/);
    const ours = await page.evaluate((code) => ((0, eval)(code), program()), compiled);
    assert.deepEqual(ours, original);

    const kept = await page.evaluate((text) => {
        window.__extends = window.__awaiter = window.__generator = () => {};
        const mine = window.__extends;
        try {
            (0, eval)(text);
        } catch {}
        return [__extends, __awaiter, __generator].every((helper) => helper === mine);
    }, agentText);
    assert.ok(kept);
});
