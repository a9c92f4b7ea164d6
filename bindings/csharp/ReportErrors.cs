// The exceptions of the report library, under one base class.
//
// SPDX-License-Identifier: MIT
using System;

namespace StrataRepgenlib
{
    /// <summary>What kind of failure an exception is about.</summary>
    public enum ReportErrorKind
    {
        /// <summary>The library returned a negative status, cancellation too.</summary>
        Status = RgenNative.RGENH_ERROR_STATUS,
        /// <summary>Memory or threads are exhausted.</summary>
        Memory = RgenNative.RGENH_ERROR_MEMORY,
        /// <summary>A text contains half a surrogate pair.</summary>
        Encoding = RgenNative.RGENH_ERROR_ENCODING,
        /// <summary>The file system refused for a reason without a status.</summary>
        FileSystem = RgenNative.RGENH_ERROR_FILE_SYSTEM,
        /// <summary>A translator called its own generator.</summary>
        Reentered = RgenNative.RGENH_ERROR_REENTERED,
        /// <summary>The converter made no pdf, or not a complete one.</summary>
        Conversion = RgenNative.RGENH_ERROR_CONVERSION,
        /// <summary>An argument or value is invalid.</summary>
        Argument = RgenNative.RGENH_ERROR_ARGUMENT,
        /// <summary>A translator returned an invalid text.</summary>
        Callback = RgenNative.RGENH_ERROR_CALLBACK,
        /// <summary>Any other failure.</summary>
        Unknown = RgenNative.RGENH_ERROR_UNKNOWN,
    }

    /// <summary>Why a call failed.</summary>
    internal struct ReportFailure
    {
        internal ReportErrorKind Kind;
        internal int Status;
        internal long SystemError;
        internal int Argument;
        internal string Key;
        internal string Path;
        internal string Message;
    }

    /// <summary>A failure of the report library. The message is complete: "report.html: Template is
    /// not found in folder (0xC0000009 RGEN_E_TEMPLATE_NOT_FOUND)". Null arguments are
    /// ArgumentNullExceptions instead.</summary>
    public class ReportException : Exception
    {
        private readonly ReportFailure failure;

        internal ReportException(ReportFailure failure) : base(failure.Message)
        {
            this.failure = failure;
        }

        /// <summary>The kind of the failure.</summary>
        public ReportErrorKind Kind => failure.Kind;

        /// <summary>The status of the call: negative, one of RgenStatus.</summary>
        public int Status => failure.Status;

        /// <summary>The name of the status, "RGEN_E_TEMPLATE_NOT_FOUND".</summary>
        public string Name => ReportStatus.Name(Status);

        /// <summary>The library's description of the status in English.</summary>
        public string Text => ReportStatus.Text(Status);

        /// <summary>What to do about the status, one sentence.</summary>
        public string NextStep => ReportStatus.NextStep(Status);

        /// <summary>The path that the failure is about; empty if there is none.</summary>
        public string Path => failure.Path;

        /// <summary>The name of the wrong value or pair; null if the failure concerns
        /// none.</summary>
        public string Key => failure.Key;

        /// <summary>The position of the wrong argument of the library's function in rgen_host.h,
        /// from 1 on; 0 if no single argument is wrong.</summary>
        public int Argument => failure.Argument;

        /// <summary>The error number of the operating system (Linux: errno, Windows: GetLastError);
        /// 0 if there is none.</summary>
        public long SystemError => failure.SystemError;

        internal static ReportException Create(ReportFailure failure)
        {
            switch (failure.Kind)
            {
                case ReportErrorKind.Status: return new StatusException(failure);
                case ReportErrorKind.Conversion: return new ConversionException(failure);
                case ReportErrorKind.FileSystem: return new ReportFileException(failure);
                case ReportErrorKind.Argument:
                case ReportErrorKind.Encoding: return new ReportArgumentException(failure);
                default: return new ReportException(failure);
            }
        }
    }

    /// <summary>The library returned a negative status.</summary>
    public sealed class StatusException : ReportException
    {
        internal StatusException(ReportFailure failure) : base(failure)
        {
        }

        /// <summary>True if the generation was cancelled.</summary>
        public bool IsCancellation => Status == RgenStatus.RGEN_CANCELED;
    }

    /// <summary>The converter made no complete pdf. The message contains that of the
    /// converter.</summary>
    public sealed class ConversionException : ReportException
    {
        internal ConversionException(ReportFailure failure) : base(failure)
        {
        }
    }

    /// <summary>The file system refused: access denied, a name that is too long, a circular link.
    /// SystemError has its error number.</summary>
    public sealed class ReportFileException : ReportException
    {
        internal ReportFileException(ReportFailure failure) : base(failure)
        {
        }
    }

    /// <summary>A text, value or path that the library cannot process. Key names the
    /// value.</summary>
    public sealed class ReportArgumentException : ReportException
    {
        internal ReportArgumentException(ReportFailure failure) : base(failure)
        {
        }

        internal static ReportArgumentException Create(string key, string message,
                                                       bool isEncoding = false)
        {
            return new ReportArgumentException(new ReportFailure
            {
                Kind = isEncoding ? ReportErrorKind.Encoding : ReportErrorKind.Argument,
                Status = RgenStatus.RGEN_E_BAD_PARAMETER,
                Key = key,
                Path = "",
                Message = (key == null ? "" : "\"" + key + "\": ") + message,
            });
        }
    }
}
