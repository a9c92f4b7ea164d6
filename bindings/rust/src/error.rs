// The error of the crate, and the error record of a call.
//
// SPDX-License-Identifier: MIT
use std::ffi::CStr;
use std::fmt;
use std::io;
use std::path::{Path, PathBuf};
use std::ptr::NonNull;

use crate::rgen_native::*;
use crate::status::{status_name, status_next_step, status_text};

/// What kind of failure an [`Error`] is about.
#[derive(Debug, Clone, Copy, PartialEq, Eq, Hash)]
#[non_exhaustive]
pub enum ErrorKind {
    /// The library returned a negative status, cancellation too.
    Status,
    /// Memory or threads are exhausted.
    Memory,
    /// A path is not valid UTF-8.
    Encoding,
    /// The file system refused for a reason without a status.
    FileSystem,
    /// A translator called its own generator.
    Reentered,
    /// The converter made no pdf, or not a complete one.
    Conversion,
    /// An argument or value is invalid.
    Argument,
    /// A translator returned an invalid text.
    Callback,
    /// Any other failure.
    Unknown,
}

impl ErrorKind {
    fn from_number(number: i32) -> ErrorKind {
        match number {
            RGENH_ERROR_STATUS => ErrorKind::Status,
            RGENH_ERROR_MEMORY => ErrorKind::Memory,
            RGENH_ERROR_ENCODING => ErrorKind::Encoding,
            RGENH_ERROR_FILE_SYSTEM => ErrorKind::FileSystem,
            RGENH_ERROR_REENTERED => ErrorKind::Reentered,
            RGENH_ERROR_CONVERSION => ErrorKind::Conversion,
            RGENH_ERROR_ARGUMENT => ErrorKind::Argument,
            RGENH_ERROR_CALLBACK => ErrorKind::Callback,
            _ => ErrorKind::Unknown,
        }
    }
}

/// A failure. Displayed completely: "report.html: Template is not found in folder (0xC0000009
/// RGEN_E_TEMPLATE_NOT_FOUND)".
#[derive(Debug, Clone)]
pub struct Error(Box<Failure>);

#[derive(Debug, Clone)]
struct Failure {
    kind: ErrorKind,
    status: RgenStatus,
    system_error: i64,
    argument: i32,
    entry: u64,
    entry_is_pair: bool,
    key: Option<String>,
    path: PathBuf,
    message: String,
}

impl Error {
    /// The kind of the failure.
    pub fn kind(&self) -> ErrorKind {
        self.0.kind
    }

    /// The status of the call: negative, one of the constants of [`crate::rgen_native`].
    pub fn status(&self) -> RgenStatus {
        self.0.status
    }

    /// The name of the status, "RGEN_E_TEMPLATE_NOT_FOUND".
    pub fn name(&self) -> &'static str {
        status_name(self.status())
    }

    /// The library's description of the status in English.
    pub fn text(&self) -> &'static str {
        status_text(self.status())
    }

    /// What to do about the status, one sentence.
    pub fn next_step(&self) -> &'static str {
        status_next_step(self.status())
    }

    /// True if the generation was cancelled.
    pub fn is_cancellation(&self) -> bool {
        self.status() == RGEN_CANCELED
    }

    /// The path that the failure is about.
    pub fn path(&self) -> Option<&Path> {
        Some(self.0.path.as_path()).filter(|path| !path.as_os_str().is_empty())
    }

    /// The name of the wrong value or pair.
    pub fn key(&self) -> Option<&str> {
        self.0.key.as_deref()
    }

    /// The position of the wrong argument of the library's function in rgen_host.h, from 1 on.
    pub fn argument(&self) -> Option<i32> {
        Some(self.0.argument).filter(|argument| *argument != 0)
    }

    /// The error of the operating system that caused the failure.
    pub fn system_error(&self) -> Option<io::Error> {
        let number = self.0.system_error;
        Some(io::Error::from_raw_os_error(number as i32)).filter(|_| number != 0)
    }

    /// A wrong argument.
    pub(crate) fn argument_error(message: impl Into<String>) -> Error {
        Error(Box::new(Failure {
            kind: ErrorKind::Argument,
            status: RGEN_E_BAD_PARAMETER,
            system_error: 0,
            argument: 0,
            entry: RGENH_NO_ENTRY,
            entry_is_pair: false,
            key: None,
            path: PathBuf::new(),
            message: message.into(),
        }))
    }

    /// A wrong value with a name.
    pub(crate) fn about(key: &str, message: &str) -> Error {
        let mut error = Error::argument_error(format!("\"{key}\": {message}"));
        error.0.key = Some(key.to_string());
        error
    }

    /// The same error about a value inside an object or list with a name.
    #[cfg(feature = "serde")]
    pub(crate) fn inside(mut self, name: &str) -> Error {
        self.0.key = Some(match self.0.key {
            Some(key) => format!("{name}.{key}"),
            None => name.to_string(),
        });
        self
    }

    /// The same error with its key in the message.
    #[cfg(feature = "serde")]
    pub(crate) fn named(self) -> Error {
        match self.key() {
            Some(key) => Error::about(key, &self.0.message),
            None => self,
        }
    }

    /// The same error with the name of the entry that the library found wrong. The function gets
    /// its index, and whether it is a pair.
    pub(crate) fn with_key_of<'a>(
        mut self,
        name_of: impl FnOnce(usize, bool) -> Option<&'a str>,
    ) -> Error {
        let entry = usize::try_from(self.0.entry).ok();
        let name = entry.and_then(|entry| name_of(entry, self.0.entry_is_pair));
        self.0.key = name.map(str::to_string);
        self
    }
}

impl fmt::Display for Error {
    fn fmt(&self, formatter: &mut fmt::Formatter<'_>) -> fmt::Result {
        formatter.write_str(&self.0.message)
    }
}

impl std::error::Error for Error {}

/// The text of a field that ends with a zero byte.
pub(crate) fn field_text(field: &[u8]) -> String {
    let end = field.iter().position(|byte| *byte == 0).unwrap_or(field.len());
    String::from_utf8_lossy(&field[..end]).into_owned()
}

/// A text of the library. Invalid UTF-8 becomes U+FFFD.
pub(crate) unsafe fn native_text(text: *const CChar) -> String {
    CStr::from_ptr(text.cast()).to_string_lossy().into_owned()
}

fn empty_record() -> RgenhError {
    // Safe: the record consists of numbers.
    let mut record: RgenhError = unsafe { std::mem::zeroed() };
    record.size = std::mem::size_of::<RgenhError>() as u64;
    record
}

fn error_of(record: &RgenhError) -> Error {
    Error(Box::new(Failure {
        kind: ErrorKind::from_number(record.kind),
        status: record.status,
        system_error: record.systemError,
        argument: record.argument,
        entry: record.entry,
        entry_is_pair: record.entryIsPair != 0,
        key: None,
        path: PathBuf::from(field_text(&record.path)),
        message: field_text(&record.message),
    }))
}

/// Makes a call that returns a status, or another number that is negative on failure.
pub(crate) fn call(make: impl FnOnce(*mut RgenhError) -> i32) -> Result<i32, Error> {
    let mut record = empty_record();
    let number = make(&mut record);
    if number < 0 {
        return Err(error_of(&record));
    }
    Ok(number)
}

/// Makes a call that returns a pointer, which is null on failure.
pub(crate) fn call_for<T>(
    make: impl FnOnce(*mut RgenhError) -> *mut T,
) -> Result<NonNull<T>, Error> {
    let mut record = empty_record();
    NonNull::new(make(&mut record)).ok_or_else(|| error_of(&record))
}
