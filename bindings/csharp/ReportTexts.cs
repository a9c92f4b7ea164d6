// Converts texts for the library and back: UTF-8, and XML content.
//
// SPDX-License-Identifier: MIT
using System;
using System.Globalization;
using System.Runtime.InteropServices;
using System.Text;
using System.Text.RegularExpressions;

namespace StrataRepgenlib
{
    internal static class ReportTexts
    {
        private static readonly UTF8Encoding Utf8 = new UTF8Encoding(false, true);
        private static readonly char[] Blanks = { ' ', '\t', '\r', '\n' };
        /// <summary>The number of bytes that the library reads of one text of a file.</summary>
        private const int LongestStoredText = 10000000;
        /// <summary>The limit for names: they are stored in attributes, where a character takes up
        /// to six of those bytes.</summary>
        private const int LongestStoredName = 1000000;
        private static readonly Regex Reference = new Regex(
            "&(?:(?<name>amp|lt|gt|quot|apos)|#x(?<hex>[0-9A-Fa-f]{1,8})|#(?<decimal>[0-9]{1,8}));",
            RegexOptions.CultureInvariant);

        /// <summary>"&amp;", with the whole reference if it starts one.</summary>
        private static readonly Regex Ampersand = new Regex(
            "&((?:#[0-9]+|#x[0-9A-Fa-f]+|[^#&;< \\t\\r\\n][^&;< \\t\\r\\n]*);)?",
            RegexOptions.CultureInvariant);
        private static readonly Regex Unstorable = new Regex(
            "[\\u0001-\\u0008\\u000B\\u000C\\u000E-\\u001F\\uFFFE\\uFFFF]",
            RegexOptions.CultureInvariant);

        /// <summary>UTF-8 with a zero byte at the end. Throws an ArgumentException for a lone
        /// surrogate, and for a zero inside, where the library would truncate the text.</summary>
        internal static byte[] ToUtf8(string text, string what)
        {
            if (text.IndexOf('\0') >= 0) throw new ArgumentException(what + " holds a zero");
            byte[] bytes = new byte[Utf8.GetByteCount(text) + 1];
            Utf8.GetBytes(text, 0, text.Length, bytes, 0);
            return bytes;
        }

        /// <summary>The text of a number of bytes; invalid UTF-8 becomes U+FFFD.</summary>
        internal static string FromUtf8(IntPtr bytes, int length)
        {
            if (bytes == IntPtr.Zero || length == 0) return "";
            byte[] copy = new byte[length];
            Marshal.Copy(bytes, copy, 0, length);
            return Encoding.UTF8.GetString(copy);
        }

        /// <summary>The text of null-terminated bytes.</summary>
        internal static string FromUtf8(IntPtr bytes)
        {
            int length = 0;
            while (Marshal.ReadByte(bytes, length) != 0) ++length;
            return FromUtf8(bytes, length);
        }

        /// <summary>Escapes a text for a report, where the library decodes it once.</summary>
        internal static string Escaped(string text)
        {
            return text.Replace("&", "&amp;");
        }

        /// <summary>The name of a persistent text. Throws an ArgumentException if it is too
        /// long.</summary>
        internal static string StoredName(string name)
        {
            if (Utf8.GetByteCount(name) > LongestStoredName)
            {
                throw new ArgumentException(
                    "the name of a persistent text has more than 1,000,000 bytes");
            }
            return HeldByXml(name);
        }

        /// <summary>A persistent text, escaped for the library. Throws an ArgumentException if the
        /// library would truncate it, and for markup that would damage other texts.</summary>
        internal static string Stored(string name, string text, bool isMarkup)
        {
            text = isMarkup ? CheckedMarkup(text, "the persistent text " + name) : HeldByXml(text);
            string read = isMarkup ? WithoutReferences(text) : EscapedWithEdges(text);
            RequireStorable(name, Utf8.GetByteCount(read));
            return isMarkup ? text : Escaped(read);
        }

        /// <summary>Bytes are stored as a hex dump.</summary>
        internal static void RequireStorable(string name, byte[] bytes)
        {
            RequireStorable(name, 3L * bytes.Length);
        }

        private static void RequireStorable(string name, long length)
        {
            if (length <= LongestStoredText) return;
            throw new ArgumentException(
                "the persistent text " + name +
                " has more than 10,000,000 bytes, \"&\" counted as \"&amp;\"");
        }

        /// <summary>Replaces characters that XML does not allow by U+FFFD: a single one in the
        /// persistent data file or in a template would make the library lose all references after
        /// it.</summary>
        private static string HeldByXml(string text)
        {
            return Unstorable.Replace(text, "\uFFFD");
        }

