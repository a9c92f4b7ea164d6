// Values, pairs, and the request that contains them.
//
// SPDX-License-Identifier: MIT
use std::time::{SystemTime, UNIX_EPOCH};

use crate::error::{call, Error};
use crate::guid::Guid;
use crate::nested::{flatten, Node};
use crate::rgen_native as native;

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

    /// A time in the format of ISO 8601: "2026-03-09T08:14:07Z", "2026-03-09 08:14+01:00",
    /// "2026-03-09". Without an offset it is local.
    pub fn time(text: &str, hint: Hint) -> Result<Value, Error> {
        let mut seconds = 0;
        let start = text.as_ptr().cast();
        let size = text.len() as u64;
        call(|error| unsafe { native::rgenh_parseTime(start, size, &mut seconds, error) })?;
        Ok(Value::Integer(seconds, hint))
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

/// Date and time in whole seconds; a report shows them as local time. Calls that use a time before
/// 1970 or after the year 3000 return an error that names the value.
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

    /// Adds the values of objects and lists under flat names: Err.1.Address. See docs/values.md. An
    /// error names the wrong value; nothing is added then.
    pub fn add_nested(&mut self, object: &Node) -> Result<&mut Request, Error> {
        self.values.append(&mut flatten(object)?);
        Ok(self)
    }

    /// Adds a value of any type that serde can serialize, as `add_nested` does.
    #[cfg(feature = "serde")]
    pub fn add_serialized(
        &mut self,
        object: &impl serde::Serialize,
    ) -> Result<&mut Request, Error> {
        self.add_nested(&crate::serialize::node_of(object).map_err(Error::named)?)
    }
}
