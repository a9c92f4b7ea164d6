// Flat names for the values in objects and lists, by the rules of docs/values.md.
//
// SPDX-License-Identifier: MIT
using System;
using System.Collections;
using System.Collections.Generic;
using System.Globalization;

namespace StrataRepgenlib
{
    /// <summary>A number with a hint, for values in objects and lists.</summary>
    public sealed class Hinted
    {
        /// <summary>A number that a report shows by its hint.</summary>
        public Hinted(long number, Hint hint)
        {
            Number = number;
            Hint = hint;
        }

        /// <summary>The number.</summary>
        public long Number { get; }

        /// <summary>How it is shown.</summary>
        public Hint Hint { get; }
    }

    /// <summary>Makes values of dictionaries and lists. An object is a dictionary with keys of type
    /// string or int; a list is any other collection. The values in them are string, bool, all
    /// integers, float, double, decimal, DateTime, DateTimeOffset, TimeSpan, byte[], Hinted, and
    /// null, which is left out.</summary>
    public static class NestedValues
    {
        private const int DeepestLevel = 32;
        private static readonly CultureInfo Plain = CultureInfo.InvariantCulture;

        /// <summary>The values of an object, in reading order.</summary>
        public static List<Value> Flatten(object values)
        {
            if (values == null) throw new ArgumentNullException(nameof(values));
            List<Value> found = new List<Value>();
            IEnumerable<KeyValuePair<string, object>> members = MembersOf(values, "");
            if (members == null) throw Refused("", "the outermost level is not an object");
            AddMembers("", members, 1, found);
            return found;
        }

        private static void AddMembers(string name,
                                       IEnumerable<KeyValuePair<string, object>> members, int level,
                                       List<Value> found)
        {
            if (level > DeepestLevel) throw Refused(name, "more than 32 levels");
            foreach (KeyValuePair<string, object> member in members)
            {
                if (member.Key.Length == 0) throw Refused(name, "a member has an empty name");
                Add(level == 1 ? member.Key : name + "." + member.Key, member.Value, level, found);
            }
        }

        private static void Add(string name, object value, int level, List<Value> found)
        {
            Value plain = PlainValue(name, value);
            if (plain != null) found.Add(plain);
            if (plain != null || IsMissing(value)) return;
            IEnumerable<KeyValuePair<string, object>> members =
                MembersOf(value, name) ?? EntriesOf(value as IEnumerable);
            if (members == null)
            {
                throw Refused(name, value.GetType() + " is no value of a report");
            }
            AddMembers(name, members, level + 1, found);
        }

        private static bool IsMissing(object value)
        {
            return value == null || (value is double number && double.IsNaN(number)) ||
                   (value is float small && float.IsNaN(small));
        }

        /// <summary>Null for objects, lists and missing values.</summary>
        private static Value PlainValue(string name, object value)
        {
            if (value is string text) return new Value(name, text);
            if (value is bool truth) return new Value(name, truth ? "true" : "false");
            if (value is byte[] bytes) return new Value(name, bytes);
            if (value is Hinted hinted) return new Value(name, hinted.Number, hinted.Hint);
            if (value is DateTime time) return new Value(name, time);
            if (value is DateTimeOffset moment) return new Value(name, moment);
            if (value is TimeSpan duration) return Duration(name, duration);
            return value is IFormattable number ? Number(name, number) : null;
        }

        private static Value Number(string name, IFormattable number)
        {
            if (number is decimal) return new Value(name, number.ToString(null, Plain));
            if (number is double || number is float) return Fraction(name, number);
            if (number is ulong large && large > long.MaxValue)
            {
                throw Refused(name, "a number needs more than 64 bits with a sign");
            }
            return IsInteger(number) ? new Value(name, Convert.ToInt64(number, Plain)) : null;
        }

        private static bool IsInteger(object value)
        {
            return value is int || value is long || value is short || value is sbyte ||
                   value is uint || value is ulong || value is ushort || value is byte;
        }

        /// <summary>Seconds, with a fraction if there is one.</summary>
        private static Value Duration(string name, TimeSpan duration)
        {
            if (duration.Ticks % TimeSpan.TicksPerSecond == 0)
            {
                return new Value(name, duration.Ticks / TimeSpan.TicksPerSecond);
            }
            decimal seconds = (decimal)duration.Ticks / TimeSpan.TicksPerSecond;
            return new Value(name, seconds.ToString("0.#######", Plain));
        }

        /// <summary>The shortest digits that are the same number.</summary>
        private static Value Fraction(string name, IFormattable number)
        {
            double wide = Convert.ToDouble(number, Plain);
            if (double.IsInfinity(wide)) throw Refused(name, "an infinite number");
            if (double.IsNaN(wide)) return null;
            return new Value(name, WithoutExponent(number.ToString("R", Plain)));
        }

        /// <summary>"1.5E-07" is "0.00000015".</summary>
        private static string WithoutExponent(string digits)
        {
            int end = digits.IndexOf('E');
            if (end < 0) return digits;
            string sign = digits[0] == '-' ? "-" : "";
            string number = digits.Substring(sign.Length, end - sign.Length);
            int point = number.IndexOf('.');
            int whole = (point < 0 ? number.Length : point) +
                        int.Parse(digits.Substring(end + 1), Plain);
            number = number.Replace(".", "");
            if (whole <= 0) return sign + "0." + new string('0', -whole) + number;
            if (whole >= number.Length) return sign + number.PadRight(whole, '0');
            return sign + number.Insert(whole, ".");
        }

        /// <summary>The members of an object; null for anything else.</summary>
        private static IEnumerable<KeyValuePair<string, object>> MembersOf(object value,
                                                                           string name)
        {
            if (value is IEnumerable<KeyValuePair<string, object>> members) return members;
            return value is IDictionary dictionary ? MembersOf(dictionary, name) : null;
        }

        private static IEnumerable<KeyValuePair<string, object>> MembersOf(IDictionary dictionary,
                                                                           string name)
        {
            foreach (DictionaryEntry entry in dictionary)
            {
                if (!(entry.Key is string) && !(entry.Key is int))
                {
                    throw Refused(name, "a name is " + entry.Key.GetType());
                }
                string key = Convert.ToString(entry.Key, Plain);
                yield return new KeyValuePair<string, object>(key, entry.Value);
            }
        }

        /// <summary>The entries of a list, by their numbers from 1 on.</summary>
        private static IEnumerable<KeyValuePair<string, object>> EntriesOf(IEnumerable list)
        {
            return list == null ? null : Numbered(list);
        }

        private static IEnumerable<KeyValuePair<string, object>> Numbered(IEnumerable list)
        {
            int number = 0;
            foreach (object entry in list)
            {
                ++number;
                yield return new KeyValuePair<string, object>(number.ToString(Plain), entry);
            }
        }

        private static ReportArgumentException Refused(string name, string why)
        {
            return ReportArgumentException.Create(name.Length == 0 ? null : name, why);
        }
    }
}
