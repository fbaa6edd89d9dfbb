using System;

namespace Zarvik.Orvella
{
    /// <summary>Turns an engine's text and keys into input of a browser. Main thread.</summary>
    public sealed class KeyboardInput
    {
        private static readonly string[] AsciiTexts = MakeAsciiTexts();

        private readonly Browser browser;
        private char pendingHighSurrogate;

        /// <summary>Makes the input of a browser.</summary>
        public KeyboardInput(Browser browser)
        {
            this.browser = browser ?? throw new ArgumentNullException(nameof(browser));
        }

        /// <summary>Types a text of any length, character by character.</summary>
        public void Type(string text)
        {
            if (text == null)
            {
                throw new ArgumentNullException(nameof(text));
            }
            foreach (char character in text)
            {
                Type(character);
            }
        }

        /// <summary>
        /// Types a character as engines report it: line breaks and backspaces are keys, other control characters are
        /// dropped, and the halves of a surrogate pair make one character.
        /// </summary>
        public void Type(char character)
        {
            char high = pendingHighSurrogate;
            pendingHighSurrogate = '\0';
            if (char.IsHighSurrogate(character))
            {
                pendingHighSurrogate = character;
            }
            else if (char.IsLowSurrogate(character))
            {
                if (high != '\0')
                {
                    browser.SendKey(new string(new[] { high, character }));
                }
            }
            else if (character == '\n' || character == '\r')
            {
                browser.SendKey("Enter");
            }
            else if (character == '\b')
            {
                browser.SendKey("Backspace");
            }
            else if (!char.IsControl(character))
            {
                browser.SendKey(character < AsciiTexts.Length ? AsciiTexts[character] : character.ToString());
            }
        }

        /// <summary>Typing is frequent: it makes no garbage for the characters that are.</summary>
        private static string[] MakeAsciiTexts()
        {
            var texts = new string[128];
            for (int i = 0; i < texts.Length; ++i)
            {
                texts[i] = ((char)i).ToString();
            }
            return texts;
        }
    }
}
