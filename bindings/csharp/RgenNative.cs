// The C interface of strata_repgenlib as C# sees it.
// Written by bindings/generate_declarations.py from the public headers; do not edit.
//
// SPDX-License-Identifier: MIT
using System;
using System.Runtime.InteropServices;

namespace StrataRepgenlib
{
    /// <summary>Values of RgenCVariant::type.</summary>
    public enum RgenVariantType : ulong
    {
        /// <summary>No value (after a free).</summary>
        RGEN_TYPE_EMPTY = 0,
        /// <summary>A signed 64-bit integer.</summary>
        RGEN_TYPE_INT64 = 1,
        /// <summary>A text.</summary>
        RGEN_TYPE_STRING = 2,
        /// <summary>Bytes.</summary>
        RGEN_TYPE_BYTE_ARRAY = 3,
        /// <summary>A handle of the operating system.</summary>
        RGEN_TYPE_HANDLE = 4,
    }

    /// <summary>Values of RgenCVariant::hint: how a 64-bit integer is shown in a report.</summary>
    public enum RgenHint : ulong
    {
        /// <summary>The hint of a zero-filled or freed record.</summary>
        RGEN_HINT_UNINITIALIZED = 0,
        /// <summary>Signed decimal.</summary>
        RGEN_HINT_GENERIC = 1,
        /// <summary>Seconds since 1970 UTC, shown as local time "23:59:59".</summary>
        RGEN_HINT_TIME = 2,
        /// <summary>Same, local date " 1.01.1970": day with a leading blank.</summary>
        RGEN_HINT_DATE = 3,
        /// <summary>Same, " 1.01.1970 23:59:59".</summary>
        RGEN_HINT_DATE_TIME = 4,
        /// <summary>Signed decimal.</summary>
        RGEN_HINT_SIZE = 5,
        /// <summary>"0x" and lower-case hexadecimal digits.</summary>
        RGEN_HINT_ADDRESS = 6,
        /// <summary>Signed decimal.</summary>
        RGEN_HINT_SPEED = 7,
        /// <summary>Marks byte arrays that the library returns.</summary>
        RGEN_HINT_DUMP = 8,
    }

    /// <summary>Values of RgenCInputParams::outputMode.</summary>
    public enum RgenOutputMode : ulong
    {
        /// <summary>Write the file outputPath.</summary>
        RGEN_OUTPUT_FILE = 0,
        /// <summary>Return the open handle of a file that is deleted on close.</summary>
        RGEN_OUTPUT_DELETE_ON_CLOSE = 1,
        /// <summary>Return the bytes.</summary>
        RGEN_OUTPUT_BYTES = 2,
    }

    /// <summary>A GUID in the platform's layout: the first three fields are little-endian numbers.
    /// 16 bytes.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct RgenGuid
    {
        /// <summary>The first 8 digits of the text form, as a number.</summary>
        public uint data1;
        /// <summary>The next 4 digits.</summary>
        public ushort data2;
        /// <summary>The next 4 digits.</summary>
        public ushort data3;
        /// <summary>The last 16 digits, byte by byte.</summary>
        public byte data4_0;
        public byte data4_1;
        public byte data4_2;
        public byte data4_3;
        public byte data4_4;
        public byte data4_5;
        public byte data4_6;
        public byte data4_7;
    }

    /// <summary>A text in a heap buffer. 16 bytes.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct RgenAnsiString
    {
        /// <summary>Number of bytes, without the terminating zero byte.</summary>
        public uint length;
        /// <summary>Buffer of length + 1 bytes, null-terminated; null in a zero-filled or freed
        /// record.</summary>
        public IntPtr data;
    }

    /// <summary>Bytes in a heap buffer. 16 bytes.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct RgenByteArray
    {
        /// <summary>Number of bytes (the low 32 bits if a caller passed more).</summary>
        public uint size;
        /// <summary>Buffer of the bytes, without terminator; null in a zero-filled or freed
        /// record.</summary>
        public IntPtr data;
    }

