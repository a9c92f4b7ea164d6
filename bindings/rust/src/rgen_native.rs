// The C interface of strata_repgenlib as Rust sees it, letter for letter.
// Written by bindings/generate_declarations.py from the public headers; do not edit.
//
// SPDX-License-Identifier: MIT

//! The functions, records and constants of the library. The header rgen.h documents the
//! contract: ownership, null rules, threads, exceptions. The module needs `core` only.
#![allow(non_snake_case)]

use core::ffi::c_void;

/// A `char` of C on x64, where it has a sign.
pub type CChar = i8;

/// The version of the header that these declarations were made from.
pub const HEADER_VERSION: &str = "0.1.0";

/// Zero or positive is success, negative is failure.
pub type RgenStatus = i32;

/// The operation did what was asked.
pub const RGEN_OK: RgenStatus = 0;
/// A required pointer argument is null.
pub const RGEN_E_BAD_PARAMETER: RgenStatus = 0xC0000001_u32 as RgenStatus;
/// Nothing exists at the path passed to rgen_setDataDirPath.
pub const RGEN_E_DIR_NOT_FOUND: RgenStatus = 0xC0000002_u32 as RgenStatus;
/// The data directory was missing, and somebody else has just created it; set the path again.
pub const RGEN_E_CREATE_DIR: RgenStatus = 0xC0000003_u32 as RgenStatus;
/// The default config.xml cannot be written.
pub const RGEN_E_CREATE_CONFIG: RgenStatus = 0xC0000004_u32 as RgenStatus;
/// config.xml cannot be opened, or no part of it can be parsed.
pub const RGEN_E_OPEN_CONFIG: RgenStatus = 0xC0000005_u32 as RgenStatus;
/// The persistent data file is missing, or no part of it can be parsed.
pub const RGEN_E_OPEN_PERSIST: RgenStatus = 0xC0000006_u32 as RgenStatus;
/// Values, pairs and persistent data together hold no property.
pub const RGEN_E_EMPTY_INPUT: RgenStatus = 0xC0000007_u32 as RgenStatus;
/// config.xml has no usable entry for the GUID.
pub const RGEN_E_GUID_NOT_IN_CONFIG: RgenStatus = 0xC0000008_u32 as RgenStatus;
/// There is no template file in the folder of the output format.
pub const RGEN_E_TEMPLATE_NOT_FOUND: RgenStatus = 0xC0000009_u32 as RgenStatus;
/// The output format is not "html", "pdf" or "txt".
pub const RGEN_E_UNKNOWN_FORMAT: RgenStatus = 0xC000000A_u32 as RgenStatus;
/// The output path is a directory, or the old output file cannot be removed.
pub const RGEN_E_OVERWRITE_OUTPUT: RgenStatus = 0xC000000B_u32 as RgenStatus;
/// The output file, or the temporary HTML file next to it, cannot be created.
pub const RGEN_E_CREATE_OUTPUT: RgenStatus = 0xC000000C_u32 as RgenStatus;
/// Writing the delete-on-close file failed.
pub const RGEN_E_WRITE_OUTPUT: RgenStatus = 0xC000000D_u32 as RgenStatus;
/// The output mode is not 0, 1 or 2.
pub const RGEN_E_UNKNOWN_OUTPUT_MODE: RgenStatus = 0xC000000E_u32 as RgenStatus;
/// Only a part of the bytes could be written to the delete-on-close file.
pub const RGEN_E_WRITE_ALL_OUTPUT: RgenStatus = 0xC000000F_u32 as RgenStatus;
/// The old persistent data file cannot be removed.
pub const RGEN_E_DELETE_PERSIST: RgenStatus = 0xC0000010_u32 as RgenStatus;
/// The persistent data file, or the dump file, cannot be written.
pub const RGEN_E_CREATE_PERSIST: RgenStatus = 0xC0000011_u32 as RgenStatus;
/// The converter "vellum" cannot be started.
pub const RGEN_E_RUN_EXTERNAL: RgenStatus = 0xC0000012_u32 as RgenStatus;
/// The exit code of the converter cannot be queried.
pub const RGEN_E_EXTERNAL_FAILED: RgenStatus = 0xC0000013_u32 as RgenStatus;
/// The simulation file is missing, or no part of it can be parsed (used internally only).
pub const RGEN_E_OPEN_SIMULATION: RgenStatus = 0xC0000014_u32 as RgenStatus;
/// The old dump file cannot be removed.
pub const RGEN_E_DELETE_DUMP: RgenStatus = 0xC0000015_u32 as RgenStatus;
/// Described, but returned by no operation.
pub const RGEN_E_XPATH_DOCUMENT: RgenStatus = 0xC0010001_u32 as RgenStatus;
/// libxml2 cannot create an XPath context (out of memory).
pub const RGEN_E_XPATH_CONTEXT: RgenStatus = 0xC0010002_u32 as RgenStatus;
/// libxml2 cannot evaluate an XPath expression (out of memory).
pub const RGEN_E_XPATH_SEARCH: RgenStatus = 0xC0010003_u32 as RgenStatus;
/// Described, but returned by no operation.
pub const RGEN_E_NO_PERSIST_IN_CONFIG: RgenStatus = 0xC0010004_u32 as RgenStatus;
/// Described, but returned by no operation.
pub const RGEN_E_XPATH_NOT_NODE: RgenStatus = 0xC0010005_u32 as RgenStatus;
/// A file name found in the configuration is empty (a safeguard that no file triggers).
pub const RGEN_E_XPATH_NODE_EMPTY: RgenStatus = 0xC0010006_u32 as RgenStatus;
/// config.xml has no "type" element with a "guid" attribute under /config/reportTypes.
pub const RGEN_E_NO_TYPE_MAP: RgenStatus = 0xC0010007_u32 as RgenStatus;
/// No "type" element of config.xml has a valid GUID and both file names.
pub const RGEN_E_NO_VALID_TYPE_MAP: RgenStatus = 0xC0010008_u32 as RgenStatus;
/// The persistent data file has no named "property" element.
pub const RGEN_E_NO_PERSIST_VALUES: RgenStatus = 0xC0010009_u32 as RgenStatus;
/// No "property" of the persistent data file has both a name and a text.
pub const RGEN_E_NO_VALID_PERSIST_VALUES: RgenStatus = 0xC001000A_u32 as RgenStatus;
/// The template cannot be read, parsed or compiled.
pub const RGEN_E_XSLT_PARSE: RgenStatus = 0xC0020001_u32 as RgenStatus;
/// The template failed while it was applied to the data.
pub const RGEN_E_XSLT_APPLY: RgenStatus = 0xC0020002_u32 as RgenStatus;
/// The template produced no output.
pub const RGEN_E_XSLT_RESULT: RgenStatus = 0xC0020003_u32 as RgenStatus;
/// Catch-all for a failure without a status of its own; returned by no operation.
pub const RGEN_E_UNKNOWN: RgenStatus = 0xC000FFFF_u32 as RgenStatus;
/// rgen_cancel reached the generation. Negative, so it counts as a failure.
pub const RGEN_CANCELED: RgenStatus = 0x80000001_u32 as RgenStatus;

