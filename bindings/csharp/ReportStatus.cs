// What the library says about statuses, and about itself.
//
// SPDX-License-Identifier: MIT
using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;

namespace StrataRepgenlib
{
    /// <summary>English texts about statuses; any number is accepted.</summary>
    public static class ReportStatus
    {
        /// <summary>The library's description.</summary>
        public static string Text(int status)
        {
            return Marshal.PtrToStringAnsi(RgenNative.rgenh_getStatusText(status));
        }

        /// <summary>The name, "RGEN_E_EMPTY_INPUT"; empty for a number without one.</summary>
        public static string Name(int status)
        {
            return Marshal.PtrToStringAnsi(RgenNative.rgenh_getStatusName(status));
        }

        /// <summary>The likely causes, the most likely one first.</summary>
        public static IReadOnlyList<string> Causes(int status)
        {
            List<string> causes = new List<string>();
            for (ulong i = 0;; ++i)
            {
                IntPtr cause = RgenNative.rgenh_getStatusCause(status, i);
                if (cause == IntPtr.Zero) return causes;
                causes.Add(Marshal.PtrToStringAnsi(cause));
            }
        }

        /// <summary>What to do, one sentence; empty for a number without a name.</summary>
        public static string NextStep(int status)
        {
            return Marshal.PtrToStringAnsi(RgenNative.rgenh_getStatusNextStep(status));
        }
    }

    /// <summary>The versions and files of the libraries that the process has loaded.</summary>
    public sealed class LibraryVersions
    {
        private LibraryVersions(RgenhVersions versions)
        {
            Library = NativeTexts.FromUtf8(versions.library);
            Host = NativeTexts.FromUtf8(versions.host);
            LibraryPath = NativeTexts.FromUtf8(versions.libraryPath);
            HostPath = NativeTexts.FromUtf8(versions.hostPath);
        }

        /// <summary>The version of strata_repgenlib.</summary>
        public string Library { get; }

        /// <summary>The version of strata_repgenlib_host.</summary>
        public string Host { get; }

        /// <summary>The file of strata_repgenlib.</summary>
        public string LibraryPath { get; }

        /// <summary>The file of strata_repgenlib_host.</summary>
        public string HostPath { get; }

        /// <summary>Asks the loaded libraries.</summary>
        public static LibraryVersions Loaded()
        {
            RgenhVersions versions = new RgenhVersions();
            versions.size = (ulong)Marshal.SizeOf(typeof(RgenhVersions));
            using (ErrorRecord error = new ErrorRecord())
            {
                error.Check(RgenNative.rgenh_getVersions(ref versions, error));
            }
            return new LibraryVersions(versions);
        }
    }
}
