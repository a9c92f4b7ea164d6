// The C interface as this crate uses it; rgen_host.h, rgen.h and rgen_status.h document it. All
// sizes, offsets, numbers and parameters are compared with those of the C compiler by a test.
//
// SPDX-License-Identifier: MIT

//! The functions, records and constants of the C libraries that this crate uses. The module needs
//! `core` only.
#![allow(non_snake_case)]

use core::ffi::c_void;

/// A `char` of C on x64, where it has a sign.
pub type CChar = i8;

/// The version of the headers that these declarations were written from.
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

pub const RGEN_TYPE_EMPTY: u64 = 0;
pub const RGEN_TYPE_INT64: u64 = 1;
pub const RGEN_TYPE_STRING: u64 = 2;
pub const RGEN_TYPE_BYTE_ARRAY: u64 = 3;
pub const RGEN_TYPE_HANDLE: u64 = 4;
pub const RGENH_TYPE_MARKUP: u64 = 5;

pub const RGEN_HINT_GENERIC: u64 = 1;
pub const RGEN_HINT_TIME: u64 = 2;
pub const RGEN_HINT_DATE: u64 = 3;
pub const RGEN_HINT_DATE_TIME: u64 = 4;
pub const RGEN_HINT_SIZE: u64 = 5;
pub const RGEN_HINT_ADDRESS: u64 = 6;
pub const RGEN_HINT_SPEED: u64 = 7;
pub const RGEN_HINT_DUMP: u64 = 8;

pub const RGEN_OUTPUT_FILE: u64 = 0;
pub const RGEN_OUTPUT_DELETE_ON_CLOSE: u64 = 1;
pub const RGEN_OUTPUT_BYTES: u64 = 2;

pub const RGENH_ERROR_STATUS: i32 = 1;
pub const RGENH_ERROR_MEMORY: i32 = 2;
pub const RGENH_ERROR_ENCODING: i32 = 3;
pub const RGENH_ERROR_FILE_SYSTEM: i32 = 4;
pub const RGENH_ERROR_REENTERED: i32 = 5;
pub const RGENH_ERROR_CONVERSION: i32 = 6;
pub const RGENH_ERROR_ARGUMENT: i32 = 7;
pub const RGENH_ERROR_CALLBACK: i32 = 8;

pub const RGENH_PATH_SIZE: usize = 4096;
pub const RGENH_MESSAGE_SIZE: usize = 2048;
pub const RGENH_VERSION_SIZE: usize = 32;
pub const RGENH_GUID_TEXT_SIZE: usize = 37;
pub const RGENH_NO_ENTRY: u64 = u64::MAX;
pub const RGENH_NULL_TERMINATED: u64 = u64::MAX;
pub const RGENH_PLAIN: u64 = 0;
pub const RGENH_MARKUP: u64 = 1;

/// Opaque here.
#[repr(C)]
pub struct RgenReportGenerator {
    _private: [u8; 0],
}

/// Opaque here.
#[repr(C)]
pub struct RgenCInputParams {
    _private: [u8; 0],
}

/// Opaque here.
#[repr(C)]
pub struct RgenhRequest {
    _private: [u8; 0],
}

/// Opaque here.
#[repr(C)]
pub struct RgenhJob {
    _private: [u8; 0],
}

#[repr(C)]
#[derive(Clone, Copy, PartialEq, Eq, Hash)]
pub struct RgenGuid {
    pub data1: u32,
    pub data2: u16,
    pub data3: u16,
    pub data4: [u8; 8],
}

#[repr(C)]
#[derive(Clone, Copy)]
pub struct RgenAnsiString {
    pub length: u32,
    pub data: *mut CChar,
}

#[repr(C)]
#[derive(Clone, Copy)]
pub struct RgenByteArray {
    pub size: u32,
    pub data: *mut u8,
}

#[repr(C)]
#[derive(Clone, Copy)]
pub union RgenCVariantValue {
    pub int64Value: i64,
    pub stringValue: RgenAnsiString,
    pub byteArrayValue: RgenByteArray,
    pub handleValue: *mut c_void,
}

#[repr(C)]
#[derive(Clone, Copy)]
pub struct RgenCVariant {
    pub name: RgenAnsiString,
    pub value: RgenCVariantValue,
    pub r#type: u64,
    pub hint: u64,
}

#[repr(C)]
#[derive(Clone, Copy)]
pub struct RgenCVariantSet {
    pub items: *mut RgenCVariant,
    pub count: u64,
}

#[repr(C)]
#[derive(Clone, Copy)]
pub struct RgenCAnsiStringPairSet {
    pub keys: *mut RgenAnsiString,
    pub values: *mut RgenAnsiString,
    pub count: u64,
}

#[repr(C)]
#[derive(Clone, Copy)]
pub struct RgenhError {
    pub size: u64,
    pub kind: i32,
    pub status: RgenStatus,
    pub systemError: i64,
    pub argument: i32,
    pub entryIsPair: i32,
    pub entry: u64,
    pub path: [u8; RGENH_PATH_SIZE],
    pub message: [u8; RGENH_MESSAGE_SIZE],
}

#[repr(C)]
#[derive(Clone, Copy)]
pub struct RgenhValue {
    pub name: *const u8,
    pub nameSize: u64,
    pub r#type: u64,
    pub hint: u64,
    pub number: i64,
    pub data: *const c_void,
    pub size: u64,
}