/// The symbolic name of a status.
pub fn status_name(status: RgenStatus) -> Option<&'static str> {
    Some(match status {
        RGEN_OK => "RGEN_OK",
        RGEN_E_BAD_PARAMETER => "RGEN_E_BAD_PARAMETER",
        RGEN_E_DIR_NOT_FOUND => "RGEN_E_DIR_NOT_FOUND",
        RGEN_E_CREATE_DIR => "RGEN_E_CREATE_DIR",
        RGEN_E_CREATE_CONFIG => "RGEN_E_CREATE_CONFIG",
        RGEN_E_OPEN_CONFIG => "RGEN_E_OPEN_CONFIG",
        RGEN_E_OPEN_PERSIST => "RGEN_E_OPEN_PERSIST",
        RGEN_E_EMPTY_INPUT => "RGEN_E_EMPTY_INPUT",
        RGEN_E_GUID_NOT_IN_CONFIG => "RGEN_E_GUID_NOT_IN_CONFIG",
        RGEN_E_TEMPLATE_NOT_FOUND => "RGEN_E_TEMPLATE_NOT_FOUND",
        RGEN_E_UNKNOWN_FORMAT => "RGEN_E_UNKNOWN_FORMAT",
        RGEN_E_OVERWRITE_OUTPUT => "RGEN_E_OVERWRITE_OUTPUT",
        RGEN_E_CREATE_OUTPUT => "RGEN_E_CREATE_OUTPUT",
        RGEN_E_WRITE_OUTPUT => "RGEN_E_WRITE_OUTPUT",
        RGEN_E_UNKNOWN_OUTPUT_MODE => "RGEN_E_UNKNOWN_OUTPUT_MODE",
        RGEN_E_WRITE_ALL_OUTPUT => "RGEN_E_WRITE_ALL_OUTPUT",
        RGEN_E_DELETE_PERSIST => "RGEN_E_DELETE_PERSIST",
        RGEN_E_CREATE_PERSIST => "RGEN_E_CREATE_PERSIST",
        RGEN_E_RUN_EXTERNAL => "RGEN_E_RUN_EXTERNAL",
        RGEN_E_EXTERNAL_FAILED => "RGEN_E_EXTERNAL_FAILED",
        RGEN_E_OPEN_SIMULATION => "RGEN_E_OPEN_SIMULATION",
        RGEN_E_DELETE_DUMP => "RGEN_E_DELETE_DUMP",
        RGEN_E_XPATH_DOCUMENT => "RGEN_E_XPATH_DOCUMENT",
        RGEN_E_XPATH_CONTEXT => "RGEN_E_XPATH_CONTEXT",
        RGEN_E_XPATH_SEARCH => "RGEN_E_XPATH_SEARCH",
        RGEN_E_NO_PERSIST_IN_CONFIG => "RGEN_E_NO_PERSIST_IN_CONFIG",
        RGEN_E_XPATH_NOT_NODE => "RGEN_E_XPATH_NOT_NODE",
        RGEN_E_XPATH_NODE_EMPTY => "RGEN_E_XPATH_NODE_EMPTY",
        RGEN_E_NO_TYPE_MAP => "RGEN_E_NO_TYPE_MAP",
        RGEN_E_NO_VALID_TYPE_MAP => "RGEN_E_NO_VALID_TYPE_MAP",
        RGEN_E_NO_PERSIST_VALUES => "RGEN_E_NO_PERSIST_VALUES",
        RGEN_E_NO_VALID_PERSIST_VALUES => "RGEN_E_NO_VALID_PERSIST_VALUES",
        RGEN_E_XSLT_PARSE => "RGEN_E_XSLT_PARSE",
        RGEN_E_XSLT_APPLY => "RGEN_E_XSLT_APPLY",
        RGEN_E_XSLT_RESULT => "RGEN_E_XSLT_RESULT",
        RGEN_E_UNKNOWN => "RGEN_E_UNKNOWN",
        RGEN_CANCELED => "RGEN_CANCELED",
        _ => return None,
    })
}