    /// <summary>The value of a RgenCVariant; RgenCVariant::type tells which member is valid. 16
    /// bytes.</summary>
    [StructLayout(LayoutKind.Explicit)]
    public struct RgenCVariantValue
    {
        /// <summary>With RGEN_TYPE_INT64.</summary>
        [FieldOffset(0)]
        public long int64Value;
        /// <summary>With RGEN_TYPE_STRING.</summary>
        [FieldOffset(0)]
        public RgenAnsiString stringValue;
        /// <summary>With RGEN_TYPE_BYTE_ARRAY.</summary>
        [FieldOffset(0)]
        public RgenByteArray byteArrayValue;
        /// <summary>With RGEN_TYPE_HANDLE. Windows: a HANDLE. Linux: a file descriptor as a number.
        /// Never closed by the library.</summary>
        [FieldOffset(0)]
        public IntPtr handleValue;
    }

    /// <summary>A value with name, type and hint. 48 bytes.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct RgenCVariant
    {
        /// <summary>The value's name, its key in the input set.</summary>
        public RgenAnsiString name;
        /// <summary>The value, in the member that type selects.</summary>
        public RgenCVariantValue value;
        /// <summary>One of RgenVariantType.</summary>
        public ulong type;
        /// <summary>One of RgenHint.</summary>
        public ulong hint;
    }

    /// <summary>An array of values. 16 bytes.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct RgenCVariantSet
    {
        /// <summary>Array of count records, or null.</summary>
        public IntPtr items;
        /// <summary>Number of entries.</summary>
        public ulong count;
    }

    /// <summary>Name/text pairs in two arrays: keys[i] belongs to values[i]. 24 bytes.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct RgenCAnsiStringPairSet
    {
        /// <summary>Array of count names, or null.</summary>
        public IntPtr keys;
        /// <summary>Array of count texts, or null.</summary>
        public IntPtr values;
        /// <summary>Number of entries in each of the two arrays.</summary>
        public ulong count;
    }

    /// <summary>The input of one report. 120 bytes.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct RgenCInputParams
    {
        /// <summary>Typed values; they replace pairs and persistent data of the same
        /// name.</summary>
        public RgenCVariantSet variants;
        /// <summary>Name/text pairs; they replace persistent data of the same name.</summary>
        public RgenCAnsiStringPairSet pairs;
        /// <summary>Selects the report type in config.xml.</summary>
        public RgenGuid templateGuid;
        /// <summary>One of RgenOutputMode; any other value results in
        /// RGEN_E_UNKNOWN_OUTPUT_MODE.</summary>
        public ulong outputMode;
        /// <summary>Not zero: a "pdf" report is the unconverted output of the template.</summary>
        public ulong skipExternalConversion;
        /// <summary>"html", "pdf" or "txt"; also the name of the template's folder.</summary>
        public RgenAnsiString outputFormat;
        /// <summary>Path of the output file in modes 0 and 1; ignored in mode 2. For a "pdf" that
        /// is converted it must not contain a double quote.</summary>
        public RgenAnsiString outputPath;
        /// <summary>Passed to the converter after " -b "; it must not contain a double
        /// quote.</summary>
        public RgenAnsiString converterBaseArg;
    }

    /// <summary>Translates one marked text of a template.</summary>
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate IntPtr RgenTranslateFunction(IntPtr text, IntPtr context);

    /// <summary>The functions and status values of the library, letter for letter. The header
    /// rgen.h documents the contract: ownership, null rules, threads, exceptions. Texts are passed
    /// as null-terminated UTF-8 bytes and returned as pointers to such bytes; nothing is converted
    /// or freed automatically.</summary>
    public static class RgenNative
    {
        /// <summary>The name by which the runtime looks for the library.</summary>
        public const string Library = "strata_repgenlib";

        /// <summary>The version of the header that this file was made from.</summary>
        public const string HeaderVersion = "0.1.0";

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

