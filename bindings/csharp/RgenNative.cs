// The C interface as this binding uses it; rgen_host.h, rgen.h and rgen_status.h document it. All
// sizes, offsets, numbers and parameters are compared with those of the C compiler by a test.
//
// SPDX-License-Identifier: MIT
using System;
using System.Runtime.InteropServices;

namespace StrataRepgenlib
{
    /// <summary>The statuses of the library. Negative ones are failures.</summary>
    public static class RgenStatus
    {
        /// <summary>The operation did what was asked.</summary>
        public const int RGEN_OK = unchecked((int)0x00000000);
        /// <summary>A required pointer argument is null.</summary>
        public const int RGEN_E_BAD_PARAMETER = unchecked((int)0xC0000001);
        /// <summary>Nothing exists at the path passed to rgen_setDataDirPath.</summary>
        public const int RGEN_E_DIR_NOT_FOUND = unchecked((int)0xC0000002);
        /// <summary>The data directory was missing, and somebody else has just created it; set the
        /// path again.</summary>
        public const int RGEN_E_CREATE_DIR = unchecked((int)0xC0000003);
        /// <summary>The default config.xml cannot be written.</summary>
        public const int RGEN_E_CREATE_CONFIG = unchecked((int)0xC0000004);
        /// <summary>config.xml cannot be opened, or no part of it can be parsed.</summary>
        public const int RGEN_E_OPEN_CONFIG = unchecked((int)0xC0000005);
        /// <summary>The persistent data file is missing, or no part of it can be parsed.</summary>
        public const int RGEN_E_OPEN_PERSIST = unchecked((int)0xC0000006);
        /// <summary>Values, pairs and persistent data together hold no property.</summary>
        public const int RGEN_E_EMPTY_INPUT = unchecked((int)0xC0000007);
        /// <summary>config.xml has no usable entry for the GUID.</summary>
        public const int RGEN_E_GUID_NOT_IN_CONFIG = unchecked((int)0xC0000008);
        /// <summary>There is no template file in the folder of the output format.</summary>
        public const int RGEN_E_TEMPLATE_NOT_FOUND = unchecked((int)0xC0000009);
        /// <summary>The output format is not "html", "pdf" or "txt".</summary>
        public const int RGEN_E_UNKNOWN_FORMAT = unchecked((int)0xC000000A);
        /// <summary>The output path is a directory, or the old output file cannot be
        /// removed.</summary>
        public const int RGEN_E_OVERWRITE_OUTPUT = unchecked((int)0xC000000B);
        /// <summary>The output file, or the temporary HTML file next to it, cannot be
        /// created.</summary>
        public const int RGEN_E_CREATE_OUTPUT = unchecked((int)0xC000000C);
        /// <summary>Writing the delete-on-close file failed.</summary>
        public const int RGEN_E_WRITE_OUTPUT = unchecked((int)0xC000000D);
        /// <summary>The output mode is not 0, 1 or 2.</summary>
        public const int RGEN_E_UNKNOWN_OUTPUT_MODE = unchecked((int)0xC000000E);
        /// <summary>Only a part of the bytes could be written to the delete-on-close
        /// file.</summary>
        public const int RGEN_E_WRITE_ALL_OUTPUT = unchecked((int)0xC000000F);
        /// <summary>The old persistent data file cannot be removed.</summary>
        public const int RGEN_E_DELETE_PERSIST = unchecked((int)0xC0000010);
        /// <summary>The persistent data file, or the dump file, cannot be written.</summary>
        public const int RGEN_E_CREATE_PERSIST = unchecked((int)0xC0000011);
        /// <summary>The converter "vellum" cannot be started.</summary>
        public const int RGEN_E_RUN_EXTERNAL = unchecked((int)0xC0000012);
        /// <summary>The exit code of the converter cannot be queried.</summary>
        public const int RGEN_E_EXTERNAL_FAILED = unchecked((int)0xC0000013);
        /// <summary>The simulation file is missing, or no part of it can be parsed (used internally
        /// only).</summary>
        public const int RGEN_E_OPEN_SIMULATION = unchecked((int)0xC0000014);
        /// <summary>The old dump file cannot be removed.</summary>
        public const int RGEN_E_DELETE_DUMP = unchecked((int)0xC0000015);
        /// <summary>Described, but returned by no operation.</summary>
        public const int RGEN_E_XPATH_DOCUMENT = unchecked((int)0xC0010001);
        /// <summary>libxml2 cannot create an XPath context (out of memory).</summary>
        public const int RGEN_E_XPATH_CONTEXT = unchecked((int)0xC0010002);
        /// <summary>libxml2 cannot evaluate an XPath expression (out of memory).</summary>
        public const int RGEN_E_XPATH_SEARCH = unchecked((int)0xC0010003);
        /// <summary>Described, but returned by no operation.</summary>
        public const int RGEN_E_NO_PERSIST_IN_CONFIG = unchecked((int)0xC0010004);
        /// <summary>Described, but returned by no operation.</summary>
        public const int RGEN_E_XPATH_NOT_NODE = unchecked((int)0xC0010005);
        /// <summary>A file name found in the configuration is empty (a safeguard that no file
        /// triggers).</summary>
        public const int RGEN_E_XPATH_NODE_EMPTY = unchecked((int)0xC0010006);
        /// <summary>config.xml has no "type" element with a "guid" attribute under
        /// /config/reportTypes.</summary>
        public const int RGEN_E_NO_TYPE_MAP = unchecked((int)0xC0010007);
        /// <summary>No "type" element of config.xml has a valid GUID and both file names.</summary>
        public const int RGEN_E_NO_VALID_TYPE_MAP = unchecked((int)0xC0010008);
        /// <summary>The persistent data file has no named "property" element.</summary>
        public const int RGEN_E_NO_PERSIST_VALUES = unchecked((int)0xC0010009);
        /// <summary>No "property" of the persistent data file has both a name and a text.</summary>
        public const int RGEN_E_NO_VALID_PERSIST_VALUES = unchecked((int)0xC001000A);
        /// <summary>The template cannot be read, parsed or compiled.</summary>
        public const int RGEN_E_XSLT_PARSE = unchecked((int)0xC0020001);
        /// <summary>The template failed while it was applied to the data.</summary>
        public const int RGEN_E_XSLT_APPLY = unchecked((int)0xC0020002);
        /// <summary>The template produced no output.</summary>
        public const int RGEN_E_XSLT_RESULT = unchecked((int)0xC0020003);
        /// <summary>Catch-all for a failure without a status of its own; returned by no
        /// operation.</summary>
        public const int RGEN_E_UNKNOWN = unchecked((int)0xC000FFFF);
        /// <summary>rgen_cancel reached the generation. Negative, so it counts as a
        /// failure.</summary>
        public const int RGEN_CANCELED = unchecked((int)0x80000001);
    }