/// A value of `RgenVariantType`. No value (after a free).
pub const RGEN_TYPE_EMPTY: u64 = 0;
/// A value of `RgenVariantType`. A signed 64-bit integer.
pub const RGEN_TYPE_INT64: u64 = 1;
/// A value of `RgenVariantType`. A text.
pub const RGEN_TYPE_STRING: u64 = 2;
/// A value of `RgenVariantType`. Bytes.
pub const RGEN_TYPE_BYTE_ARRAY: u64 = 3;
/// A value of `RgenVariantType`. A handle of the operating system.
pub const RGEN_TYPE_HANDLE: u64 = 4;

/// A value of `RgenHint`. The hint of a zero-filled or freed record.
pub const RGEN_HINT_UNINITIALIZED: u64 = 0;
/// A value of `RgenHint`. Signed decimal.
pub const RGEN_HINT_GENERIC: u64 = 1;
/// A value of `RgenHint`. Seconds since 1970 UTC, shown as local time "23:59:59".
pub const RGEN_HINT_TIME: u64 = 2;
/// A value of `RgenHint`. Same, local date " 1.01.1970": day with a leading blank.
pub const RGEN_HINT_DATE: u64 = 3;
/// A value of `RgenHint`. Same, " 1.01.1970 23:59:59".
pub const RGEN_HINT_DATE_TIME: u64 = 4;
/// A value of `RgenHint`. Signed decimal.
pub const RGEN_HINT_SIZE: u64 = 5;
/// A value of `RgenHint`. "0x" and lower-case hexadecimal digits.
pub const RGEN_HINT_ADDRESS: u64 = 6;
/// A value of `RgenHint`. Signed decimal.
pub const RGEN_HINT_SPEED: u64 = 7;
/// A value of `RgenHint`. Marks byte arrays that the library returns.
pub const RGEN_HINT_DUMP: u64 = 8;

