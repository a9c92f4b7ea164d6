// What calls of the library take and return: pointers into the host's values, and owners for
// records that the library filled.
//
// SPDX-License-Identifier: MIT
use std::ffi::{CString, OsStr};
use std::path::Path;
use std::ptr::{self, NonNull};
use std::slice;

use crate::error::{call_for, Error};
use crate::request::{Hint, Pair, Request, Value};
use crate::rgen_native::*;

/// The latest time that a report can show: the end of the year 3000.
const LAST_TIME: i64 = 32_535_215_999;

/// A record that may contain buffers of the library.
pub(crate) trait Record {
    /// Frees the buffers.
    unsafe fn release(&mut self);
}

impl Record for RgenCVariant {
    unsafe fn release(&mut self) {
        rgen_freeRgenCVariant(self);
    }
}

impl Record for RgenCVariantSet {
    unsafe fn release(&mut self) {
        rgen_freeRgenCVariantSet(self);
    }
}

impl Record for RgenCAnsiStringPairSet {
    unsafe fn release(&mut self) {
        rgen_freeRgenCAnsiStringSet(self);
    }
}

/// Frees a record with its owner.
pub(crate) struct Owned<R: Record>(pub(crate) R);

impl<R: Record> Owned<R> {
    /// An empty record. All records consist of numbers and pointers, for which zeros are valid.
    pub(crate) fn empty() -> Owned<R> {
        Owned(unsafe { std::mem::zeroed() })
    }
}

impl<R: Record> Drop for Owned<R> {
    fn drop(&mut self) {
        unsafe { self.0.release() }
    }
}

/// A request of the library.
pub(crate) struct NativeRequest(NonNull<RgenhRequest>);

impl NativeRequest {
    pub(crate) fn new(request: &Request, mode: u64, output: &Path) -> Result<NativeRequest, Error> {
        let format = terminated(request.format.as_str(), "the format")?;
        let path = native_path(output)?;
        let base = terminated(request.converter_base.as_str(), "the base")?;
        let pairs: Vec<RgenhValue> = request.pairs.iter().map(pair_record).collect();
        let values = value_records(&request.values)?;
        let parts = RgenhRequestParts {
            size: std::mem::size_of::<RgenhRequestParts>() as u64,
            reportType: ptr::null(),
            templateGuid: request.report_type.0,
            format: format.as_ptr().cast(),
            outputPath: path.as_ptr().cast(),
            converterBase: base.as_ptr().cast(),
            outputMode: mode,
            skipExternalConversion: u64::from(!request.convert),
            values: values.as_ptr(),
            valueCount: values.len() as u64,
            pairs: pairs.as_ptr(),
            pairCount: pairs.len() as u64,
        };
        call_for(|error| unsafe { rgenh_newRequest(&parts, error) })
            .map(NativeRequest)
            .map_err(|error| error.with_key_of(|entry, is_pair| name_of(request, entry, is_pair)))
    }

    pub(crate) fn handle(&self) -> *const RgenhRequest {
        self.0.as_ptr()
    }

    pub(crate) fn input(&self) -> *const RgenCInputParams {
        unsafe { rgenh_getRequestInput(self.handle()) }
    }
}

impl Drop for NativeRequest {
    fn drop(&mut self) {
        unsafe { rgenh_freeRequest(self.0.as_ptr()) }
    }
}

fn name_of(request: &Request, entry: usize, is_pair: bool) -> Option<&str> {
    if is_pair {
        return Some(&request.pairs.get(entry)?.name);
    }
    Some(&request.values.get(entry)?.0)
}

fn record(name: &str, kind: u64) -> RgenhValue {
    RgenhValue {
        name: name.as_ptr(),
        nameSize: name.len() as u64,
        r#type: kind,
        hint: RGEN_HINT_GENERIC,
        number: 0,
        data: ptr::null(),
        size: 0,
    }
}

fn text_record(name: &str, text: &str, kind: u64) -> RgenhValue {
    RgenhValue { data: text.as_ptr().cast(), size: text.len() as u64, ..record(name, kind) }
}

