using System.Collections.Generic;
using System.Globalization;
using System.Text;

namespace Zarvik.Orvella
{
    /// <summary>
    /// Reads JSON texts into dictionaries, lists, strings, doubles, booleans and null. Unity's own reader cannot be
    /// used here, and no other comes with every Unity version.
    /// </summary>
    internal sealed class Json
    {
        private const int MaximalDepth = 64;

        private readonly string text;
        private int position;
        private int depth;

        private Json(string text)
        {
            this.text = text;
        }

        /// <summary>False if the text is no JSON.</summary>
        internal static bool TryParse(string text, out object value)
        {
            var reader = new Json(text);
            if (reader.ReadValue(out value))
            {
                reader.SkipBlanks();
                return reader.position == text.Length;
            }
            return false;
        }

        /// <summary>Writes a string literal.</summary>
        internal static void AppendString(StringBuilder builder, string value)
        {
            builder.Append('"');
            foreach (char character in value)
            {
                if (character == '"' || character == '\\')
                {
                    builder.Append('\\').Append(character);
                }
                else if (character < ' ')
                {
                    builder.Append("\\u").Append(((int)character).ToString("x4", CultureInfo.InvariantCulture));
                }
                else
                {
                    builder.Append(character);
                }
            }
            builder.Append('"');
        }

        private bool ReadValue(out object value)
        {
            value = null;
            SkipBlanks();
            switch (Peek())
            {
                case '{':
                    return ReadObject(out value);
                case '[':
                    return ReadArray(out value);
                case '"':
                    bool isRead = ReadString(out string characters);
                    value = characters;
                    return isRead;
                case 't':
                    value = true;
                    return Accept("true");
                case 'f':
                    value = false;
                    return Accept("false");
                case 'n':
                    return Accept("null");
                default:
                    return ReadNumber(out value);
            }
        }

        private bool ReadObject(out object value)
        {
            var members = new Dictionary<string, object>();
            value = members;
            return ReadSequence('}', () =>
            {
                SkipBlanks();
                if (!ReadString(out string name))
                {
                    return false;
                }
                SkipBlanks();
                if (!Accept(":") || !ReadValue(out object member))
                {
                    return false;
                }
                members[name] = member;
                return true;
            });
        }

        private bool ReadArray(out object value)
        {
            var items = new List<object>();
            value = items;
            return ReadSequence(']', () =>
            {
                bool isRead = ReadValue(out object item);
                items.Add(item);
                return isRead;
            });
        }

        /// <summary>Reads what stands between brackets, separated by commas.</summary>
        private bool ReadSequence(char end, System.Func<bool> readItem)
        {
            if (++depth > MaximalDepth)
            {
                return false;
            }
            ++position;
            SkipBlanks();
            bool isComplete = Accept(end);
            while (!isComplete)
            {
                if (!readItem())
                {
                    return false;
                }
                SkipBlanks();
                isComplete = Accept(end);
                if (!isComplete && !Accept(','))
                {
                    return false;
                }
            }
            --depth;
            return true;
        }

        private bool ReadString(out string value)
        {
            value = null;
            if (!Accept('"'))
            {
                return false;
            }
            var builder = new StringBuilder();
            while (position < text.Length)
            {
                char character = text[position++];
                if (character == '"')
                {
                    value = builder.ToString();
                    return true;
                }
                if (character < ' ')
                {
                    return false;
                }
                if (character == '\\' && !ReadEscape(out character))
                {
                    return false;
                }
                builder.Append(character);
            }
            return false;
        }

        private bool ReadEscape(out char character)
        {
            const string Names = "\"\\/bfnrt";
            const string Characters = "\"\\/\b\f\n\r\t";
            character = Peek();
            ++position;
            int index = Names.IndexOf(character);
            if (index >= 0)
            {
                character = Characters[index];
                return true;
            }
            if (character != 'u' || position + 4 > text.Length ||
                !ushort.TryParse(text.Substring(position, 4), NumberStyles.AllowHexSpecifier,
                    CultureInfo.InvariantCulture, out ushort code))
            {
                return false;
            }
            position += 4;
            character = (char)code;
            return true;
        }

        private bool ReadNumber(out object value)
        {
            int start = position;
            while (position < text.Length && "+-.eE0123456789".IndexOf(text[position]) >= 0)
            {
                ++position;
            }
            bool isRead = double.TryParse(text.Substring(start, position - start), NumberStyles.Float,
                CultureInfo.InvariantCulture, out double number);
            value = number;
            return isRead;
        }

        private void SkipBlanks()
        {
            while (position < text.Length && " \t\r\n".IndexOf(text[position]) >= 0)
            {
                ++position;
            }
        }

        /// <summary>The next character; U+0000 at the end, which no rule accepts.</summary>
        private char Peek()
        {
            return position < text.Length ? text[position] : '\0';
        }

        private bool Accept(char expected)
        {
            bool isThere = position < text.Length && text[position] == expected;
            position += isThere ? 1 : 0;
            return isThere;
        }

        private bool Accept(string expected)
        {
            bool isThere = string.CompareOrdinal(text, position, expected, 0, expected.Length) == 0;
            position += isThere ? expected.Length : 0;
            return isThere;
        }
    }
}
