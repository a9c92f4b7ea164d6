// Owners for records of the library: they free what they create.
//
// SPDX-License-Identifier: MIT
using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;

namespace StrataRepgenlib
{
    /// <summary>How a plain text is escaped.</summary>
    internal delegate string Escape(string text);

    /// <summary>The record of one request.</summary>
    internal sealed class NativeRequest : IDisposable
    {
        internal RgenCInputParams Record;

        internal NativeRequest(Request request, OutputMode mode, string output)
        {
            try
            {
                NativeRecords.Create(request.Values, ReportTexts.Escaped, ref Record.variants);
                NativeRecords.Create(request.Pairs, ReportTexts.Escaped, ref Record.pairs);
                Record.templateGuid = NativeRecords.ToRecord(request.Type);
                Record.outputMode = (ulong)mode;
                Record.skipExternalConversion = request.Convert ? 0UL : 1UL;
                NativeRecords.Create(request.Format, "the format", ref Record.outputFormat);
                NativeRecords.Create(output, "the path", ref Record.outputPath);
                NativeRecords.Create(request.ConverterBase, "the base",
                                     ref Record.converterBaseArg);
            }
            catch
            {
                Dispose();
                throw;
            }
        }

        /// <summary>A record with values only, for a dump.</summary>
        internal NativeRequest(IReadOnlyList<Value> values)
        {
            try
            {
                NativeRecords.Create(values, ReportTexts.Escaped, ref Record.variants);
            }
            catch
            {
                Dispose();
                throw;
            }
        }

        public void Dispose()
        {
            RgenNative.rgen_freeRgenCInputParams(ref Record);
        }
    }

    internal static class NativeRecords
    {
        private static readonly int ValueSize = Marshal.SizeOf(typeof(RgenCVariant));
        private static readonly int TextSize = Marshal.SizeOf(typeof(RgenAnsiString));

        internal static RgenGuid ToRecord(Guid guid)
        {
            IntPtr memory = Marshal.AllocHGlobal(16);
            try
            {
                Marshal.Copy(guid.ToByteArray(), 0, memory, 16);
                return (RgenGuid)Marshal.PtrToStructure(memory, typeof(RgenGuid));
            }
            finally
            {
                Marshal.FreeHGlobal(memory);
            }
        }

        internal static void Create(string text, string what, ref RgenAnsiString record)
        {
            byte[] bytes = ReportTexts.ToUtf8(text, what);
            Require(RgenNative.rgen_createRgenAnsiString(bytes, ref record) != 0);
        }

        /// <summary>A set with an array even for no values: the dump requires one.</summary>
        internal static void Create(IReadOnlyList<Value> values, Escape escape,
                                    ref RgenCVariantSet set)
        {
            ulong count = (ulong)Math.Max(1, values.Count);
            Require(RgenNative.rgen_createRgenCVariantSet(ref set, count) != 0);
            for (int i = 0; i < values.Count; ++i)
            {
                RgenCVariant record = new RgenCVariant();
                Create(values[i], escape, ref record);
                Marshal.StructureToPtr(record, set.items + i * ValueSize, false);
                RequireBuffers(record);
            }
            set.count = (ulong)values.Count;
        }

        /// <summary>The values as the library expects them for persistent data.</summary>
        internal static List<Value> Stored(IReadOnlyList<Value> values)
        {
            List<Value> stored = new List<Value>();
            foreach (Value value in values) stored.Add(Stored(value));
            return stored;
        }

        private static Value Stored(Value value)
        {
            string name = ReportTexts.StoredName(value.Name);
            if (value.Content is long number) return new Value(name, number, value.Hint);
            if (value.Content is byte[] bytes)
            {
                ReportTexts.RequireStorable(name, bytes);
                return new Value(name, bytes);
            }
            string text = (string)value.Content;
            return Value.Markup(name, ReportTexts.Stored(name, text, value.IsMarkup));
        }

