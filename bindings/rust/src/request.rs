// Values, pairs, and the request that contains them.
//
// SPDX-License-Identifier: MIT
use std::fmt;
use std::hash::{Hash, Hasher};
use std::str::FromStr;
use std::time::{SystemTime, UNIX_EPOCH};

use crate::rgen_native as native;
use crate::rgen_native::RgenGuid;

/// The GUID of a report type.
#[derive(Clone, Copy)]
pub struct Guid(pub RgenGuid);

/// A text that is not a GUID.
#[derive(Debug, Clone, PartialEq, Eq)]
pub struct GuidError;

impl Guid {
    /// A GUID from its four fields.
    pub const fn new(data1: u32, data2: u16, data3: u16, data4: [u8; 8]) -> Guid {
        Guid(RgenGuid { data1, data2, data3, data4 })
    }

    fn fields(&self) -> (u32, u16, u16, [u8; 8]) {
        let RgenGuid { data1, data2, data3, data4 } = self.0;
        (data1, data2, data3, data4)
    }
}

/// Reads "deadbabe-0000-0000-0000-000000000000", with or without braces.
impl FromStr for Guid {
    type Err = GuidError;

    fn from_str(text: &str) -> Result<Guid, GuidError> {
        let inside = text.strip_prefix('{').and_then(|rest| rest.strip_suffix('}'));
        let groups: Vec<&str> = inside.unwrap_or(text).split('-').collect();
        let lengths: Vec<usize> = groups.iter().map(|group| group.len()).collect();
        let digits = groups.concat();
        if lengths != [8, 4, 4, 4, 12] || !digits.bytes().all(|byte| byte.is_ascii_hexdigit()) {
            return Err(GuidError);
        }
        let number = u128::from_str_radix(&digits, 16).map_err(|_| GuidError)?;
        let low = (number as u64).to_be_bytes();
        Ok(Guid::new((number >> 96) as u32, (number >> 80) as u16, (number >> 64) as u16, low))
    }
}

impl fmt::Display for Guid {
    fn fmt(&self, formatter: &mut fmt::Formatter<'_>) -> fmt::Result {
        let RgenGuid { data1, data2, data3, data4 } = self.0;
        write!(formatter, "{data1:08x}-{data2:04x}-{data3:04x}-")?;
        for (index, byte) in data4.iter().enumerate() {
            write!(formatter, "{}{byte:02x}", if index == 2 { "-" } else { "" })?;
        }
        Ok(())
    }
}

impl fmt::Debug for Guid {
    fn fmt(&self, formatter: &mut fmt::Formatter<'_>) -> fmt::Result {
        fmt::Display::fmt(self, formatter)
    }
}

impl PartialEq for Guid {
    fn eq(&self, other: &Guid) -> bool {
        self.fields() == other.fields()
    }
}

impl Eq for Guid {}

impl Hash for Guid {
    fn hash<H: Hasher>(&self, state: &mut H) {
        self.fields().hash(state);
    }
}

impl fmt::Display for GuidError {
    fn fmt(&self, formatter: &mut fmt::Formatter<'_>) -> fmt::Result {
        formatter.write_str("a GUID is written deadbabe-0000-0000-0000-000000000000")
    }
}

impl std::error::Error for GuidError {}

/// How a 64-bit integer is shown in a report. Texts and bytes do not depend on it.
#[derive(Debug, Clone, Copy, PartialEq, Eq)]
#[repr(u64)]
pub enum Hint {
    /// Signed decimal.
    Generic = native::RGEN_HINT_GENERIC,
    /// Seconds since 1970 UTC, shown as local time "23:59:59".
    Time = native::RGEN_HINT_TIME,
    /// Same, as local date " 1.01.1970".
    Date = native::RGEN_HINT_DATE,
    /// Same, " 1.01.1970 23:59:59".
    DateTime = native::RGEN_HINT_DATE_TIME,
    /// Signed decimal.
    Size = native::RGEN_HINT_SIZE,
    /// "0x" and lower-case hexadecimal digits.
    Address = native::RGEN_HINT_ADDRESS,
    /// Signed decimal.
    Speed = native::RGEN_HINT_SPEED,
}

impl Hint {
    /// The hint with a number of the library; every other number is generic.
    pub fn from_number(number: u64) -> Hint {
        match number {
            native::RGEN_HINT_TIME => Hint::Time,
            native::RGEN_HINT_DATE => Hint::Date,
            native::RGEN_HINT_DATE_TIME => Hint::DateTime,
            native::RGEN_HINT_SIZE => Hint::Size,
            native::RGEN_HINT_ADDRESS => Hint::Address,
            native::RGEN_HINT_SPEED => Hint::Speed,
            _ => Hint::Generic,
        }
    }
}

