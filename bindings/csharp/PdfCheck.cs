// Checks whether a conversion made a pdf: the library always reports success.
//
// SPDX-License-Identifier: MIT
using System;
using System.IO;
using System.Text;

namespace StrataRepgenlib
{
    internal static class PdfCheck
    {
        private const int Searched = 1024;
        private const int LongestReason = 65536;

        /// <summary>Throws a ConversionException unless the file is a complete pdf and the
        /// converter wrote no text of a failure.</summary>
        internal static void Require(string path)
        {
            string note = path + ".error.txt";
            bool hasNote = File.Exists(note);
            string reason = hasNote ? ReasonIn(note) : "";
            if (!File.Exists(path))
            {
                throw new ConversionException(path, "the converter made no file", reason);
            }
            if (!IsWholePdf(path))
            {
                throw new ConversionException(path, "the converter's file is not a whole pdf",
                                              reason);
            }
            // The pdf is then a page about the failure.
            if (hasNote) throw new ConversionException(path, "the converter failed", reason);
        }

        /// <summary>Removes the text of an earlier failure.</summary>
        internal static void RemoveNote(string path)
        {
            try
            {
                File.Delete(path + ".error.txt");
            }
            catch (IOException)
            {
            }
            catch (UnauthorizedAccessException)
            {
            }
        }

        private static string ReasonIn(string note)
        {
            using (FileStream file = File.OpenRead(note))
            {
                return Encoding.UTF8.GetString(Part(file, 0, LongestReason)).TrimEnd();
            }
        }

        /// <summary>"%PDF-" at the start and "%%EOF" in the last 1024 bytes.</summary>
        private static bool IsWholePdf(string path)
        {
            using (FileStream file = File.OpenRead(path))
            {
                string start = Letters(Part(file, 0, 5));
                string end = Letters(Part(file, Math.Max(0, file.Length - Searched), Searched));
                return start == "%PDF-" && end.Contains("%%EOF");
            }
        }

        private static string Letters(byte[] bytes)
        {
            return Encoding.GetEncoding("iso-8859-1").GetString(bytes);
        }

        /// <summary>A number of bytes from a position; fewer at the end of the file.</summary>
        private static byte[] Part(FileStream file, long start, int length)
        {
            byte[] bytes = new byte[length];
            file.Position = start;
            int have = 0;
            for (int read = 1; read > 0 && have < length; have += read)
            {
                read = file.Read(bytes, have, length - have);
            }
            Array.Resize(ref bytes, have);
            return bytes;
        }
    }
}
