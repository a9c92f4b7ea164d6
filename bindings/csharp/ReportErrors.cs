// The exceptions of ReportGenerator.
//
// SPDX-License-Identifier: MIT
using System;

namespace StrataRepgenlib
{
    /// <summary>A failure that the library reported. The message is complete: "report.html:
    /// Template is not found in folder (0xC0000009 RGEN_E_TEMPLATE_NOT_FOUND)".</summary>
    public sealed class StatusException : Exception
    {
        internal StatusException(string subject, int status, string text)
            : base(Describe(subject, status, text))
        {
            Status = status;
            Text = text;
        }

        /// <summary>The status: negative, one of the constants of RgenNative.</summary>
        public int Status { get; }

        /// <summary>Its symbolic name, "RGEN_E_TEMPLATE_NOT_FOUND"; null for an unknown
        /// number.</summary>
        public string Name
        {
            get { return RgenNative.StatusName(Status); }
        }

        /// <summary>The library's description in English.</summary>
        public string Text { get; }

        /// <summary>True if the generation was cancelled.</summary>
        public bool IsCancellation
        {
            get { return Status == RgenNative.RGEN_CANCELED; }
        }

        private static string Describe(string subject, int status, string text)
        {
            string name = RgenNative.StatusName(status);
            string number = "0x" + status.ToString("X8") + (name == null ? "" : " " + name);
            return subject + ": " + text + " (" + number + ")";
        }
    }

    /// <summary>The library reported success, but the converter made no complete pdf.</summary>
    public sealed class ConversionException : Exception
    {
        internal ConversionException(string path, string problem, string reason)
            : base(path + ": " + problem + (reason.Length == 0 ? "" : ": " + reason))
        {
            Reason = reason;
        }

        /// <summary>The text of "&lt;path&gt;.error.txt"; empty if there is none.</summary>
        public string Reason { get; }
    }
}