        private static void Create(Value value, Escape escape, ref RgenCVariant record)
        {
            byte[] name = ReportTexts.ToUtf8(value.Name, "the name of a value");
            ulong hint = (ulong)value.Hint;
            if (value.Content is long number)
            {
                RgenNative.rgen_createRgenCVariantInt64(name, number, hint, ref record);
            }
            else if (value.Content is byte[] bytes)
            {
                // The library requires an address even for no bytes.
                byte[] start = bytes.Length == 0 ? new byte[1] : bytes;
                RgenNative.rgen_createRgenCVariantByteArray(name, start, (ulong)bytes.Length, hint,
                                                            ref record);
            }
            else
            {
                string text = (string)value.Content;
                if (!value.IsMarkup) text = escape(text);
                byte[] content = ReportTexts.ToUtf8(text, "the text " + value.Name);
                RgenNative.rgen_createRgenCVariantString(name, content, hint, ref record);
            }
        }

        /// <summary>The create functions return 1 even when memory for a name is
        /// exhausted.</summary>
        private static void RequireBuffers(RgenCVariant record)
        {
            bool isText = record.type == (ulong)RgenVariantType.RGEN_TYPE_STRING;
            bool isArray = record.type == (ulong)RgenVariantType.RGEN_TYPE_BYTE_ARRAY &&
                           record.value.byteArrayValue.size != 0;
            Require(record.name.data != IntPtr.Zero);
            Require(!isText || record.value.stringValue.data != IntPtr.Zero);
            Require(!isArray || record.value.byteArrayValue.data != IntPtr.Zero);
        }

        internal static void Create(IReadOnlyList<Pair> pairs, Escape escape,
                                    ref RgenCAnsiStringPairSet set)
        {
            if (pairs.Count == 0) return;
            Require(RgenNative.rgen_createRgenCAnsiStringpairSet(ref set, (ulong)pairs.Count) != 0);
            for (int i = 0; i < pairs.Count; ++i)
            {
                Pair pair = pairs[i];
                string text = pair.IsMarkup ? pair.Text : escape(pair.Text);
                CreateAt(set.keys + i * TextSize, pair.Name, "the name of a pair");
                CreateAt(set.values + i * TextSize, text, "the text " + pair.Name);
            }
        }

        private static void CreateAt(IntPtr place, string text, string what)
        {
            RgenAnsiString record = new RgenAnsiString();
            Create(text, what, ref record);
            Marshal.StructureToPtr(record, place, false);
        }

        internal static string TextOf(RgenAnsiString record)
        {
            return ReportTexts.FromUtf8(record.data, checked((int)record.length));
        }

        /// <summary>The text record at an index of an array.</summary>
        internal static string TextAt(IntPtr array, int index)
        {
            IntPtr place = array + index * TextSize;
            return TextOf((RgenAnsiString)Marshal.PtrToStructure(place, typeof(RgenAnsiString)));
        }

        /// <summary>Names and texts of a set of persistent data.</summary>
        internal static Dictionary<string, string> TextsOf(RgenCAnsiStringPairSet pairs)
        {
            Dictionary<string, string> texts = new Dictionary<string, string>();
            for (int i = 0; i < (int)pairs.count; ++i)
            {
                texts[TextAt(pairs.keys, i)] =
                    ReportTexts.WithoutReferences(TextAt(pairs.values, i));
            }
            return texts;
        }

        internal static byte[] BytesOf(RgenByteArray record)
        {
            byte[] bytes = new byte[checked((int)record.size)];
            if (bytes.Length != 0) Marshal.Copy(record.data, bytes, 0, bytes.Length);
            return bytes;
        }

        /// <summary>The values of a set that the library filled.</summary>
        internal static List<Value> ValuesOf(RgenCVariantSet set)
        {
            List<Value> values = new List<Value>();
            for (int i = 0; i < (int)set.count; ++i)
            {
                IntPtr place = set.items + i * ValueSize;
                values.Add(ValueOf((RgenCVariant)Marshal.PtrToStructure(place,
                                                                        typeof(RgenCVariant))));
            }
            return values;
        }

        private static Value ValueOf(RgenCVariant record)
        {
            string name = TextOf(record.name);
            switch ((RgenVariantType)record.type)
            {
                case RgenVariantType.RGEN_TYPE_INT64:
                    return new Value(name, record.value.int64Value, (Hint)record.hint);
                case RgenVariantType.RGEN_TYPE_BYTE_ARRAY:
                    return new Value(name, BytesOf(record.value.byteArrayValue));
                default:
                    return new Value(name, TextOf(record.value.stringValue));
            }
        }

        internal static void Require(bool isThere)
        {
            if (!isThere) throw new OutOfMemoryException("the report library has no memory");
        }
    }
}