        /// <summary>The symbolic name of a status, null for other numbers.</summary>
        public static string StatusName(int status)
        {
            switch (status)
            {
                case RGEN_OK: return "RGEN_OK";
                case RGEN_E_BAD_PARAMETER: return "RGEN_E_BAD_PARAMETER";
                case RGEN_E_DIR_NOT_FOUND: return "RGEN_E_DIR_NOT_FOUND";
                case RGEN_E_CREATE_DIR: return "RGEN_E_CREATE_DIR";
                case RGEN_E_CREATE_CONFIG: return "RGEN_E_CREATE_CONFIG";
                case RGEN_E_OPEN_CONFIG: return "RGEN_E_OPEN_CONFIG";
                case RGEN_E_OPEN_PERSIST: return "RGEN_E_OPEN_PERSIST";
                case RGEN_E_EMPTY_INPUT: return "RGEN_E_EMPTY_INPUT";
                case RGEN_E_GUID_NOT_IN_CONFIG: return "RGEN_E_GUID_NOT_IN_CONFIG";
                case RGEN_E_TEMPLATE_NOT_FOUND: return "RGEN_E_TEMPLATE_NOT_FOUND";
                case RGEN_E_UNKNOWN_FORMAT: return "RGEN_E_UNKNOWN_FORMAT";
                case RGEN_E_OVERWRITE_OUTPUT: return "RGEN_E_OVERWRITE_OUTPUT";
                case RGEN_E_CREATE_OUTPUT: return "RGEN_E_CREATE_OUTPUT";
                case RGEN_E_WRITE_OUTPUT: return "RGEN_E_WRITE_OUTPUT";
                case RGEN_E_UNKNOWN_OUTPUT_MODE: return "RGEN_E_UNKNOWN_OUTPUT_MODE";
                case RGEN_E_WRITE_ALL_OUTPUT: return "RGEN_E_WRITE_ALL_OUTPUT";
                case RGEN_E_DELETE_PERSIST: return "RGEN_E_DELETE_PERSIST";
                case RGEN_E_CREATE_PERSIST: return "RGEN_E_CREATE_PERSIST";
                case RGEN_E_RUN_EXTERNAL: return "RGEN_E_RUN_EXTERNAL";
                case RGEN_E_EXTERNAL_FAILED: return "RGEN_E_EXTERNAL_FAILED";
                case RGEN_E_OPEN_SIMULATION: return "RGEN_E_OPEN_SIMULATION";
                case RGEN_E_DELETE_DUMP: return "RGEN_E_DELETE_DUMP";
                case RGEN_E_XPATH_DOCUMENT: return "RGEN_E_XPATH_DOCUMENT";
                case RGEN_E_XPATH_CONTEXT: return "RGEN_E_XPATH_CONTEXT";
                case RGEN_E_XPATH_SEARCH: return "RGEN_E_XPATH_SEARCH";
                case RGEN_E_NO_PERSIST_IN_CONFIG: return "RGEN_E_NO_PERSIST_IN_CONFIG";
                case RGEN_E_XPATH_NOT_NODE: return "RGEN_E_XPATH_NOT_NODE";
                case RGEN_E_XPATH_NODE_EMPTY: return "RGEN_E_XPATH_NODE_EMPTY";
                case RGEN_E_NO_TYPE_MAP: return "RGEN_E_NO_TYPE_MAP";
                case RGEN_E_NO_VALID_TYPE_MAP: return "RGEN_E_NO_VALID_TYPE_MAP";
                case RGEN_E_NO_PERSIST_VALUES: return "RGEN_E_NO_PERSIST_VALUES";
                case RGEN_E_NO_VALID_PERSIST_VALUES: return "RGEN_E_NO_VALID_PERSIST_VALUES";
                case RGEN_E_XSLT_PARSE: return "RGEN_E_XSLT_PARSE";
                case RGEN_E_XSLT_APPLY: return "RGEN_E_XSLT_APPLY";
                case RGEN_E_XSLT_RESULT: return "RGEN_E_XSLT_RESULT";
                case RGEN_E_UNKNOWN: return "RGEN_E_UNKNOWN";
                case RGEN_CANCELED: return "RGEN_CANCELED";
                default: return null;
            }
        }

        /// <summary>Creates a generator.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern IntPtr rgen_newReportGenerator();

        /// <summary>Frees a generator and everything it owns.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void rgen_freeReportGenerator(IntPtr generator);

        /// <summary>Sets the folder that contains the generator's data directory ".rgen".</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_setDataDirPath(IntPtr generator, byte[] path);

        /// <summary>Sets the callback that translates the marked texts of templates.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void rgen_setTranslateFunction(IntPtr generator, RgenTranslateFunction
            translate, IntPtr context);

        /// <summary>Asks running generations of a generator to stop.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void rgen_cancel(IntPtr generator, ref RgenGuid guid);

