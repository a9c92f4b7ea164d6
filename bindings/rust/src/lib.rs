// The documentation and the public names of the crate.
//
// SPDX-License-Identifier: MIT

//! Reports from named, typed values, by the C libraries strata_repgenlib and
//! strata_repgenlib_host.
//!
//! ```no_run
//! use strata_repgenlib::{Generator, Hint, Request, Value};
//! use std::time::SystemTime;
//!
//! # fn main() -> Result<(), Box<dyn std::error::Error>> {
//! let mut generator = Generator::new("reports")?;
//! generator.set_translator(|text| text.to_uppercase())?;
//! let mut request = Request::new("deadbabe-0000-0000-0000-000000000000".parse()?, "html");
//! request.add("Device", "Disk 1 & 2");
//! request.add("Capacity", Value::Integer(500107862016, Hint::Size));
//! request.add("Started", SystemTime::now());
//! generator.generate_file(&request, "report.html")?;
//! # Ok(())
//! # }
//! ```
//!
//! The contract of rgen.h applies. Texts are shown in a report as they are; [`Value::Markup`],
//! [`Pair::markup`] and [`Generator::set_markup_translator`] pass XML content. Every failure is an
//! [`Error`]. [`rgen_native`] has the C interface that the crate uses.

mod error;
mod generator;
mod guid;
mod job;
mod nested;
mod records;
mod request;
pub mod rgen_native;
#[cfg(feature = "serde")]
mod serialize;
mod status;
mod translation;

pub use error::{Error, ErrorKind};
pub use generator::Generator;
pub use guid::Guid;
pub use job::Job;
pub use nested::Node;
pub use request::{Hint, Pair, Request, Value};
pub use status::{status_causes, status_name, status_next_step, status_text, versions, Versions};