/// A value of `RgenOutputMode`. Write the file outputPath.
pub const RGEN_OUTPUT_FILE: u64 = 0;
/// A value of `RgenOutputMode`. Return the open handle of a file that is deleted on close.
pub const RGEN_OUTPUT_DELETE_ON_CLOSE: u64 = 1;
/// A value of `RgenOutputMode`. Return the bytes.
pub const RGEN_OUTPUT_BYTES: u64 = 2;

/// Opaque generator; hosts use pointers to it only. See HANDLES.
#[repr(C)]
pub struct RgenReportGenerator {
    _private: [u8; 0],
}

/// A GUID in the platform's layout: the first three fields are little-endian numbers. 16 bytes.
#[repr(C)]
#[derive(Clone, Copy)]
pub struct RgenGuid {
    /// The first 8 digits of the text form, as a number.
    pub data1: u32,
    /// The next 4 digits.
    pub data2: u16,
    /// The next 4 digits.
    pub data3: u16,
    /// The last 16 digits, byte by byte.
    pub data4: [u8; 8],
}

/// A text in a heap buffer. 16 bytes.
#[repr(C)]
#[derive(Clone, Copy)]
pub struct RgenAnsiString {
    /// Number of bytes, without the terminating zero byte.
    pub length: u32,
    /// Buffer of length + 1 bytes, null-terminated; null in a zero-filled or freed record.
    pub data: *mut CChar,
}

/// Bytes in a heap buffer. 16 bytes.
#[repr(C)]
#[derive(Clone, Copy)]
pub struct RgenByteArray {
    /// Number of bytes (the low 32 bits if a caller passed more).
    pub size: u32,
    /// Buffer of the bytes, without terminator; null in a zero-filled or freed record.
    pub data: *mut u8,
}

/// The value of a RgenCVariant; RgenCVariant::type tells which member is valid. 16 bytes.
#[repr(C)]
#[derive(Clone, Copy)]
pub union RgenCVariantValue {
    /// With RGEN_TYPE_INT64.
    pub int64Value: i64,
    /// With RGEN_TYPE_STRING.
    pub stringValue: RgenAnsiString,
    /// With RGEN_TYPE_BYTE_ARRAY.
    pub byteArrayValue: RgenByteArray,
    /// With RGEN_TYPE_HANDLE. Windows: a HANDLE. Linux: a file descriptor as a number. Never closed
    /// by the library.
    pub handleValue: *mut c_void,
}

/// A value with name, type and hint. 48 bytes.
#[repr(C)]
#[derive(Clone, Copy)]
pub struct RgenCVariant {
    /// The value's name, its key in the input set.
    pub name: RgenAnsiString,
    /// The value, in the member that type selects.
    pub value: RgenCVariantValue,
    /// One of RgenVariantType.
    pub r#type: u64,
    /// One of RgenHint.
    pub hint: u64,
}

/// An array of values. 16 bytes.
#[repr(C)]
#[derive(Clone, Copy)]
pub struct RgenCVariantSet {
    /// Array of count records, or null.
    pub items: *mut RgenCVariant,
    /// Number of entries.
    pub count: u64,
}

/// Name/text pairs in two arrays: keys\[i\] belongs to values\[i\]. 24 bytes.
#[repr(C)]
#[derive(Clone, Copy)]
pub struct RgenCAnsiStringPairSet {
    /// Array of count names, or null.
    pub keys: *mut RgenAnsiString,
    /// Array of count texts, or null.
    pub values: *mut RgenAnsiString,
    /// Number of entries in each of the two arrays.
    pub count: u64,
}

/// The input of one report. 120 bytes.
#[repr(C)]
#[derive(Clone, Copy)]
pub struct RgenCInputParams {
    /// Typed values; they replace pairs and persistent data of the same name.
    pub variants: RgenCVariantSet,
    /// Name/text pairs; they replace persistent data of the same name.
    pub pairs: RgenCAnsiStringPairSet,
    /// Selects the report type in config.xml.
    pub templateGuid: RgenGuid,
    /// One of RgenOutputMode; any other value results in RGEN_E_UNKNOWN_OUTPUT_MODE.
    pub outputMode: u64,
    /// Not zero: a "pdf" report is the unconverted output of the template.
    pub skipExternalConversion: u64,
    /// "html", "pdf" or "txt"; also the name of the template's folder.
    pub outputFormat: RgenAnsiString,
    /// Path of the output file in modes 0 and 1; ignored in mode 2. For a "pdf" that is converted
    /// it must not contain a double quote.
    pub outputPath: RgenAnsiString,
    /// Passed to the converter after " -b "; it must not contain a double quote.
    pub converterBaseArg: RgenAnsiString,
}

