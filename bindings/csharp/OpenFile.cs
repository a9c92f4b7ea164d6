// The open file of a delete-on-close report.
//
// SPDX-License-Identifier: MIT
using System;
using System.IO;
using System.Runtime.InteropServices;
using Microsoft.Win32.SafeHandles;

namespace StrataRepgenlib
{
    /// <summary>A file that the system deletes when it is closed: a HANDLE on Windows, for writing
    /// only; a descriptor on Linux, with the offset at the end of the report. If the runtime
    /// accepts foreign descriptors (.NET, .NET Framework; not Mono), a FileStream reads it:
    /// new FileStream(new SafeFileHandle(file.DangerousGetHandle(), false),
    /// FileAccess.Read).</summary>
    public sealed class OpenFile : SafeHandleMinusOneIsInvalid
    {
        internal OpenFile(IntPtr file) : base(true)
        {
            SetHandle(file);
        }

        protected override bool ReleaseHandle()
        {
            bool isWindows = Path.DirectorySeparatorChar == '\\';
            return isWindows ? CloseHandle(handle) != 0 : CloseDescriptor(handle.ToInt32()) == 0;
        }

        [DllImport("kernel32", ExactSpelling = true)]
        private static extern int CloseHandle(IntPtr handle);

        [DllImport("libc", EntryPoint = "close", ExactSpelling = true)]
        private static extern int CloseDescriptor(int descriptor);
    }
}
