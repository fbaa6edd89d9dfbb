/**
 * Binds the methods of the prototype chain to the instance, so that they work when called without their object.
 *
 * The walk goes from the derived class upwards and always assigns: of a method defined twice, the base class's wins.
 * No class here overrides one. The last prototype is known by its constructor's name, since an object of another
 * window ends in another Object.
 */
export default function flattenPrototypes(instance: object, prototype: object): void {
    const methods = instance as Record<string, unknown>;
    for (let level = prototype; level.constructor.name !== "Object"; level = Object.getPrototypeOf(level)) {
        Object.getOwnPropertyNames(level).forEach((name) => {
            // Accessors stay on the prototype: their descriptors have no value.
            const value: unknown = Object.getOwnPropertyDescriptor(level, name)!.value;
            if (typeof value === "function" && name !== "constructor") {
                methods[name] = value.bind(instance);
            }
        });
    }
}