        /// <summary>Asks running generations of a generator to stop. Takes IntPtr.Zero for
        /// null.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void rgen_cancel(IntPtr generator, IntPtr guid);

        /// <summary>Generates one report.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_generateReport(IntPtr generator, ref RgenCInputParams input,
            ref RgenCVariant result);

        /// <summary>Generates one report. Takes IntPtr.Zero for null.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_generateReport(IntPtr generator, IntPtr input, ref
            RgenCVariant result);

        /// <summary>Reads the persistent data of a report type.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_getPersistentData(IntPtr generator, ref RgenGuid guid, ref
            RgenCAnsiStringPairSet pairs);

        /// <summary>Reads the persistent data of a report type. Takes IntPtr.Zero for
        /// null.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_getPersistentData(IntPtr generator, IntPtr guid, ref
            RgenCAnsiStringPairSet pairs);

        /// <summary>Replaces the persistent data of a report type with name/text pairs.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_setPersistentDataFromAnsiStringPairSet(IntPtr generator, ref
            RgenGuid guid, ref RgenCAnsiStringPairSet pairs);

        /// <summary>Replaces the persistent data of a report type with name/text pairs. Takes
        /// IntPtr.Zero for null.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_setPersistentDataFromAnsiStringPairSet(IntPtr generator,
            IntPtr guid, IntPtr pairs);

        /// <summary>Replaces the persistent data of a report type with the display texts of typed
        /// values.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_setPersistentDataFromCVariantSet(IntPtr generator, ref
            RgenGuid guid, ref RgenCVariantSet variants);

        /// <summary>Replaces the persistent data of a report type with the display texts of typed
        /// values. Takes IntPtr.Zero for null.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_setPersistentDataFromCVariantSet(IntPtr generator, IntPtr
            guid, IntPtr variants);

        /// <summary>Writes the typed values of a request as an XML file of names and display
        /// texts.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_dumpRawInputDataToFile(IntPtr generator, ref RgenCInputParams
            input, byte[] path);

        /// <summary>Writes the typed values of a request as an XML file of names and display texts.
        /// Takes IntPtr.Zero for null.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_dumpRawInputDataToFile(IntPtr generator, IntPtr input, byte[]
            path);

        /// <summary>Reads typed values from an XML file, for a host that runs with simulated
        /// input.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_getSimulatedRawDataFromFile(IntPtr generator, byte[] path, ref
            RgenCVariantSet variants);

        /// <summary>Describes a status in English.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern IntPtr rgen_getStatusCodeDescription(IntPtr generator, int status);

        /// <summary>Creates a text record from a null-terminated text.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_createRgenAnsiString(byte[] text, ref RgenAnsiString target);

        /// <summary>Creates a byte array record.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_createRgenByteArray(byte[] bytes, ulong size, ref
            RgenByteArray target);

        /// <summary>Creates a set of empty name/text pairs. The lower-case "pair" in the function
        /// name is intended.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_createRgenCAnsiStringpairSet(ref RgenCAnsiStringPairSet
            target, ulong count);

        /// <summary>Creates a set of empty values.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_createRgenCVariantSet(ref RgenCVariantSet target, ulong
            count);

        /// <summary>Creates a named 64-bit integer.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_createRgenCVariantInt64(byte[] name, long value, ulong hint,
            ref RgenCVariant target);

        /// <summary>Creates a named handle. Reports, dumps and persistent data do not contain
        /// handles.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_createRgenCVariantHandle(byte[] name, IntPtr handle, ulong
            hint, ref RgenCVariant target);

        /// <summary>Creates a named text.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_createRgenCVariantString(byte[] name, byte[] text, ulong hint,
            ref RgenCVariant target);

        /// <summary>Creates a named byte array.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int rgen_createRgenCVariantByteArray(byte[] name, byte[] bytes, ulong
            size, ulong hint, ref RgenCVariant target);

        /// <summary>Frees the buffer of a text record and empties the record.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void rgen_freeRgenAnsiString(ref RgenAnsiString record);

        /// <summary>Frees the buffer of a byte array record and empties the record.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void rgen_freeRgenByteArray(ref RgenByteArray record);

        /// <summary>Frees the buffers of a value and empties the record; a handle in it is not
        /// closed.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void rgen_freeRgenCVariant(ref RgenCVariant record);

        /// <summary>Frees all values of a set and its array, and empties the record.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void rgen_freeRgenCVariantSet(ref RgenCVariantSet set);

        /// <summary>Frees all texts of a set of pairs and both arrays, and empties the record. In
        /// spite of its name it is the counterpart of rgen_createRgenCAnsiStringpairSet.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void rgen_freeRgenCAnsiStringSet(ref RgenCAnsiStringPairSet set);

        /// <summary>Frees everything inside a request and fills the record with zeros.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void rgen_freeRgenCInputParams(ref RgenCInputParams input);

        /// <summary>Compares every size and offset with the library's; throws an
        /// InvalidOperationException that names the first one that differs.</summary>
        public static void CheckLayout()
        {
            Require("pointer", IntPtr.Size, 8);
            CheckRgenGuid();
            CheckRgenAnsiString();
            CheckRgenByteArray();
            CheckRgenCVariantValue();
            CheckRgenCVariant();
            CheckRgenCVariantSet();
            CheckRgenCAnsiStringPairSet();
            CheckRgenCInputParams();
        }

        private static void CheckRgenGuid()
        {
            Type record = typeof(RgenGuid);
            Require("RgenGuid", Marshal.SizeOf(record), 16);
            RequireOffset(record, "data1", 0);
            RequireOffset(record, "data2", 4);
            RequireOffset(record, "data3", 6);
            RequireOffset(record, "data4_0", 8);
        }

        private static void CheckRgenAnsiString()
        {
            Type record = typeof(RgenAnsiString);
            Require("RgenAnsiString", Marshal.SizeOf(record), 16);
            RequireOffset(record, "length", 0);
            RequireOffset(record, "data", 8);
        }

        private static void CheckRgenByteArray()
        {
            Type record = typeof(RgenByteArray);
            Require("RgenByteArray", Marshal.SizeOf(record), 16);
            RequireOffset(record, "size", 0);
            RequireOffset(record, "data", 8);
        }

        private static void CheckRgenCVariantValue()
        {
            Type record = typeof(RgenCVariantValue);
            Require("RgenCVariantValue", Marshal.SizeOf(record), 16);
            RequireOffset(record, "int64Value", 0);
            RequireOffset(record, "stringValue", 0);
            RequireOffset(record, "byteArrayValue", 0);
            RequireOffset(record, "handleValue", 0);
        }

        private static void CheckRgenCVariant()
        {
            Type record = typeof(RgenCVariant);
            Require("RgenCVariant", Marshal.SizeOf(record), 48);
            RequireOffset(record, "name", 0);
            RequireOffset(record, "value", 16);
            RequireOffset(record, "type", 32);
            RequireOffset(record, "hint", 40);
        }

        private static void CheckRgenCVariantSet()
        {
            Type record = typeof(RgenCVariantSet);
            Require("RgenCVariantSet", Marshal.SizeOf(record), 16);
            RequireOffset(record, "items", 0);
            RequireOffset(record, "count", 8);
        }

        private static void CheckRgenCAnsiStringPairSet()
        {
            Type record = typeof(RgenCAnsiStringPairSet);
            Require("RgenCAnsiStringPairSet", Marshal.SizeOf(record), 24);
            RequireOffset(record, "keys", 0);
            RequireOffset(record, "values", 8);
            RequireOffset(record, "count", 16);
        }

        private static void CheckRgenCInputParams()
        {
            Type record = typeof(RgenCInputParams);
            Require("RgenCInputParams", Marshal.SizeOf(record), 120);
            RequireOffset(record, "variants", 0);
            RequireOffset(record, "pairs", 16);
            RequireOffset(record, "templateGuid", 40);
            RequireOffset(record, "outputMode", 56);
            RequireOffset(record, "skipExternalConversion", 64);
            RequireOffset(record, "outputFormat", 72);
            RequireOffset(record, "outputPath", 88);
            RequireOffset(record, "converterBaseArg", 104);
        }

        private static void RequireOffset(Type record, string field, int wanted)
        {
            int found = Marshal.OffsetOf(record, field).ToInt32();
            Require(record.Name + "." + field, found, wanted);
        }

        private static void Require(string what, int found, int wanted)
        {
            if (found == wanted) return;
            throw new InvalidOperationException(
                what + ": " + found + " bytes where the library has " + wanted);
        }
    }
}
