// The documentation and the public names of the crate.
//
// SPDX-License-Identifier: MIT

//! Reports from named, typed values, by the C library strata_repgenlib.
//!
//! ```no_run
//! use strata_repgenlib::{Generator, Hint, Request, Value};
//! use std::time::SystemTime;
//!
//! # fn main() -> Result<(), Box<dyn std::error::Error>> {
//! let mut generator = Generator::new("reports")?;
//! generator.set_translator(|text| text.to_uppercase());
//! let mut request = Request::new("deadbabe-0000-0000-0000-000000000000".parse()?, "html");
//! request.add("Device", "Disk 1 & 2");
//! request.add("Capacity", Value::Integer(500107862016, Hint::Size));
//! request.add("Started", SystemTime::now());
//! generator.generate_file(&request, "report.html")?;
//! # Ok(())
//! # }
//! ```
//!
//! The contract of rgen.h applies. Texts are shown in a report as they are: "&" is escaped for the
//! library, in persistent data twice. [`Value::Markup`], [`Pair::markup`] and
//! [`Generator::set_markup_translator`] pass XML content unchanged.
//!
//! The library's own C++ exceptions end the process. This crate checks the usual causes before
//! calls; the README lists the others. [`rgen_native`] has the C interface, letter for letter.

mod error;
mod file_checks;
mod generator;
mod pdf_check;
mod records;
mod request;
pub mod rgen_native;
mod texts;
mod translation;

pub use error::{ConversionError, Error, StatusError};
pub use generator::{status_text, Generator};
pub use request::{Guid, GuidError, Hint, OutputMode, Pair, Request, Value};
