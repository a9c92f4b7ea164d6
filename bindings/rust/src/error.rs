// The errors of the crate.
//
// SPDX-License-Identifier: MIT
use std::fmt;
use std::io;
use std::path::Path;

use crate::generator::status_text;
use crate::rgen_native::{status_name, RgenStatus, RGEN_CANCELED};

/// A failure that the library reported. Displayed completely: "report.html: Template is not found
/// in folder (0xC0000009 RGEN_E_TEMPLATE_NOT_FOUND)".
#[derive(Debug, Clone, PartialEq, Eq)]
pub struct StatusError {
    subject: String,
    status: RgenStatus,
}

impl StatusError {
    pub(crate) fn new(subject: &str, status: RgenStatus) -> StatusError {
        StatusError { subject: subject.to_string(), status }
    }

    /// The status: negative, one of the constants of [`crate::rgen_native`].
    pub fn status(&self) -> RgenStatus {
        self.status
    }

    /// Its symbolic name, "RGEN_E_TEMPLATE_NOT_FOUND"; empty for an unknown number.
    pub fn name(&self) -> &'static str {
        status_name(self.status).unwrap_or("")
    }

    /// The library's description in English.
    pub fn text(&self) -> String {
        status_text(self.status)
    }

    /// True if the generation was cancelled.
    pub fn is_cancellation(&self) -> bool {
        self.status == RGEN_CANCELED
    }
}

impl fmt::Display for StatusError {
    fn fmt(&self, formatter: &mut fmt::Formatter<'_>) -> fmt::Result {
        let number = format!("0x{:08X} {}", self.status, self.name());
        write!(formatter, "{}: {} ({})", self.subject, self.text(), number.trim_end())
    }
}

/// The library reported success, but the converter made no complete pdf.
#[derive(Debug, Clone, PartialEq, Eq)]
pub struct ConversionError {
    pub(crate) path: String,
    pub(crate) problem: &'static str,
    pub(crate) reason: String,
}

impl ConversionError {
    /// The text of `<path>.error.txt`; empty if there is none.
    pub fn reason(&self) -> &str {
        &self.reason
    }
}

impl fmt::Display for ConversionError {
    fn fmt(&self, formatter: &mut fmt::Formatter<'_>) -> fmt::Result {
        write!(formatter, "{}: {}", self.path, self.problem)?;
        if self.reason.is_empty() {
            return Ok(());
        }
        write!(formatter, ": {}", self.reason)
    }
}

/// Why a call failed.
#[derive(Debug)]
#[non_exhaustive]
pub enum Error {
    /// The library reported a status.
    Status(StatusError),
    /// The converter failed.
    Conversion(ConversionError),
    /// A text or path that the library cannot process: a zero byte, not UTF-8, a double quote.
    Text(String),
    /// The system rejected a path before the library was called.
    Io(io::Error),
    /// The library ran out of memory.
    OutOfMemory,
}

impl Error {
    pub(crate) fn io(path: &Path, error: io::Error) -> Error {
        Error::Io(io::Error::new(error.kind(), format!("{}: {}", path.display(), error)))
    }

    /// The status of the library, if it reported one.
    pub fn status(&self) -> Option<RgenStatus> {
        match self {
            Error::Status(error) => Some(error.status()),
            _ => None,
        }
    }
}

impl fmt::Display for Error {
    fn fmt(&self, formatter: &mut fmt::Formatter<'_>) -> fmt::Result {
        match self {
            Error::Status(error) => error.fmt(formatter),
            Error::Conversion(error) => error.fmt(formatter),
            Error::Text(problem) => formatter.write_str(problem),
            Error::Io(error) => error.fmt(formatter),
            Error::OutOfMemory => formatter.write_str("the report library has no memory"),
        }
    }
}

impl std::error::Error for StatusError {}
impl std::error::Error for ConversionError {}
impl std::error::Error for Error {}