        /// <summary>A reference that XML defines, in the form that a document may contain; null for
        /// another one.</summary>
        private static string HeldReference(Match ampersand)
        {
            string name = ampersand.Groups[1].Value;
            if (name.Length == 0) return null;
            if (name[0] != '#') return Reference.IsMatch(ampersand.Value) ? ampersand.Value : null;
            bool isHex = name[1] == 'x';
            string digits = name.Substring(isHex ? 2 : 1).TrimEnd(';').TrimStart('0');
            string meaning = Character(digits, isHex);
            bool isHeld = meaning != null && !Unstorable.IsMatch(meaning);
            return isHeld ? ampersand.Value : "&#xFFFD;";
        }

        /// <summary>Markup that does not damage the text after it. Throws an ArgumentException for
        /// a reference that XML does not define. For the library a name extends to the next ";",
        /// with any characters in between; without a ";" only the "&amp;" is lost.</summary>
        internal static string CheckedMarkup(string content, string what)
        {
            string text = HeldByXml(content);
            int lastEnd = text.LastIndexOf(';');
            return Ampersand.Replace(text, match =>
            {
                string held = HeldReference(match);
                if (held != null) return held;
                bool isNumeric = match.Index + 1 < text.Length && text[match.Index + 1] == '#';
                if (isNumeric || match.Index > lastEnd) return match.Value;
                int end = text.IndexOf(';', match.Index);
                throw new ArgumentException(
                    what + " holds the unknown reference " +
                    text.Substring(match.Index, Math.Min(80, end + 1 - match.Index)));
            });
        }

        /// <summary>Escapes a text of persistent data for the second of two decodings. The library
        /// then removes white space at the edges unless it is written as references.</summary>
        private static string EscapedWithEdges(string text)
        {
            string start = text.Substring(0, text.Length - text.TrimStart(Blanks).Length);
            string rest = text.Substring(start.Length);
            string middle = rest.TrimEnd(Blanks);
            return References(start) + Escaped(middle) +
                   References(rest.Substring(middle.Length));
        }

        private static string References(string blanks)
        {
            StringBuilder text = new StringBuilder();
            foreach (char blank in blanks) text.Append("&#").Append((int)blank).Append(';');
            return text.ToString();
        }

        /// <summary>The text of XML content; an "&amp;" that starts no reference stays.</summary>
        internal static string WithoutReferences(string content)
        {
            return Reference.Replace(content, match => Meaning(match) ?? match.Value);
        }

        private static string Meaning(Match match)
        {
            switch (match.Groups["name"].Value)
            {
                case "amp": return "&";
                case "lt": return "<";
                case "gt": return ">";
                case "quot": return "\"";
                case "apos": return "'";
            }
            bool isHex = match.Groups["hex"].Success;
            return Character(match.Groups[isHex ? "hex" : "decimal"].Value, isHex);
        }

        /// <summary>The character with a number; null if there is none.</summary>
        private static string Character(string digits, bool isHex)
        {
            NumberStyles style = isHex ? NumberStyles.AllowHexSpecifier : NumberStyles.None;
            uint number;
            bool isNumber = uint.TryParse(digits, style, CultureInfo.InvariantCulture, out number);
            if (!isNumber) return null;
            bool isSurrogate = number >= 0xD800 && number <= 0xDFFF;
            return number == 0 || number > 0x10FFFF || isSurrogate
                ? null
                : char.ConvertFromUtf32((int)number);
        }

        /// <summary>Escapes a translation, which becomes part of a template: characters of markup
        /// count as markup only if the original text contains them, and nothing may damage the rest
        /// of the template.</summary>
        internal static string AsMarkup(string original, string translation)
        {
            translation = HeldByXml(translation);
            if (original.IndexOf('&') < 0) translation = Escaped(translation);
            translation = Ampersand.Replace(
                translation, match => HeldReference(match) ?? Escaped(match.Value));
            if (original.IndexOf('<') < 0) translation = translation.Replace("<", "&lt;");
            if (original.IndexOf('>') < 0) translation = translation.Replace(">", "&gt;");
            // The end of a CDATA section in the translation stays.
            if (!translation.Contains("<![CDATA["))
                translation = translation.Replace("]]>", "]]&gt;");
            // A marker in an attribute is enclosed in single quotes.
            if (original.IndexOf('\'') < 0) translation = translation.Replace("'", "&#39;");
            return translation;
        }
    }
}