/// Translates one marked text of a template. `None` is a null pointer.
pub type RgenTranslateFunction =
    Option<unsafe extern "C" fn(text: *const CChar, context: *mut c_void) -> *const CChar>;

#[rustfmt::skip]
#[link(name = "strata_repgenlib")]
extern "C" {
    /// Creates a generator.
    pub fn rgen_newReportGenerator() -> *mut RgenReportGenerator;
    /// Frees a generator and everything it owns.
    pub fn rgen_freeReportGenerator(generator: *mut RgenReportGenerator);
    /// Sets the folder that contains the generator's data directory ".rgen".
    pub fn rgen_setDataDirPath(
        generator: *mut RgenReportGenerator,
        path: *const CChar,
    ) -> RgenStatus;
    /// Sets the callback that translates the marked texts of templates.
    pub fn rgen_setTranslateFunction(
        generator: *mut RgenReportGenerator,
        translate: RgenTranslateFunction,
        context: *mut c_void,
    );
    /// Asks running generations of a generator to stop.
    pub fn rgen_cancel(generator: *mut RgenReportGenerator, guid: *const RgenGuid);
    /// Generates one report.
    pub fn rgen_generateReport(
        generator: *mut RgenReportGenerator,
        input: *const RgenCInputParams,
        result: *mut RgenCVariant,
    ) -> RgenStatus;
    /// Reads the persistent data of a report type.
    pub fn rgen_getPersistentData(
        generator: *mut RgenReportGenerator,
        guid: *const RgenGuid,
        pairs: *mut RgenCAnsiStringPairSet,
    ) -> RgenStatus;
    /// Replaces the persistent data of a report type with name/text pairs.
    pub fn rgen_setPersistentDataFromAnsiStringPairSet(
        generator: *mut RgenReportGenerator,
        guid: *const RgenGuid,
        pairs: *const RgenCAnsiStringPairSet,
    ) -> RgenStatus;
    /// Replaces the persistent data of a report type with the display texts of typed values.
    pub fn rgen_setPersistentDataFromCVariantSet(
        generator: *mut RgenReportGenerator,
        guid: *const RgenGuid,
        variants: *const RgenCVariantSet,
    ) -> RgenStatus;
    /// Writes the typed values of a request as an XML file of names and display texts.
    pub fn rgen_dumpRawInputDataToFile(
        generator: *mut RgenReportGenerator,
        input: *const RgenCInputParams,
        path: *const CChar,
    ) -> RgenStatus;
    /// Reads typed values from an XML file, for a host that runs with simulated input.
    pub fn rgen_getSimulatedRawDataFromFile(
        generator: *mut RgenReportGenerator,
        path: *const CChar,
        variants: *mut RgenCVariantSet,
    ) -> i32;
    /// Describes a status in English.
    pub fn rgen_getStatusCodeDescription(
        generator: *const RgenReportGenerator,
        status: RgenStatus,
    ) -> *const CChar;
    /// Creates a text record from a null-terminated text.
    pub fn rgen_createRgenAnsiString(text: *const CChar, target: *mut RgenAnsiString) -> i32;
    /// Creates a byte array record.
    pub fn rgen_createRgenByteArray(bytes: *const u8, size: u64, target: *mut RgenByteArray) -> i32;
    /// Creates a set of empty name/text pairs. The lower-case "pair" in the function name is
    /// intended.
    pub fn rgen_createRgenCAnsiStringpairSet(
        target: *mut RgenCAnsiStringPairSet,
        count: u64,
    ) -> i32;
    /// Creates a set of empty values.
    pub fn rgen_createRgenCVariantSet(target: *mut RgenCVariantSet, count: u64) -> i32;
    /// Creates a named 64-bit integer.
    pub fn rgen_createRgenCVariantInt64(
        name: *const CChar,
        value: i64,
        hint: u64,
        target: *mut RgenCVariant,
    ) -> i32;
    /// Creates a named handle. Reports, dumps and persistent data do not contain handles.
    pub fn rgen_createRgenCVariantHandle(
        name: *const CChar,
        handle: *mut c_void,
        hint: u64,
        target: *mut RgenCVariant,
    ) -> i32;
    /// Creates a named text.
    pub fn rgen_createRgenCVariantString(
        name: *const CChar,
        text: *const CChar,
        hint: u64,
        target: *mut RgenCVariant,
    ) -> i32;
    /// Creates a named byte array.
    pub fn rgen_createRgenCVariantByteArray(
        name: *const CChar,
        bytes: *const u8,
        size: u64,
        hint: u64,
        target: *mut RgenCVariant,
    ) -> i32;
    /// Frees the buffer of a text record and empties the record.
    pub fn rgen_freeRgenAnsiString(record: *mut RgenAnsiString);
    /// Frees the buffer of a byte array record and empties the record.
    pub fn rgen_freeRgenByteArray(record: *mut RgenByteArray);
    /// Frees the buffers of a value and empties the record; a handle in it is not closed.
    pub fn rgen_freeRgenCVariant(record: *mut RgenCVariant);
    /// Frees all values of a set and its array, and empties the record.
    pub fn rgen_freeRgenCVariantSet(set: *mut RgenCVariantSet);
    /// Frees all texts of a set of pairs and both arrays, and empties the record. In spite of its
    /// name it is the counterpart of rgen_createRgenCAnsiStringpairSet.
    pub fn rgen_freeRgenCAnsiStringSet(set: *mut RgenCAnsiStringPairSet);
    /// Frees everything inside a request and fills the record with zeros.
    pub fn rgen_freeRgenCInputParams(input: *mut RgenCInputParams);
}