    [StructLayout(LayoutKind.Sequential)]
    internal struct RgenAnsiString
    {
        public uint length;
        public IntPtr data;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal struct RgenByteArray
    {
        public uint size;
        public IntPtr data;
    }

    [StructLayout(LayoutKind.Explicit)]
    internal struct RgenCVariantValue
    {
        [FieldOffset(0)]
        public long int64Value;
        [FieldOffset(0)]
        public RgenAnsiString stringValue;
        [FieldOffset(0)]
        public RgenByteArray byteArrayValue;
        [FieldOffset(0)]
        public IntPtr handleValue;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal struct RgenCVariant
    {
        public RgenAnsiString name;
        public RgenCVariantValue value;
        public ulong type;
        public ulong hint;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal struct RgenCVariantSet
    {
        public IntPtr items;
        public ulong count;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal struct RgenCAnsiStringPairSet
    {
        public IntPtr keys;
        public IntPtr values;
        public ulong count;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal struct RgenhError
    {
        public ulong size;
        public int kind;
        public int status;
        public long systemError;
        public int argument;
        public int entryIsPair;
        public ulong entry;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = RgenNative.RGENH_PATH_SIZE)]
        public byte[] path;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = RgenNative.RGENH_MESSAGE_SIZE)]
        public byte[] message;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal struct RgenhValue
    {
        public IntPtr name;
        public ulong nameSize;
        public ulong type;
        public ulong hint;
        public long number;
        public IntPtr data;
        public ulong size;
    }

