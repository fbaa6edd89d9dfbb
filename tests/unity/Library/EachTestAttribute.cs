using System;
using NUnit.Framework;
using NUnit.Framework.Interfaces;
using Zarvik.Orvella.LibraryTests;

[assembly: EachTest]

namespace Zarvik.Orvella.LibraryTests
{
    /// <summary>Gives each test the engine, and ends all web views after it.</summary>
    [AttributeUsage(AttributeTargets.Assembly)]
    internal sealed class EachTestAttribute : Attribute, ITestAction
    {
        public ActionTargets Targets => ActionTargets.Test;

        public void BeforeTest(ITest test)
        {
            Engine.Use();
        }

        public void AfterTest(ITest test)
        {
            WebViewHost.Shutdown();
            Engine.Errors.ForEach(TestContext.Out.WriteLine);
            Engine.Errors.Clear();
            Engine.HandlerExceptions.Clear();
        }
    }
}
