// What the compiler's ES5 output calls. A page compiled the same way may have defined these helpers already, or may
// pick up ours: both are the usual ones.

type Constructor = { new (...args: never[]): object; prototype: object; [member: string]: unknown };

var __extends: (derived: Constructor, base: Constructor | null) => void =
    (this && this.__extends) ||
    (function () {
        function inheritStatics(derived: Constructor, base: Constructor): void {
            if (Object.setPrototypeOf) {
                Object.setPrototypeOf(derived, base);
                return;
            }
            for (const key in base) {
                if (Object.prototype.hasOwnProperty.call(base, key)) {
                    derived[key] = base[key];
                }
            }
        }
        return function (derived: Constructor, base: Constructor | null) {
            if (typeof base != "function" && base !== null) {
                throw new TypeError("Class extends value " + String(base) + " is not a constructor or null");
            }
            inheritStatics(derived, base as Constructor);
            derived.prototype = Object.create(base && base.prototype, {
                constructor: { value: derived, writable: true, enumerable: true, configurable: true },
            });
        };
    })();

var __awaiter: (
    thisArgument: unknown,
    argumentList: ArrayLike<unknown>,
    PromiseType: PromiseConstructor | undefined,
    generator: (...args: unknown[]) => Iterator<unknown>,
) => Promise<unknown> =
    (this && this.__awaiter) ||
    function (thisArgument, argumentList, PromiseType, generator) {
        const PromiseClass = PromiseType || Promise;
        return new PromiseClass(function (resolve, reject) {
            function advance(step: () => IteratorResult<unknown>): void {
                try {
                    const result = step();
                    if (result.done) {
                        resolve(result.value);
                    } else {
                        adopt(result.value).then(fulfilled, rejected);
                    }
                } catch (error) {
                    reject(error);
                }
            }
            function adopt(value: unknown): Promise<unknown> {
                return value instanceof PromiseClass ? value : PromiseClass.resolve(value);
            }
            function fulfilled(value: unknown): void {
                advance(() => iterator.next(value));
            }
            function rejected(reason: unknown): void {
                advance(() => iterator.throw!(reason));
            }
            const iterator = generator.apply(thisArgument, (argumentList || []) as unknown[]);
            advance(() => iterator.next());
        });
    };

// The compiled body of a generator is called again and again and answers what to do next: a pair of code and operand.
// Codes: 2 return, 3 jump to a label, 4 yield, 5 delegate to another iterator, 7 end of a finally block. The caller
// sends 0 next, 1 throw, 2 return; an error thrown by the body becomes 6.
type GeneratorInstruction = [code: number, operand?: any];

interface GeneratorState {
    label: number;
    sent(): unknown;
    /** Open try statements: the labels of their start, catch, finally and end. */
    trys: [start: number, catchLabel: number, finallyLabel: number, end: number][];
    /** What goes on after the finally blocks that are running. */
    ops: GeneratorInstruction[];
}

var __generator: (
    thisArgument: unknown,
    body: (state: GeneratorState) => GeneratorInstruction,
) => IterableIterator<unknown> =
    (this && this.__generator) ||
    function (thisArgument, body) {
        let started = false;
        let running = false;
        let finished = false;
        let received: GeneratorInstruction;
        let delegate: any;
        const state: GeneratorState = {
            label: 0,
            sent: function () {
                if (received[0] & 1) {
                    throw received[1];
                }
                return received[1];
            },
            trys: [],
            ops: [],
        };

        /** Hands the instruction to the inner iterator. Returns what that yields, or changes it once that is done. */
        function runDelegate(instruction: GeneratorInstruction): IteratorResult<unknown> | undefined {
            const inner = delegate;
            const method = instruction[0] & 2 ? inner["return"] : instruction[0] ? inner["throw"] : inner.next;
            if (!method && instruction[0] === 1 && inner["return"]) {
                inner["return"]();
            }
            if (method) {
                const result = method.call(inner, instruction[1]);
                if (!result.done) {
                    return result;
                }
                instruction[0] &= 2;
                instruction[1] = result.value;
            }
            delegate = undefined;
            return undefined;
        }

        /** Chooses where the body goes on. False if the innermost try statement, now left, has no say in it. */
        function route(instruction: GeneratorInstruction): boolean {
            const code = instruction[0];
            const region = state.trys[state.trys.length - 1];
            if (code === 3 && (!region || (instruction[1] > region[0] && instruction[1] < region[3]))) {
                state.label = instruction[1];
                return true;
            }
            if (!region) {
                finished = true;
                return false;
            }
            if (code === 6 && state.label < region[1]) {
                state.label = region[1];
                received = instruction;
                return true;
            }
            if (state.label < region[2]) {
                state.label = region[2];
                state.ops.push(instruction);
                return true;
            }
            if (region[2]) {
                state.ops.pop();
            }
            state.trys.pop();
            return false;
        }

        function step(instruction: GeneratorInstruction): IteratorResult<unknown> {
            if (running) {
                throw new TypeError("Generator is already executing.");
            }
            if (!started) {
                started = true;
                finished = instruction[0] !== 0;
            }
            while (!finished) {
                running = true;
                try {
                    const inner = delegate && runDelegate(instruction);
                    if (inner) {
                        return inner;
                    }
                    switch (instruction[0]) {
                        case 0:
                        case 1:
                            received = instruction;
                            break;
                        case 4:
                            state.label++;
                            return { value: instruction[1], done: false };
                        case 5:
                            state.label++;
                            delegate = instruction[1];
                            instruction = [0];
                            continue;
                        case 7:
                            instruction = state.ops.pop()!;
                            state.trys.pop();
                            continue;
                        default:
                            if (!route(instruction)) {
                                continue;
                            }
                    }
                    instruction = body.call(thisArgument, state);
                } catch (error) {
                    instruction = [6, error];
                    delegate = undefined;
                } finally {
                    running = false;
                }
            }
            if (instruction[0] & 5) {
                throw instruction[1];
            }
            return { value: instruction[0] ? instruction[1] : undefined, done: true };
        }

        const iterator = {
            next: function (value: unknown) {
                return step([0, value]);
            },
            throw: function (error: unknown) {
                return step([1, error]);
            },
            return: function (value: unknown) {
                return step([2, value]);
            },
        } as IterableIterator<unknown>;
        if (typeof Symbol == "function") {
            iterator[Symbol.iterator] = function () {
                return iterator;
            };
        }
        return iterator;
    };