    /// <summary>RgenGuid has the layout of Guid.</summary>
    [StructLayout(LayoutKind.Sequential)]
    internal struct RgenhRequestParts
    {
        public ulong size;
        public IntPtr reportType;
        public Guid templateGuid;
        public IntPtr format;
        public IntPtr outputPath;
        public IntPtr converterBase;
        public ulong outputMode;
        public ulong skipExternalConversion;
        public IntPtr values;
        public ulong valueCount;
        public IntPtr pairs;
        public ulong pairCount;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal struct RgenhVersions
    {
        public ulong size;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = RgenNative.RGENH_VERSION_SIZE)]
        public byte[] library;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = RgenNative.RGENH_VERSION_SIZE)]
        public byte[] host;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = RgenNative.RGENH_PATH_SIZE)]
        public byte[] libraryPath;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = RgenNative.RGENH_PATH_SIZE)]
        public byte[] hostPath;
    }

    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    internal delegate IntPtr RgenTranslateFunction(IntPtr text, IntPtr context);

    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    internal delegate void RgenhJobEndFunction(IntPtr job, IntPtr context);

    internal static class RgenNative
    {
        internal const string HeaderVersion = "0.1.0";

        internal const ulong RGEN_TYPE_EMPTY = 0;
        internal const ulong RGEN_TYPE_INT64 = 1;
        internal const ulong RGEN_TYPE_STRING = 2;
        internal const ulong RGEN_TYPE_BYTE_ARRAY = 3;
        internal const ulong RGEN_TYPE_HANDLE = 4;
        internal const ulong RGENH_TYPE_MARKUP = 5;

        internal const ulong RGEN_HINT_GENERIC = 1;
        internal const ulong RGEN_HINT_TIME = 2;
        internal const ulong RGEN_HINT_DATE = 3;
        internal const ulong RGEN_HINT_DATE_TIME = 4;
        internal const ulong RGEN_HINT_SIZE = 5;
        internal const ulong RGEN_HINT_ADDRESS = 6;
        internal const ulong RGEN_HINT_SPEED = 7;
        internal const ulong RGEN_HINT_DUMP = 8;

        internal const ulong RGEN_OUTPUT_FILE = 0;
        internal const ulong RGEN_OUTPUT_DELETE_ON_CLOSE = 1;
        internal const ulong RGEN_OUTPUT_BYTES = 2;

        internal const int RGENH_ERROR_STATUS = 1;
        internal const int RGENH_ERROR_MEMORY = 2;
        internal const int RGENH_ERROR_ENCODING = 3;
        internal const int RGENH_ERROR_FILE_SYSTEM = 4;
        internal const int RGENH_ERROR_REENTERED = 5;
        internal const int RGENH_ERROR_CONVERSION = 6;
        internal const int RGENH_ERROR_ARGUMENT = 7;
        internal const int RGENH_ERROR_CALLBACK = 8;
        internal const int RGENH_ERROR_UNKNOWN = 9;

        internal const int RGENH_PATH_SIZE = 4096;
        internal const int RGENH_MESSAGE_SIZE = 2048;
        internal const int RGENH_VERSION_SIZE = 32;
        internal const ulong RGENH_NO_ENTRY = ulong.MaxValue;
        internal const ulong RGENH_PLAIN = 0;
        internal const ulong RGENH_MARKUP = 1;

        private const string Library = "strata_repgenlib";
        private const string HostLibrary = "strata_repgenlib_host";
        private const CallingConvention C = CallingConvention.Cdecl;

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern GeneratorHandle rgenh_newReportGenerator(ErrorRecord error);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern int rgenh_freeReportGenerator(IntPtr generator, IntPtr error);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern int rgenh_setDataDirPath(GeneratorHandle generator, byte[] path,
            ErrorRecord error);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern int rgenh_setTranslator(GeneratorHandle generator,
            RgenTranslateFunction translate, IntPtr context, ulong form, ErrorRecord error);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern int rgenh_cancel(GeneratorHandle generator, Guid[] guid,
            ErrorRecord error);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern int rgenh_generateReport(GeneratorHandle generator, IntPtr input,
            ref RgenCVariant result, ErrorRecord error);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern int rgenh_dumpRawInputDataToFile(GeneratorHandle generator,
            IntPtr input, byte[] path, ErrorRecord error);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern int rgenh_getSimulatedRawDataFromFile(GeneratorHandle generator,
            byte[] path, ref RgenCVariantSet variants, ErrorRecord error);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern RequestHandle rgenh_newRequest(ref RgenhRequestParts parts,
            ErrorRecord error);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern IntPtr rgenh_getRequestInput(RequestHandle request);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern void rgenh_freeRequest(IntPtr request);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern int rgenh_setPersistentValues(GeneratorHandle generator,
            ref Guid guid, IntPtr values, ulong count, ErrorRecord error);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern int rgenh_getPersistentTexts(GeneratorHandle generator,
            ref Guid guid, ref RgenCAnsiStringPairSet pairs, ErrorRecord error);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern JobHandle rgenh_startReport(GeneratorHandle generator,
            RequestHandle request, RgenhJobEndFunction ended, IntPtr context, ErrorRecord error);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern int rgenh_cancelJob(JobHandle job, ErrorRecord error);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern int rgenh_takeJobResult(JobHandle job, ref RgenCVariant result,
            ErrorRecord error);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern void rgenh_freeJob(IntPtr job);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern IntPtr rgenh_getStatusText(int status);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern IntPtr rgenh_getStatusName(int status);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern IntPtr rgenh_getStatusCause(int status, ulong index);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern IntPtr rgenh_getStatusNextStep(int status);

        [DllImport(HostLibrary, CallingConvention = C, ExactSpelling = true)]
        internal static extern int rgenh_getVersions(ref RgenhVersions versions, ErrorRecord error);

        [DllImport(Library, CallingConvention = C, ExactSpelling = true)]
        internal static extern void rgen_freeRgenCVariant(ref RgenCVariant record);

        [DllImport(Library, CallingConvention = C, ExactSpelling = true)]
        internal static extern void rgen_freeRgenCVariantSet(ref RgenCVariantSet set);

        [DllImport(Library, CallingConvention = C, ExactSpelling = true)]
        internal static extern void rgen_freeRgenCAnsiStringSet(ref RgenCAnsiStringPairSet set);
    }
}
