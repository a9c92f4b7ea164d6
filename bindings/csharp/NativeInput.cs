// The texts and values of one call of the library, as arrays that it reads in place.
//
// SPDX-License-Identifier: MIT
using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;
using System.Text;

namespace StrataRepgenlib
{
    internal static class NativeTexts
    {
        internal static readonly UTF8Encoding Utf8 = new UTF8Encoding(false, true);

        /// <summary>UTF-8 with a zero byte at the end, where the library ends the text: it must not
        /// contain another one.</summary>
        internal static byte[] ToUtf8(string text, string what)
        {
            RequireNoZero(text, what);
            try
            {
                return Utf8.GetBytes(text + "\0");
            }
            catch (EncoderFallbackException)
            {
                throw ReportArgumentException.Create(null, what + HalfPair, true);
            }
        }

        internal static void RequireNoZero(string text, string what)
        {
            if (text.IndexOf('\0') < 0) return;
            throw ReportArgumentException.Create(null, what + " contains a zero character");
        }

        internal const string HalfPair = " contains half a surrogate pair";

        /// <summary>The text up to the zero byte.</summary>
        internal static string FromUtf8(byte[] bytes)
        {
            int length = Array.IndexOf<byte>(bytes, 0);
            return Encoding.UTF8.GetString(bytes, 0, length < 0 ? bytes.Length : length);
        }

        internal static string FromUtf8(IntPtr bytes)
        {
            int length = 0;
            while (Marshal.ReadByte(bytes, length) != 0) ++length;
            return FromUtf8(bytes, length);
        }

        internal static string FromUtf8(IntPtr bytes, int length)
        {
            if (length == 0) return "";
            byte[] copy = new byte[length];
            Marshal.Copy(bytes, copy, 0, length);
            return Encoding.UTF8.GetString(copy);
        }
    }

    /// <summary>All bytes are in one block, since pinning each text would cost more than the rest
    /// of the call. Records contain positions in the block until it is pinned.</summary>
    internal sealed class NativeInput : IDisposable
    {
        // The times that a report can show.
        private const long LastTime = 32535215999;

        private readonly IReadOnlyList<Value> values;
        private readonly RgenhValue[] records;
        private byte[] block = new byte[256];
        private int used;
        private GCHandle pinnedBlock;
        private GCHandle pinnedRecords;

        internal NativeInput(IReadOnlyList<Value> values)
        {
            this.values = values;
            records = new RgenhValue[values.Count];
            for (int i = 0; i < records.Length; ++i) Fill(values[i], ref records[i]);
        }

        /// <summary>The record of a request; the caller disposes of it.</summary>
        internal static RequestHandle NewRequest(Request request, ulong mode, string output)
        {
            using (NativeInput input = new NativeInput(request.AllValues()))
            using (ErrorRecord error = new ErrorRecord())
            {
                RgenhRequestParts parts = input.Parts(request, output);
                parts.outputMode = mode;
                RequestHandle handle = RgenNative.rgenh_newRequest(ref parts, error);
                if (handle.IsInvalid) throw error.ToException(input.values, request.Pairs.Count);
                return handle;
            }
        }

        /// <summary>Pins the arrays; the result is the array of records.</summary>
        internal IntPtr Pin()
        {
            pinnedBlock = GCHandle.Alloc(block, GCHandleType.Pinned);
            IntPtr start = pinnedBlock.AddrOfPinnedObject();
            for (int i = 0; i < records.Length; ++i)
            {
                records[i].name = start + (int)records[i].name;
                records[i].data = start + (int)records[i].data;
            }
            pinnedRecords = GCHandle.Alloc(records, GCHandleType.Pinned);
            return pinnedRecords.AddrOfPinnedObject();
        }

        public void Dispose()
        {
            if (pinnedBlock.IsAllocated) pinnedBlock.Free();
            if (pinnedRecords.IsAllocated) pinnedRecords.Free();
        }

        private RgenhRequestParts Parts(Request request, string output)
        {
            int format = AddEnded(request.Format, "the format");
            int path = AddEnded(output, "the output path");
            int converterBase = AddEnded(request.ConverterBase, "the base");
            IntPtr array = Pin();
            int pairs = request.Pairs.Count;
            IntPtr start = pinnedBlock.AddrOfPinnedObject();
            return new RgenhRequestParts
            {
                size = (ulong)Marshal.SizeOf(typeof(RgenhRequestParts)),
                templateGuid = request.Type,
                format = start + format,
                outputPath = start + path,
                converterBase = start + converterBase,
                skipExternalConversion = request.Convert ? 0UL : 1UL,
                values = array + pairs * Marshal.SizeOf(typeof(RgenhValue)),
                valueCount = (ulong)(records.Length - pairs),
                pairs = array,
                pairCount = (ulong)pairs,
            };
        }

        private void Fill(Value value, ref RgenhValue record)
        {
            record.name = (IntPtr)Add(value.Name, value.Name, "the name", out record.nameSize);
            record.hint = (ulong)value.Hint;
            if (value.Content is long number)
            {
                RequireTime(value, number);
                record.type = RgenNative.RGEN_TYPE_INT64;
                record.number = number;
            }
            else if (value.Content is byte[] bytes)
            {
                record.type = RgenNative.RGEN_TYPE_BYTE_ARRAY;
                record.data = (IntPtr)AddBytes(bytes, out record.size);
            }
            else
            {
                record.type = value.IsMarkup ? RgenNative.RGENH_TYPE_MARKUP
                                             : RgenNative.RGEN_TYPE_STRING;
                record.data =
                    (IntPtr)Add((string)value.Content, value.Name, "the text", out record.size);
            }
        }

        private static void RequireTime(Value value, long seconds)
        {
            bool isTime = value.Hint == Hint.Time || value.Hint == Hint.Date ||
                          value.Hint == Hint.DateTime;
            if (!isTime || (seconds >= 0 && seconds <= LastTime)) return;
            throw ReportArgumentException.Create(
                value.Name, "a report can show times of the years 1970 to 3000 only");
        }

        private int AddEnded(string text, string what)
        {
            NativeTexts.RequireNoZero(text, what);
            return Add(text, null, what, out ulong size);
        }

        /// <summary>Adds a text and a zero byte; returns its position.</summary>
        private int Add(string text, string key, string what, out ulong size)
        {
            int start = used;
            Reserve(NativeTexts.Utf8.GetMaxByteCount(text.Length));
            try
            {
                used += NativeTexts.Utf8.GetBytes(text, 0, text.Length, block, used);
            }
            catch (EncoderFallbackException)
            {
                throw ReportArgumentException.Create(key, what + NativeTexts.HalfPair, true);
            }
            size = (ulong)(used - start);
            block[used++] = 0;
            return start;
        }

        private int AddBytes(byte[] bytes, out ulong size)
        {
            int start = used;
            Reserve(bytes.Length);
            Buffer.BlockCopy(bytes, 0, block, used, bytes.Length);
            used += bytes.Length;
            size = (ulong)bytes.Length;
            return start;
        }

        /// <summary>Makes room for a number of bytes and a zero byte.</summary>
        private void Reserve(int count)
        {
            long needed = (long)used + count + 1;
            if (needed <= block.Length) return;
            const long LongestArray = 0x7FFFFFC7;
            if (needed > LongestArray) throw new OutOfMemoryException("a request of 2 GiB");
            Array.Resize(ref block, (int)Math.Min(Math.Max(needed, block.Length * 2L),
                                                  LongestArray));
        }
    }
}
