// Owners of what the library creates. Each frees it when it is disposed or collected, after the
// last call that uses it.
//
// SPDX-License-Identifier: MIT
using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;
using Microsoft.Win32.SafeHandles;

namespace StrataRepgenlib
{
    /// <summary>Disposed of at the end of the process at the latest: Mono would wait for ever for
    /// the generator's threads, which it knows from asynchronous reports.</summary>
    internal sealed class GeneratorHandle : SafeHandleZeroOrMinusOneIsInvalid
    {
        private readonly EventHandler atExit;

        internal GeneratorHandle() : base(true)
        {
            // The event must not keep a generator that nobody has.
            WeakReference self = new WeakReference(this);
            atExit = (sender, arguments) => ((GeneratorHandle)self.Target)?.Dispose();
            AppDomain.CurrentDomain.ProcessExit += atExit;
        }

        protected override bool ReleaseHandle()
        {
            AppDomain.CurrentDomain.ProcessExit -= atExit;
            return RgenNative.rgenh_freeReportGenerator(handle, IntPtr.Zero) >= 0;
        }
    }

    internal sealed class RequestHandle : SafeHandleZeroOrMinusOneIsInvalid
    {
        internal RequestHandle() : base(true)
        {
        }

        protected override bool ReleaseHandle()
        {
            RgenNative.rgenh_freeRequest(handle);
            return true;
        }
    }

    internal sealed class JobHandle : SafeHandleZeroOrMinusOneIsInvalid
    {
        internal JobHandle() : base(true)
        {
        }

        protected override bool ReleaseHandle()
        {
            RgenNative.rgenh_freeJob(handle);
            return true;
        }
    }

    /// <summary>The error record of one call. It is not marshalled as a structure: only failures
    /// are worth the copy of 6 KiB.</summary>
    internal sealed class ErrorRecord : SafeHandleZeroOrMinusOneIsInvalid
    {
        private static readonly int Size = Marshal.SizeOf(typeof(RgenhError));

        internal ErrorRecord() : base(true)
        {
            SetHandle(Marshal.AllocHGlobal(Size));
            Marshal.WriteInt64(handle, Size);
        }

        /// <summary>Throws the exception of a failed call.</summary>
        internal void Check(int status, IReadOnlyList<Value> values = null)
        {
            if (status < 0) throw ToException(values);
        }

        /// <summary>The exception of a failed call. The entries are those of the call, pairs first,
        /// so that the exception can name a wrong one.</summary>
        internal ReportException ToException(IReadOnlyList<Value> entries = null, int pairs = 0)
        {
            RgenhError record = (RgenhError)Marshal.PtrToStructure(handle, typeof(RgenhError));
            bool hasEntry = entries != null && record.entry < (ulong)entries.Count;
            int first = record.entryIsPair != 0 ? 0 : pairs;
            return ReportException.Create(new ReportFailure
            {
                Kind = (ReportErrorKind)record.kind,
                Status = record.status,
                SystemError = record.systemError,
                Argument = record.argument,
                Key = hasEntry ? entries[first + (int)record.entry].Name : null,
                Path = NativeTexts.FromUtf8(record.path),
                Message = NativeTexts.FromUtf8(record.message),
            });
        }

        protected override bool ReleaseHandle()
        {
            Marshal.FreeHGlobal(handle);
            return true;
        }
    }
}