/// Where a report goes; each mode has a function of [`crate::Generator`].
#[derive(Debug, Clone, Copy, PartialEq, Eq)]
#[repr(u64)]
pub enum OutputMode {
    /// `generate_file`.
    File = native::RGEN_OUTPUT_FILE,
    /// `generate_open_file`.
    DeleteOnClose = native::RGEN_OUTPUT_DELETE_ON_CLOSE,
    /// `generate_bytes`.
    Bytes = native::RGEN_OUTPUT_BYTES,
}

/// A typed value.
#[derive(Debug, Clone, PartialEq, Eq)]
pub enum Value {
    /// A text, which the report shows as it is, "&" included.
    Text(String),
    /// A text that is XML content in the sense of TEXTS in rgen.h.
    Markup(String),
    /// A number and how it is shown.
    Integer(i64, Hint),
    /// Bytes, shown as a hex dump.
    Bytes(Vec<u8>),
}

impl Value {
    /// An address, shown as "0x" and hexadecimal digits.
    pub fn address(number: u64) -> Value {
        Value::Integer(number as i64, Hint::Address)
    }
}

impl From<&str> for Value {
    fn from(text: &str) -> Value {
        Value::Text(text.to_string())
    }
}

impl From<String> for Value {
    fn from(text: String) -> Value {
        Value::Text(text)
    }
}

impl From<&String> for Value {
    fn from(text: &String) -> Value {
        Value::Text(text.clone())
    }
}

impl From<i64> for Value {
    fn from(number: i64) -> Value {
        Value::Integer(number, Hint::Generic)
    }
}

impl From<i32> for Value {
    fn from(number: i32) -> Value {
        Value::from(i64::from(number))
    }
}

impl From<u32> for Value {
    fn from(number: u32) -> Value {
        Value::from(i64::from(number))
    }
}

/// The library's integers are signed: a number above `i64::MAX` is a text of its digits.
impl From<u64> for Value {
    fn from(number: u64) -> Value {
        i64::try_from(number).map_or_else(|_| Value::Text(number.to_string()), Value::from)
    }
}

impl From<usize> for Value {
    fn from(number: usize) -> Value {
        Value::from(number as u64)
    }
}

impl From<Vec<u8>> for Value {
    fn from(bytes: Vec<u8>) -> Value {
        Value::Bytes(bytes)
    }
}

impl From<&[u8]> for Value {
    fn from(bytes: &[u8]) -> Value {
        Value::Bytes(bytes.to_vec())
    }
}

/// Date and time in whole seconds; a report shows them as local time.
impl From<SystemTime> for Value {
    fn from(time: SystemTime) -> Value {
        let seconds = match time.duration_since(UNIX_EPOCH) {
            Ok(since) => since.as_secs() as i64,
            Err(before) => {
                let duration = before.duration();
                -(duration.as_secs() as i64) - i64::from(duration.subsec_nanos() > 0)
            }
        };
        Value::Integer(seconds, Hint::DateTime)
    }
}

/// A name and a text.
#[derive(Debug, Clone, PartialEq, Eq)]
pub struct Pair {
    /// The name, which is the key of the pair.
    pub name: String,
    /// The text.
    pub text: String,
    /// True if the text is XML content, which is passed to the library unchanged.
    pub is_markup: bool,
}

impl Pair {
    /// A text, which the report shows as it is, "&" included.
    pub fn new(name: impl Into<String>, text: impl Into<String>) -> Pair {
        Pair { name: name.into(), text: text.into(), is_markup: false }
    }

    /// A text that is XML content in the sense of TEXTS in rgen.h.
    pub fn markup(name: impl Into<String>, content: impl Into<String>) -> Pair {
        Pair { name: name.into(), text: content.into(), is_markup: true }
    }
}

/// The input of one report. It can be reused.
#[derive(Debug, Clone, PartialEq, Eq)]
pub struct Request {
    /// The report type.
    pub report_type: Guid,
    /// "html", "pdf" or "txt"; also names the template's folder.
    pub format: String,
    /// Named values; they override pairs and persistent data of the same name, and earlier values.
    pub values: Vec<(String, Value)>,
    /// Name/text pairs; they override persistent data of the same name.
    pub pairs: Vec<Pair>,
    /// False: a "pdf" report is written as the template made it, without the converter.
    pub convert: bool,
    /// Passed to the converter as its base. It must not contain a double quote.
    pub converter_base: String,
}

impl Request {
    /// A request without values.
    pub fn new(report_type: Guid, format: impl Into<String>) -> Request {
        Request {
            report_type,
            format: format.into(),
            values: Vec::new(),
            pairs: Vec::new(),
            convert: true,
            converter_base: String::new(),
        }
    }

    /// Adds a value.
    pub fn add(&mut self, name: impl Into<String>, value: impl Into<Value>) -> &mut Request {
        self.values.push((name.into(), value.into()));
        self
    }

    pub(crate) fn converts(&self) -> bool {
        self.format == "pdf" && self.convert
    }
}
