// Owners for records of the library: they free what was created or filled.
//
// SPDX-License-Identifier: MIT
use std::slice;

use crate::error::Error;
use crate::request::{Hint, OutputMode, Pair, Request, Value};
use crate::rgen_native::*;
use crate::texts::{
    escaped, from_record, require_storable, stored_markup, stored_name, stored_text, to_native,
};

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

impl Record for RgenCInputParams {
    unsafe fn release(&mut self) {
        rgen_freeRgenCInputParams(self);
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

/// When memory is exhausted, the library leaves records empty.
pub(crate) fn require(is_there: bool) -> Result<(), Error> {
    if is_there {
        Ok(())
    } else {
        Err(Error::OutOfMemory)
    }
}

fn create_text(text: &str, what: &str, record: &mut RgenAnsiString) -> Result<(), Error> {
    let native = to_native(text, what)?;
    require(unsafe { rgen_createRgenAnsiString(native.as_ptr().cast(), record) } != 0)
}

/// The create functions return 1 even when memory for a name is exhausted.
fn create_value(name: &str, value: &Value, record: &mut RgenCVariant) -> Result<(), Error> {
    let native = to_native(name, "the name of a value")?;
    let key = native.as_ptr().cast();
    match value {
        Value::Text(text) => create_content(key, &escaped(text), record)?,
        Value::Markup(content) => create_content(key, content, record)?,
        Value::Integer(number, hint) => unsafe {
            rgen_createRgenCVariantInt64(key, *number, *hint as u64, record);
        },
        Value::Bytes(bytes) => unsafe {
            let size = bytes.len() as u64;
            rgen_createRgenCVariantByteArray(key, bytes.as_ptr(), size, RGEN_HINT_DUMP, record);
            require(bytes.is_empty() || !record.value.byteArrayValue.data.is_null())?;
        },
    }
    require(!record.name.data.is_null())
}

fn create_content(
    key: *const CChar,
    content: &str,
    record: &mut RgenCVariant,
) -> Result<(), Error> {
    let native = to_native(content, "a text")?;
    unsafe {
        rgen_createRgenCVariantString(key, native.as_ptr().cast(), RGEN_HINT_GENERIC, record);
        require(!record.value.stringValue.data.is_null())
    }
}

/// Fills a set, with an array even for no values: the dump requires one.
pub(crate) fn create_values(
    values: &[(String, Value)],
    set: &mut RgenCVariantSet,
) -> Result<(), Error> {
    let count = values.len().max(1);
    require(unsafe { rgen_createRgenCVariantSet(set, count as u64) } != 0)?;
    let records = unsafe { slice::from_raw_parts_mut(set.items, count) };
    for ((name, value), record) in values.iter().zip(records) {
        create_value(name, value, record)?;
    }
    set.count = values.len() as u64;
    Ok(())
}

/// A value as the library expects it for persistent data.
pub(crate) fn stored_value(name: &str, value: &Value) -> Result<(String, Value), Error> {
    let content = match value {
        Value::Text(text) => Value::Markup(stored_text(name, text)?),
        Value::Markup(content) => Value::Markup(stored_markup(name, content)?),
        Value::Bytes(bytes) => {
            // They are stored as a hex dump.
            require_storable(name, bytes.len().saturating_mul(3))?;
            value.clone()
        }
        Value::Integer(..) => value.clone(),
    };
    Ok((stored_name(name)?, content))
}

pub(crate) fn create_pairs(pairs: &[Pair], set: &mut RgenCAnsiStringPairSet) -> Result<(), Error> {
    if pairs.is_empty() {
        return Ok(());
    }
    require(unsafe { rgen_createRgenCAnsiStringpairSet(set, pairs.len() as u64) } != 0)?;
    let keys = unsafe { slice::from_raw_parts_mut(set.keys, pairs.len()) };
    let texts = unsafe { slice::from_raw_parts_mut(set.values, pairs.len()) };
    for ((pair, key), text) in pairs.iter().zip(keys).zip(texts) {
        create_text(&pair.name, "the name of a pair", key)?;
        let content = if pair.is_markup { pair.text.clone() } else { escaped(&pair.text) };
        create_text(&content, "the text of a pair", text)?;
    }
    Ok(())
}

pub(crate) fn request_record(
    request: &Request,
    mode: OutputMode,
    output: &str,
) -> Result<Owned<RgenCInputParams>, Error> {
    let mut input = Owned::<RgenCInputParams>::empty();
    let record = &mut input.0;
    create_values(&request.values, &mut record.variants)?;
    create_pairs(&request.pairs, &mut record.pairs)?;
    record.templateGuid = request.report_type.0;
    record.outputMode = mode as u64;
    record.skipExternalConversion = u64::from(!request.convert);
    create_text(&request.format, "the format", &mut record.outputFormat)?;
    create_text(output, "the path", &mut record.outputPath)?;
    create_text(&request.converter_base, "the base", &mut record.converterBaseArg)?;
    Ok(input)
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

fn value_of(record: &RgenCVariant) -> Value {
    match record.r#type {
        RGEN_TYPE_INT64 => {
            Value::Integer(unsafe { record.value.int64Value }, Hint::from_number(record.hint))
        }
        RGEN_TYPE_BYTE_ARRAY => Value::Bytes(bytes_of(record)),
        _ => Value::Text(from_record(unsafe { &record.value.stringValue })),
    }
}

/// The named values of a set that the library filled.
pub(crate) fn values_of(set: &RgenCVariantSet) -> Vec<(String, Value)> {
    if set.items.is_null() {
        return Vec::new();
    }
    let records = unsafe { slice::from_raw_parts(set.items, set.count as usize) };
    records.iter().map(|record| (from_record(&record.name), value_of(record))).collect()
}

/// Names and texts of a set that the library filled.
pub(crate) fn texts_of(set: &RgenCAnsiStringPairSet) -> Vec<(String, String)> {
    if set.keys.is_null() || set.values.is_null() {
        return Vec::new();
    }
    let keys = unsafe { slice::from_raw_parts(set.keys, set.count as usize) };
    let texts = unsafe { slice::from_raw_parts(set.values, set.count as usize) };
    keys.iter().zip(texts).map(|(key, text)| (from_record(key), from_record(text))).collect()
}
