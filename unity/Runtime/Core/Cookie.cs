using System;
using System.Collections.Generic;
using Newtonsoft.Json;
using Newtonsoft.Json.Linq;

namespace Zarvik.Orvella
{
    /// <summary>A cookie. To be set, it needs a name and a domain.</summary>
    public sealed class Cookie
    {
        private static readonly DateTime Epoch = new DateTime(1970, 1, 1, 0, 0, 0, DateTimeKind.Utc);

        /// <summary>Makes a cookie of the session.</summary>
        public Cookie(string name, string value, string domain)
        {
            Name = name ?? throw new ArgumentNullException(nameof(name));
            Value = value ?? throw new ArgumentNullException(nameof(value));
            Domain = domain ?? throw new ArgumentNullException(nameof(domain));
        }

        /// <summary>The name.</summary>
        public string Name { get; }

        /// <summary>The value.</summary>
        public string Value { get; }

        /// <summary>The host that gets the cookie.</summary>
        public string Domain { get; }

        /// <summary>The path below which the cookie is sent.</summary>
        public string Path { get; set; } = "/";

        /// <summary>When the cookie ends, in UTC, to the second. Null: with the session.</summary>
        public DateTime? ExpirationDate { get; set; }

        /// <summary>Whether scripts of the page are kept from it.</summary>
        public bool IsHttpOnly { get; set; }

        /// <summary>Whether it is sent over secure connections only.</summary>
        public bool IsSecure { get; set; }

        internal static IReadOnlyList<Cookie> ReadAll(string json)
        {
            var cookies = new List<Cookie>();
            if (!Json.TryParse(json, out JObject answer) || !(answer["Items"] is JArray items))
            {
                throw new FormatException("The library's list of cookies cannot be read.");
            }
            foreach (JToken item in items)
            {
                if (item is JObject members)
                {
                    cookies.Add(Read(members));
                }
            }
            return cookies;
        }

        internal string ToJson()
        {
            return new JObject
            {
                ["Name"] = Name,
                ["Value"] = Value,
                ["Domain"] = Domain,
                ["Path"] = Path ?? string.Empty,
                ["HttpOnly"] = IsHttpOnly,
                ["Secure"] = IsSecure,
                ["ExpirationDate"] = ExpirationDate is DateTime date
                    ? new JValue((long)(date.ToUniversalTime() - Epoch).TotalSeconds)
                    : JValue.CreateNull(),
            }.ToString(Formatting.None);
        }

        private static Cookie Read(JObject members)
        {
            return new Cookie(Text(members, "Name"), Text(members, "Value"), Text(members, "Domain"))
            {
                Path = Text(members, "Path"),
                IsHttpOnly = IsTrue(members["HttpOnly"]),
                IsSecure = IsTrue(members["Secure"]),
                ExpirationDate = members["ExpirationDate"] is JToken date &&
                    (date.Type == JTokenType.Integer || date.Type == JTokenType.Float)
                        ? Epoch.AddSeconds((double)date)
                        : (DateTime?)null,
            };
        }

        private static string Text(JObject members, string name)
        {
            return members.Text(name) ?? string.Empty;
        }

        private static bool IsTrue(JToken value)
        {
            return value?.Type == JTokenType.Boolean && (bool)value;
        }
    }
}
