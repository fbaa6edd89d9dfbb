using System;
using System.Collections.Generic;
using System.Linq;
using System.Reflection;
using NUnit.Framework;

namespace Zarvik.Orvella.LibraryTests
{
    /// <summary>Runs all tests, or those whose names contain one of the arguments. The exit code is 1 if one fails.</summary>
    internal static class Program
    {
        private static int Main(string[] filters)
        {
            Engine.Start();
            int failed = 0;
            int passed = 0;
            foreach ((string name, Action run) in FindTests())
            {
                if (filters.Length > 0 && !filters.Any(name.Contains))
                {
                    continue;
                }
                try
                {
                    run();
                    ++passed;
                    Console.WriteLine("ok      " + name);
                }
                catch (Exception exception)
                {
                    ++failed;
                    Console.WriteLine("FAILED  " + name + "\n" + exception + "\n" + string.Join("\n", Engine.Errors));
                }
                WebViewHost.Shutdown();
                Engine.Errors.Clear();
                Engine.HandlerExceptions.Clear();
            }
            Console.WriteLine("Tests: " + passed + " passed, " + failed + " failed");
            return failed == 0 && passed > 0 ? 0 : 1;
        }

        private static IEnumerable<(string Name, Action Run)> FindTests()
        {
            foreach (Type type in typeof(Program).Assembly.GetTypes().OrderBy(type => type.FullName))
            {
                foreach (MethodInfo method in type.GetMethods())
                {
                    string name = type.Name + "." + method.Name;
                    if (method.GetCustomAttribute<TestAttribute>() != null)
                    {
                        yield return (name, () => Run(type, method));
                    }
                    foreach (TestCaseAttribute test in method.GetCustomAttributes<TestCaseAttribute>())
                    {
                        yield return (name + "(" + string.Join(", ", test.Arguments) + ")",
                            () => Run(type, method, test.Arguments));
                    }
                }
            }
        }

        private static void Run(Type type, MethodInfo method, params object[] arguments)
        {
            method.Invoke(Activator.CreateInstance(type), BindingFlags.DoNotWrapExceptions, null, arguments, null);
        }
    }
}
