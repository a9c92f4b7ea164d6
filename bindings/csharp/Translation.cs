// The translators of a generator: the delegates that the library calls, the texts that they
// returned last, and their exceptions.
//
// SPDX-License-Identifier: MIT
using System;
using System.Collections.Generic;
using System.Runtime.ExceptionServices;
using System.Runtime.InteropServices;

namespace StrataRepgenlib
{
    /// <summary>One translator.</summary>
    internal sealed class Translation
    {
        /// <summary>The exception of a translator on this thread, which generates.</summary>
        [ThreadStatic]
        private static ExceptionDispatchInfo thrown;

        /// <summary>The translation that runs on this thread; a translator may use another
        /// generator, whose translator then runs inside it.</summary>
        [ThreadStatic]
        private static Translation running;

        /// <summary>Stored here so that it lives as long as the library may call it; null for no
        /// translator.</summary>
        internal readonly RgenTranslateFunction Function;

        private readonly object owner;
        private readonly Func<string, string> translate;
        private Translation outer;
        private IntPtr text;

        internal Translation(object owner, Func<string, string> translate)
        {
            this.owner = owner;
            this.translate = translate;
            if (translate != null) Function = Call;
        }

        ~Translation()
        {
            Marshal.FreeHGlobal(text);
        }

        /// <summary>Returns and forgets the exception of a translator on this thread.</summary>
        internal static ExceptionDispatchInfo TakeThrown()
        {
            ExceptionDispatchInfo taken = thrown;
            thrown = null;
            return taken;
        }

        /// <summary>True inside a translator of this owner.</summary>
        internal static bool RunsHere(object owner)
        {
            Translation found = running;
            while (found != null && found.owner != owner) found = found.outer;
            return found != null;
        }

        /// <summary>The library calls it for one text at a time. No exception may leave it: null
        /// tells the library that the translator failed.</summary>
        private IntPtr Call(IntPtr original, IntPtr context)
        {
            outer = running;
            running = this;
            try
            {
                string marked = NativeTexts.FromUtf8(original);
                string translated = translate(marked);
                if (translated == null || translated == marked) return original;
                Keep(NativeTexts.ToUtf8(translated, "a translation"));
                return text;
            }
            catch (Exception exception)
            {
                thrown = ExceptionDispatchInfo.Capture(exception);
                return IntPtr.Zero;
            }
            finally
            {
                running = outer;
            }
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

    /// <summary>The translations of one generator: the current one, and those that jobs may still
    /// use.</summary>
    internal sealed class Translations
    {
        private readonly object order = new object();
        private readonly List<Translation> replaced = new List<Translation>();
        private Translation current;
        private int jobs;

        /// <summary>Sets the translator of the library's generator. Two threads do it one after the
        /// other, so that `current` is the one that the library has.</summary>
        internal void Set(GeneratorHandle generator, Func<string, string> translate, ulong form)
        {
            Translation next = new Translation(this, translate);
            if (Translation.RunsHere(this))
            {
                // The library refuses it. With the lock it could not: its owner may wait for the
                // end of this translator.
                Set(generator, next, form);
                return;
            }
            lock (order)
            {
                Set(generator, next, form);
                Replace(next);
            }
        }

        /// <summary>Called before a job starts: from now on translations are kept.</summary>
        internal void BeginJob()
        {
            lock (replaced) ++jobs;
        }

        internal void EndJob()
        {
            lock (replaced)
            {
                if (--jobs == 0) replaced.Clear();
            }
        }

        private static void Set(GeneratorHandle generator, Translation next, ulong form)
        {
            using (ErrorRecord error = new ErrorRecord())
            {
                error.Check(RgenNative.rgenh_setTranslator(generator, next.Function, IntPtr.Zero,
                                                           form, error));
            }
        }

        private void Replace(Translation next)
        {
            lock (replaced)
            {
                if (jobs != 0 && current != null) replaced.Add(current);
                current = next;
            }
        }
    }
}
