using System;
using System.Collections.Generic;
using System.Globalization;
using System.Text;

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
            if (!Json.TryParse(json, out object value) || !(value is Dictionary<string, object> answer) ||
                !answer.TryGetValue("Items", out object items) || !(items is List<object> list))
            {
                throw new FormatException("The library's list of cookies cannot be read.");
            }
            foreach (object item in list)
            {
                if (item is Dictionary<string, object> members)
                {
                    cookies.Add(Read(members));
                }
            }
            return cookies;
        }

        internal string ToJson()
        {
            var json = new StringBuilder();
            AppendText(json.Append('{'), "Name", Name);
            AppendText(json.Append(','), "Value", Value);
            AppendText(json.Append(','), "Domain", Domain);
            AppendText(json.Append(','), "Path", Path);
            json.Append(",\"HttpOnly\":").Append(IsHttpOnly ? "true" : "false");
            json.Append(",\"Secure\":").Append(IsSecure ? "true" : "false");
            json.Append(",\"ExpirationDate\":");
            if (ExpirationDate is DateTime date)
            {
                var seconds = (long)(date.ToUniversalTime() - Epoch).TotalSeconds;
                json.Append(seconds.ToString(CultureInfo.InvariantCulture));
            }
            else
            {
                json.Append("null");
            }
            return json.Append('}').ToString();
        }

        private static Cookie Read(Dictionary<string, object> members)
        {
            return new Cookie(Text(members, "Name"), Text(members, "Value"), Text(members, "Domain"))
            {
                Path = Text(members, "Path"),
                IsHttpOnly = members.TryGetValue("HttpOnly", out object httpOnly) && httpOnly is true,
                IsSecure = members.TryGetValue("Secure", out object secure) && secure is true,
                ExpirationDate = members.TryGetValue("ExpirationDate", out object date) && date is double seconds
                    ? Epoch.AddSeconds(seconds)
                    : (DateTime?)null,
            };
        }

        private static string Text(Dictionary<string, object> members, string key)
        {
            return members.TryGetValue(key, out object value) && value is string text ? text : string.Empty;
        }

        private static void AppendText(StringBuilder json, string name, string value)
        {
            Json.AppendString(json, name);
            json.Append(':');
            Json.AppendString(json, value ?? string.Empty);
        }
    }
}