fn integer_record(name: &str, number: i64, hint: Hint) -> Result<RgenhValue, Error> {
    let is_time = matches!(hint, Hint::Time | Hint::Date | Hint::DateTime);
    if is_time && !(0..=LAST_TIME).contains(&number) {
        return Err(Error::about(name, "a report can show times of the years 1970 to 3000 only"));
    }
    Ok(RgenhValue { number, hint: hint as u64, ..record(name, RGEN_TYPE_INT64) })
}

fn pair_record(pair: &Pair) -> RgenhValue {
    let kind = if pair.is_markup { RGENH_TYPE_MARKUP } else { RGEN_TYPE_STRING };
    text_record(&pair.name, &pair.text, kind)
}

/// Records of values, which point into them.
pub(crate) fn value_records(values: &[(String, Value)]) -> Result<Vec<RgenhValue>, Error> {
    values.iter().map(|(name, value)| value_record(name, value)).collect()
}

fn value_record(name: &str, value: &Value) -> Result<RgenhValue, Error> {
    match value {
        Value::Text(text) => Ok(text_record(name, text, RGEN_TYPE_STRING)),
        Value::Markup(content) => Ok(text_record(name, content, RGENH_TYPE_MARKUP)),
        Value::Integer(number, hint) => integer_record(name, *number, *hint),
        Value::Bytes(bytes) => Ok(RgenhValue {
            data: bytes.as_ptr().cast(),
            size: bytes.len() as u64,
            ..record(name, RGEN_TYPE_BYTE_ARRAY)
        }),
    }
}

/// A text that ends at its first zero byte and must not contain another one.
fn terminated(text: impl Into<Vec<u8>>, what: &str) -> Result<CString, Error> {
    CString::new(text).map_err(|_| Error::argument_error(format!("{what} contains a zero byte")))
}

/// A path for the library, which reports one that is not UTF-8.
pub(crate) fn native_path(path: &Path) -> Result<CString, Error> {
    terminated(path_bytes(path.as_os_str())?, "a path")
}

#[cfg(unix)]
fn path_bytes(path: &OsStr) -> Result<&[u8], Error> {
    Ok(std::os::unix::ffi::OsStrExt::as_bytes(path))
}

#[cfg(windows)]
fn path_bytes(path: &OsStr) -> Result<&str, Error> {
    path.to_str().ok_or_else(|| Error::argument_error("a path contains half a surrogate pair"))
}

/// The bytes of a result; none for a record without an array.
pub(crate) fn bytes_of(record: &RgenCVariant) -> Vec<u8> {
    if record.r#type != RGEN_TYPE_BYTE_ARRAY {
        return Vec::new();
    }
    let array = unsafe { record.value.byteArrayValue };
    if array.data.is_null() {
        return Vec::new();
    }
    unsafe { slice::from_raw_parts(array.data, array.size as usize) }.to_vec()
}

/// A text that the library returned. Invalid UTF-8 becomes U+FFFD.
fn text_of(record: &RgenAnsiString) -> String {
    if record.data.is_null() {
        return String::new();
    }
    let bytes = unsafe { slice::from_raw_parts(record.data.cast(), record.length as usize) };
    String::from_utf8_lossy(bytes).into_owned()
}

fn value_of(record: &RgenCVariant) -> Value {
    match record.r#type {
        RGEN_TYPE_INT64 => {
            Value::Integer(unsafe { record.value.int64Value }, Hint::from_number(record.hint))
        }
        RGEN_TYPE_BYTE_ARRAY => Value::Bytes(bytes_of(record)),
        _ => Value::Text(text_of(unsafe { &record.value.stringValue })),
    }
}

/// The named values of a set that the library filled.
pub(crate) fn values_of(set: &RgenCVariantSet) -> Vec<(String, Value)> {
    if set.items.is_null() {
        return Vec::new();
    }
    let records = unsafe { slice::from_raw_parts(set.items, set.count as usize) };
    records.iter().map(|record| (text_of(&record.name), value_of(record))).collect()
}

/// Names and texts of a set that the library filled.
pub(crate) fn texts_of(set: &RgenCAnsiStringPairSet) -> Vec<(String, String)> {
    if set.keys.is_null() || set.values.is_null() {
        return Vec::new();
    }
    let keys = unsafe { slice::from_raw_parts(set.keys, set.count as usize) };
    let texts = unsafe { slice::from_raw_parts(set.values, set.count as usize) };
    keys.iter().zip(texts).map(|(key, text)| (text_of(key), text_of(text))).collect()
}