#[repr(C)]
#[derive(Clone, Copy)]
pub struct RgenhRequestParts {
    pub size: u64,
    pub reportType: *const CChar,
    pub templateGuid: RgenGuid,
    pub format: *const CChar,
    pub outputPath: *const CChar,
    pub converterBase: *const CChar,
    pub outputMode: u64,
    pub skipExternalConversion: u64,
    pub values: *const RgenhValue,
    pub valueCount: u64,
    pub pairs: *const RgenhValue,
    pub pairCount: u64,
}

#[repr(C)]
#[derive(Clone, Copy)]
pub struct RgenhVersions {
    pub size: u64,
    pub library: [u8; RGENH_VERSION_SIZE],
    pub host: [u8; RGENH_VERSION_SIZE],
    pub libraryPath: [u8; RGENH_PATH_SIZE],
    pub hostPath: [u8; RGENH_PATH_SIZE],
}

pub type RgenTranslateFunction =
    Option<unsafe extern "C" fn(text: *const CChar, context: *mut c_void) -> *const CChar>;

pub type RgenhJobEndFunction =
    Option<unsafe extern "C" fn(job: *mut RgenhJob, context: *mut c_void)>;

#[link(name = "strata_repgenlib_host")]
extern "C" {
    pub fn rgenh_newReportGenerator(error: *mut RgenhError) -> *mut RgenReportGenerator;
    pub fn rgenh_freeReportGenerator(
        generator: *mut RgenReportGenerator,
        error: *mut RgenhError,
    ) -> RgenStatus;
    pub fn rgenh_setDataDirPath(
        generator: *mut RgenReportGenerator,
        path: *const CChar,
        error: *mut RgenhError,
    ) -> RgenStatus;
    pub fn rgenh_setTranslator(
        generator: *mut RgenReportGenerator,
        translate: RgenTranslateFunction,
        context: *mut c_void,
        form: u64,
        error: *mut RgenhError,
    ) -> RgenStatus;
    pub fn rgenh_cancel(
        generator: *mut RgenReportGenerator,
        guid: *const RgenGuid,
        error: *mut RgenhError,
    ) -> RgenStatus;
    pub fn rgenh_generateReport(
        generator: *mut RgenReportGenerator,
        input: *const RgenCInputParams,
        result: *mut RgenCVariant,
        error: *mut RgenhError,
    ) -> RgenStatus;
    pub fn rgenh_dumpRawInputDataToFile(
        generator: *mut RgenReportGenerator,
        input: *const RgenCInputParams,
        path: *const CChar,
        error: *mut RgenhError,
    ) -> RgenStatus;
    pub fn rgenh_getSimulatedRawDataFromFile(
        generator: *mut RgenReportGenerator,
        path: *const CChar,
        variants: *mut RgenCVariantSet,
        error: *mut RgenhError,
    ) -> i32;
    pub fn rgenh_newRequest(
        parts: *const RgenhRequestParts,
        error: *mut RgenhError,
    ) -> *mut RgenhRequest;
    pub fn rgenh_getRequestInput(request: *const RgenhRequest) -> *const RgenCInputParams;
    pub fn rgenh_freeRequest(request: *mut RgenhRequest);
    pub fn rgenh_setPersistentValues(
        generator: *mut RgenReportGenerator,
        guid: *const RgenGuid,
        values: *const RgenhValue,
        count: u64,
        error: *mut RgenhError,
    ) -> RgenStatus;
    pub fn rgenh_getPersistentTexts(
        generator: *mut RgenReportGenerator,
        guid: *const RgenGuid,
        pairs: *mut RgenCAnsiStringPairSet,
        error: *mut RgenhError,
    ) -> RgenStatus;
    pub fn rgenh_startReport(
        generator: *mut RgenReportGenerator,
        request: *const RgenhRequest,
        ended: RgenhJobEndFunction,
        context: *mut c_void,
        error: *mut RgenhError,
    ) -> *mut RgenhJob;
    pub fn rgenh_waitForJob(job: *mut RgenhJob, milliseconds: i64, error: *mut RgenhError) -> i32;
    pub fn rgenh_cancelJob(job: *mut RgenhJob, error: *mut RgenhError) -> RgenStatus;
    pub fn rgenh_takeJobResult(
        job: *mut RgenhJob,
        result: *mut RgenCVariant,
        error: *mut RgenhError,
    ) -> RgenStatus;
    pub fn rgenh_freeJob(job: *mut RgenhJob);
    pub fn rgenh_parseGuid(
        text: *const CChar,
        size: u64,
        guid: *mut RgenGuid,
        error: *mut RgenhError,
    ) -> RgenStatus;
    pub fn rgenh_formatGuid(
        guid: *const RgenGuid,
        text: *mut CChar,
        error: *mut RgenhError,
    ) -> RgenStatus;
    pub fn rgenh_parseTime(
        text: *const CChar,
        size: u64,
        seconds: *mut i64,
        error: *mut RgenhError,
    ) -> RgenStatus;
    pub fn rgenh_getStatusText(status: RgenStatus) -> *const CChar;
    pub fn rgenh_getStatusName(status: RgenStatus) -> *const CChar;
    pub fn rgenh_getStatusCause(status: RgenStatus, index: u64) -> *const CChar;
    pub fn rgenh_getStatusNextStep(status: RgenStatus) -> *const CChar;
    pub fn rgenh_getVersions(versions: *mut RgenhVersions, error: *mut RgenhError) -> RgenStatus;
}

#[link(name = "strata_repgenlib")]
extern "C" {
    pub fn rgen_freeRgenCVariant(record: *mut RgenCVariant);
    pub fn rgen_freeRgenCVariantSet(set: *mut RgenCVariantSet);
    pub fn rgen_freeRgenCAnsiStringSet(set: *mut RgenCAnsiStringPairSet);
}
