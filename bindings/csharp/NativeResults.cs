// Copies of what the library returned in its records.
//
// SPDX-License-Identifier: MIT
using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;

namespace StrataRepgenlib
{
    internal static class NativeResults
    {
        private static readonly int ValueSize = Marshal.SizeOf(typeof(RgenCVariant));
        private static readonly int TextSize = Marshal.SizeOf(typeof(RgenAnsiString));

        /// <summary>Names and texts of a set of persistent data.</summary>
        internal static Dictionary<string, string> TextsOf(RgenCAnsiStringPairSet pairs)
        {
            Dictionary<string, string> texts = new Dictionary<string, string>();
            for (int i = 0; i < (int)pairs.count; ++i)
            {
                texts[TextAt(pairs.keys, i)] = TextAt(pairs.values, i);
            }
            return texts;
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

        internal static byte[] BytesOf(RgenByteArray record)
        {
            byte[] bytes = new byte[checked((int)record.size)];
            if (bytes.Length != 0) Marshal.Copy(record.data, bytes, 0, bytes.Length);
            return bytes;
        }

        /// <summary>Frees the result of a report that is not returned to the host.</summary>
        internal static void Drop(ref RgenCVariant result)
        {
            if (result.type == RgenNative.RGEN_TYPE_HANDLE)
            {
                new OpenFile(result.value.handleValue).Dispose();
            }
            RgenNative.rgen_freeRgenCVariant(ref result);
        }

        private static Value ValueOf(RgenCVariant record)
        {
            string name = TextOf(record.name);
            switch (record.type)
            {
                case RgenNative.RGEN_TYPE_INT64:
                    return new Value(name, record.value.int64Value, (Hint)record.hint);
                case RgenNative.RGEN_TYPE_BYTE_ARRAY:
                    return new Value(name, BytesOf(record.value.byteArrayValue));
                default:
                    return new Value(name, TextOf(record.value.stringValue));
            }
        }

        private static string TextAt(IntPtr array, int index)
        {
            IntPtr place = array + index * TextSize;
            return TextOf((RgenAnsiString)Marshal.PtrToStructure(place, typeof(RgenAnsiString)));
        }

        private static string TextOf(RgenAnsiString record)
        {
            return NativeTexts.FromUtf8(record.data, checked((int)record.length));
        }
    }
}