// The compiler refuses another layout.
const _: () = assert!(core::mem::size_of::<RgenGuid>() == 16);
const _: () = assert!(core::mem::size_of::<RgenAnsiString>() == 16);
const _: () = assert!(core::mem::size_of::<RgenByteArray>() == 16);
const _: () = assert!(core::mem::size_of::<RgenCVariantValue>() == 16);
const _: () = assert!(core::mem::size_of::<RgenCVariant>() == 48);
const _: () = assert!(core::mem::size_of::<RgenCVariantSet>() == 16);
const _: () = assert!(core::mem::size_of::<RgenCAnsiStringPairSet>() == 24);
const _: () = assert!(core::mem::size_of::<RgenCInputParams>() == 120);

#[cfg(test)]
mod layout_tests {
    use super::*;
    use core::mem::{align_of, size_of, MaybeUninit};
    use core::ptr::addr_of;

    #[test]
    #[allow(non_snake_case)]
    fn layout_of_RgenGuid() {
        let record = MaybeUninit::<RgenGuid>::uninit();
        let start = record.as_ptr();
        assert_eq!(size_of::<RgenGuid>(), 16);
        assert_eq!(align_of::<RgenGuid>(), 4);
        let field = unsafe { addr_of!((*start).data1) } as usize;
        assert_eq!(field - start as usize, 0);
        let field = unsafe { addr_of!((*start).data2) } as usize;
        assert_eq!(field - start as usize, 4);
        let field = unsafe { addr_of!((*start).data3) } as usize;
        assert_eq!(field - start as usize, 6);
        let field = unsafe { addr_of!((*start).data4) } as usize;
        assert_eq!(field - start as usize, 8);
    }

    #[test]
    #[allow(non_snake_case)]
    fn layout_of_RgenAnsiString() {
        let record = MaybeUninit::<RgenAnsiString>::uninit();
        let start = record.as_ptr();
        assert_eq!(size_of::<RgenAnsiString>(), 16);
        assert_eq!(align_of::<RgenAnsiString>(), 8);
        let field = unsafe { addr_of!((*start).length) } as usize;
        assert_eq!(field - start as usize, 0);
        let field = unsafe { addr_of!((*start).data) } as usize;
        assert_eq!(field - start as usize, 8);
    }

    #[test]
    #[allow(non_snake_case)]
    fn layout_of_RgenByteArray() {
        let record = MaybeUninit::<RgenByteArray>::uninit();
        let start = record.as_ptr();
        assert_eq!(size_of::<RgenByteArray>(), 16);
        assert_eq!(align_of::<RgenByteArray>(), 8);
        let field = unsafe { addr_of!((*start).size) } as usize;
        assert_eq!(field - start as usize, 0);
        let field = unsafe { addr_of!((*start).data) } as usize;
        assert_eq!(field - start as usize, 8);
    }

