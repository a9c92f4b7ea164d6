// Values, pairs, and the request that contains them.
//
// SPDX-License-Identifier: MIT
using System;
using System.Collections.Generic;

namespace StrataRepgenlib
{
    /// <summary>How a 64-bit integer is shown in a report. Texts and bytes do not depend on
    /// it.</summary>
    public enum Hint : ulong
    {
        /// <summary>Signed decimal.</summary>
        Generic = RgenNative.RGEN_HINT_GENERIC,
        /// <summary>Seconds since 1970 UTC, shown as local time "23:59:59".</summary>
        Time = RgenNative.RGEN_HINT_TIME,
        /// <summary>Same, as local date " 1.01.1970".</summary>
        Date = RgenNative.RGEN_HINT_DATE,
        /// <summary>Same, " 1.01.1970 23:59:59".</summary>
        DateTime = RgenNative.RGEN_HINT_DATE_TIME,
        /// <summary>Signed decimal.</summary>
        Size = RgenNative.RGEN_HINT_SIZE,
        /// <summary>"0x" and lower-case hexadecimal digits.</summary>
        Address = RgenNative.RGEN_HINT_ADDRESS,
        /// <summary>Signed decimal.</summary>
        Speed = RgenNative.RGEN_HINT_SPEED,
        /// <summary>The hint of byte arrays that the library returns.</summary>
        Dump = RgenNative.RGEN_HINT_DUMP,
    }

    /// <summary>A named, typed, hinted value. Content is a string, a long or a byte
    /// array.</summary>
    public sealed class Value
    {
        /// <summary>A text, which the report shows as it is, "&amp;" included.</summary>
        public Value(string name, string text) : this(name, Checked(text), Hint.Generic, false)
        {
        }

        /// <summary>A number.</summary>
        public Value(string name, long number, Hint hint = Hint.Generic)
            : this(name, (object)number, hint, false)
        {
        }

        /// <summary>An unsigned number. The library's numbers are signed: one above long.MaxValue
        /// needs Hint.Address, which shows it in full.</summary>
        public Value(string name, ulong number, Hint hint = Hint.Generic)
            : this(name, (object)Signed(number, hint), hint, false)
        {
        }

        /// <summary>A time; a report shows it as local time. Calls that use a time before 1970 or
        /// after the year 3000 throw a ReportArgumentException with the name as its Key.</summary>
        public Value(string name, DateTimeOffset time, Hint hint = Hint.DateTime)
            : this(name, (object)time.ToUnixTimeSeconds(), hint, false)
        {
        }

        /// <summary>A time; one of DateTimeKind.Unspecified is local.</summary>
        public Value(string name, DateTime time, Hint hint = Hint.DateTime)
            : this(name, (object)UnixSeconds(time), hint, false)
        {
        }

        /// <summary>Bytes, shown as a hex dump. They are not copied before the report is
        /// made.</summary>
        public Value(string name, byte[] bytes) : this(name, Checked(bytes), Hint.Dump, false)
        {
        }

        private Value(string name, object content, Hint hint, bool isMarkup)
        {
            Name = name ?? throw new ArgumentNullException(nameof(name));
            Content = content;
            Hint = hint;
            IsMarkup = isMarkup;
        }

        /// <summary>The name, which is the key of the value.</summary>
        public string Name { get; }

        /// <summary>A string, a long or a byte array.</summary>
        public object Content { get; }

        /// <summary>How a number is shown.</summary>
        public Hint Hint { get; }

        /// <summary>True if a text is XML content, which is passed to the library
        /// unchanged.</summary>
        public bool IsMarkup { get; }

        /// <summary>A text that is XML content in the sense of TEXTS in rgen.h.</summary>
        public static Value Markup(string name, string content)
        {
            return new Value(name, Checked(content), Hint.Generic, true);
        }

        private static long Signed(ulong number, Hint hint)
        {
            if (number > long.MaxValue && hint != Hint.Address)
            {
                throw new ArgumentOutOfRangeException(nameof(number));
            }
            return unchecked((long)number);
        }

        /// <summary>Rounds down, as DateTimeOffset does. Unlike the conversion to DateTimeOffset
        /// it works for every time.</summary>
        private static long UnixSeconds(DateTime time)
        {
            const long SecondsUntil1970 = 62135596800;
            return time.ToUniversalTime().Ticks / TimeSpan.TicksPerSecond - SecondsUntil1970;
        }

        private static object Checked(object content)
        {
            return content ?? throw new ArgumentNullException(nameof(content));
        }
    }

    /// <summary>A name and a text.</summary>
    public sealed class Pair
    {
        /// <summary>A text, which the report shows as it is, "&amp;" included.</summary>
        public Pair(string name, string text) : this(name, text, false)
        {
        }

        private Pair(string name, string text, bool isMarkup)
        {
            Name = name ?? throw new ArgumentNullException(nameof(name));
            Text = text ?? throw new ArgumentNullException(nameof(text));
            IsMarkup = isMarkup;
        }

        /// <summary>The name, which is the key of the pair.</summary>
        public string Name { get; }

        /// <summary>The text.</summary>
        public string Text { get; }

        /// <summary>True if the text is XML content, which is passed to the library
        /// unchanged.</summary>
        public bool IsMarkup { get; }

        /// <summary>A text that is XML content in the sense of TEXTS in rgen.h.</summary>
        public static Pair Markup(string name, string content)
        {
            return new Pair(name, content, true);
        }

        internal Value ToValue()
        {
            return IsMarkup ? Value.Markup(Name, Text) : new Value(Name, Text);
        }
    }

    /// <summary>The input of one report. It can be reused, also by several threads at once as long
    /// as it does not change.</summary>
    public sealed class Request
    {
        private string converterBase = "";

        /// <summary>A request for a report of this type in "html", "pdf" or "txt".</summary>
        public Request(Guid type, string format)
        {
            Type = type;
            Format = format ?? throw new ArgumentNullException(nameof(format));
            Values = new List<Value>();
            Pairs = new List<Pair>();
            Convert = true;
        }

        /// <summary>The report type.</summary>
        public Guid Type { get; }

        /// <summary>"html", "pdf" or "txt"; also names the template's folder.</summary>
        public string Format { get; }

        /// <summary>Typed values; they override pairs and persistent data of the same name, and
        /// earlier values.</summary>
        public List<Value> Values { get; }

        /// <summary>Name/text pairs; they override persistent data of the same name.</summary>
        public List<Pair> Pairs { get; }

        /// <summary>Adds the values of objects and lists under flat names: Err.1.Address. See
        /// docs/values.md and NestedValues. Throws a ReportArgumentException that names the wrong
        /// value; nothing is added then.</summary>
        public void AddNested(object values)
        {
            Values.AddRange(NestedValues.Flatten(values));
        }

        /// <summary>False: a "pdf" report is written as the template made it, without the
        /// converter.</summary>
        public bool Convert { get; set; }

        /// <summary>Passed to the converter as its base. It must not contain a double
        /// quote.</summary>
        public string ConverterBase
        {
            get { return converterBase; }
            set { converterBase = value ?? throw new ArgumentNullException(nameof(value)); }
        }

        /// <summary>First the pairs, then the values.</summary>
        internal List<Value> AllValues()
        {
            if (Pairs.Count == 0) return Values;
            List<Value> all = new List<Value>(Pairs.Count + Values.Count);
            foreach (Pair pair in Pairs) all.Add(pair.ToValue());
            all.AddRange(Values);
            return all;
        }
    }
}
