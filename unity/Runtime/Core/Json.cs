using System.IO;
using Newtonsoft.Json;
using Newtonsoft.Json.Linq;

namespace Zarvik.Orvella
{
    /// <summary>Reads JSON objects as they stand: texts that look like dates stay texts.</summary>
    internal static class Json
    {
        /// <summary>What pages send is not nested further, and their depth must not exhaust the stack.</summary>
        private const int MaximalDepth = 64;

        /// <summary>False if the text is no JSON object.</summary>
        internal static bool TryParse(string text, out JObject value)
        {
            using (var reader = new JsonTextReader(new StringReader(text)))
            {
                reader.DateParseHandling = DateParseHandling.None;
                reader.MaxDepth = MaximalDepth;
                try
                {
                    value = JObject.Load(reader);
                    return !reader.Read();
                }
                catch (JsonReaderException)
                {
                    value = null;
                    return false;
                }
            }
        }

        /// <summary>A member that is a text; null if there is none.</summary>
        internal static string Text(this JObject value, string name)
        {
            return value[name] is JValue member && member.Type == JTokenType.String ? (string)member : null;
        }
    }
}