    #[test]
    #[allow(non_snake_case)]
    fn layout_of_RgenCVariantValue() {
        let record = MaybeUninit::<RgenCVariantValue>::uninit();
        let start = record.as_ptr();
        assert_eq!(size_of::<RgenCVariantValue>(), 16);
        assert_eq!(align_of::<RgenCVariantValue>(), 8);
        let field = unsafe { addr_of!((*start).int64Value) } as usize;
        assert_eq!(field - start as usize, 0);
        let field = unsafe { addr_of!((*start).stringValue) } as usize;
        assert_eq!(field - start as usize, 0);
        let field = unsafe { addr_of!((*start).byteArrayValue) } as usize;
        assert_eq!(field - start as usize, 0);
        let field = unsafe { addr_of!((*start).handleValue) } as usize;
        assert_eq!(field - start as usize, 0);
    }

    #[test]
    #[allow(non_snake_case)]
    fn layout_of_RgenCVariant() {
        let record = MaybeUninit::<RgenCVariant>::uninit();
        let start = record.as_ptr();
        assert_eq!(size_of::<RgenCVariant>(), 48);
        assert_eq!(align_of::<RgenCVariant>(), 8);
        let field = unsafe { addr_of!((*start).name) } as usize;
        assert_eq!(field - start as usize, 0);
        let field = unsafe { addr_of!((*start).value) } as usize;
        assert_eq!(field - start as usize, 16);
        let field = unsafe { addr_of!((*start).r#type) } as usize;
        assert_eq!(field - start as usize, 32);
        let field = unsafe { addr_of!((*start).hint) } as usize;
        assert_eq!(field - start as usize, 40);
    }

    #[test]
    #[allow(non_snake_case)]
    fn layout_of_RgenCVariantSet() {
        let record = MaybeUninit::<RgenCVariantSet>::uninit();
        let start = record.as_ptr();
        assert_eq!(size_of::<RgenCVariantSet>(), 16);
        assert_eq!(align_of::<RgenCVariantSet>(), 8);
        let field = unsafe { addr_of!((*start).items) } as usize;
        assert_eq!(field - start as usize, 0);
        let field = unsafe { addr_of!((*start).count) } as usize;
        assert_eq!(field - start as usize, 8);
    }

    #[test]
    #[allow(non_snake_case)]
    fn layout_of_RgenCAnsiStringPairSet() {
        let record = MaybeUninit::<RgenCAnsiStringPairSet>::uninit();
        let start = record.as_ptr();
        assert_eq!(size_of::<RgenCAnsiStringPairSet>(), 24);
        assert_eq!(align_of::<RgenCAnsiStringPairSet>(), 8);
        let field = unsafe { addr_of!((*start).keys) } as usize;
        assert_eq!(field - start as usize, 0);
        let field = unsafe { addr_of!((*start).values) } as usize;
        assert_eq!(field - start as usize, 8);
        let field = unsafe { addr_of!((*start).count) } as usize;
        assert_eq!(field - start as usize, 16);
    }

    #[test]
    #[allow(non_snake_case)]
    fn layout_of_RgenCInputParams() {
        let record = MaybeUninit::<RgenCInputParams>::uninit();
        let start = record.as_ptr();
        assert_eq!(size_of::<RgenCInputParams>(), 120);
        assert_eq!(align_of::<RgenCInputParams>(), 8);
        let field = unsafe { addr_of!((*start).variants) } as usize;
        assert_eq!(field - start as usize, 0);
        let field = unsafe { addr_of!((*start).pairs) } as usize;
        assert_eq!(field - start as usize, 16);
        let field = unsafe { addr_of!((*start).templateGuid) } as usize;
        assert_eq!(field - start as usize, 40);
        let field = unsafe { addr_of!((*start).outputMode) } as usize;
        assert_eq!(field - start as usize, 56);
        let field = unsafe { addr_of!((*start).skipExternalConversion) } as usize;
        assert_eq!(field - start as usize, 64);
        let field = unsafe { addr_of!((*start).outputFormat) } as usize;
        assert_eq!(field - start as usize, 72);
        let field = unsafe { addr_of!((*start).outputPath) } as usize;
        assert_eq!(field - start as usize, 88);
        let field = unsafe { addr_of!((*start).converterBaseArg) } as usize;
        assert_eq!(field - start as usize, 104);
    }
}
