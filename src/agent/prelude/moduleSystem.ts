type ModuleExports = Record<string, unknown>;

interface ModuleContext {
    id: string;
    import(name: string): Promise<ModuleExports>;
}

type ModuleFactory = (
    exportValue: (key: string, value: unknown) => void,
    context: ModuleContext,
) => {
    setters: ((exports: ModuleExports) => void)[];
    execute(): void;
};

interface ModuleSystem {
    register(name: string, dependencyNames: string[], factory: ModuleFactory): void;
    registerExternal(name: string, exports: ModuleExports): void;
    require(name: string): ModuleExports;
}

// Each evaluation of the agent's text keeps this object but gives it new functions over new, empty maps, so that all
// modules run again.
var System: ModuleSystem;
(function (system) {
    const definitions: Record<string, [string[], ModuleFactory]> = Object.create(null);
    const instances: Record<string, ModuleExports> = Object.create(null);

    system.register = function (name, dependencyNames, factory) {
        definitions[name] = [dependencyNames, factory];
    };

    system.registerExternal = function (name, exports) {
        instances[name] = exports;
    };

    system.require = function (name) {
        if (instances[name]) {
            return instances[name];
        }
        if (!definitions[name]) {
            throw new Error("Cannot resolve '" + name + "'");
        }
        // Stored before anything runs: modules that need each other see what is there so far.
        const exports: ModuleExports = (instances[name] = {});
        const dependencyNames = definitions[name][0];
        const factory = definitions[name][1];
        const module = factory(
            function (key, value) {
                exports[key] = value;
            },
            {
                id: name,
                import: function (importedName) {
                    return Promise.resolve(System.require(importedName));
                },
            },
        );
        dependencyNames.forEach(function (dependencyName, index) {
            module.setters[index](System.require(dependencyName));
        });
        module.execute();
        return exports;
    };
})(System! || (System = {} as ModuleSystem));
