// The translate callback: the delegate that the library calls, the text that it returned last, and
// the exception of the translator.
//
// SPDX-License-Identifier: MIT
using System;
using System.Runtime.ExceptionServices;
using System.Runtime.InteropServices;

namespace StrataRepgenlib
{
    internal sealed class Translation
    {
        /// <summary>The exception of a translator on this thread, which generates.</summary>
        [ThreadStatic]
        private static ExceptionDispatchInfo raised;

        /// <summary>Stored here so that it lives as long as the library may call it.</summary>
        internal readonly RgenTranslateFunction Function;

        private readonly Func<string, string> translate;
        private readonly bool isMarkup;
        private IntPtr text;

        internal Translation(Func<string, string> translate, bool isMarkup)
        {
            this.translate = translate;
            this.isMarkup = isMarkup;
            Function = Call;
        }

        /// <summary>Makes a call of the library; returns its result, and the exception of a
        /// translator during the call. It may be made inside a translator of another generator,
        /// which has thrown nothing so far.</summary>
        internal static int Watch(Func<int> call, out ExceptionDispatchInfo raisedInside)
        {
            try
            {
                return call();
            }
            finally
            {
                raisedInside = raised;
                raised = null;
            }
        }

        /// <summary>The generator keeps this object alive while a call runs.</summary>
        ~Translation()
        {
            Marshal.FreeHGlobal(text);
        }

        /// <summary>No exception may leave the callback: after one the text stays as it
        /// is.</summary>
        private IntPtr Call(IntPtr original, IntPtr context)
        {
            if (raised != null) return original;
            try
            {
                byte[] translated = Translated(ReportTexts.FromUtf8(original));
                if (translated == null) return original;
                Keep(translated);
                return text;
            }
            catch (Exception exception)
            {
                raised = ExceptionDispatchInfo.Capture(exception);
                return original;
            }
        }

        /// <summary>Null for a text that stays as it is.</summary>
        private byte[] Translated(string original)
        {
            string translation = translate(original);
            if (translation == null || translation == original) return null;
            translation = isMarkup ? ReportTexts.CheckedMarkup(translation, "a translation")
                                   : ReportTexts.AsMarkup(original, translation);
            return ReportTexts.ToUtf8(translation, "a translation");
        }

        /// <summary>The library copies a text before it requests the next one.</summary>
        private void Keep(byte[] bytes)
        {
            Marshal.FreeHGlobal(text);
            text = IntPtr.Zero;
            text = Marshal.AllocHGlobal(bytes.Length);
            Marshal.Copy(bytes, 0, text, bytes.Length);
        }
    }
}
