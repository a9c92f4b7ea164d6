// What the library says about statuses, and about itself.
//
// SPDX-License-Identifier: MIT
use std::ffi::CStr;
use std::path::PathBuf;

use crate::error::{call, field_text, Error};
use crate::rgen_native::*;

/// The library's description of a status; any number is accepted.
pub fn status_text(status: RgenStatus) -> &'static str {
    unsafe { static_text(rgenh_getStatusText(status)) }
}

/// The name of a status, "RGEN_E_EMPTY_INPUT"; empty for a number without one.
pub fn status_name(status: RgenStatus) -> &'static str {
    unsafe { static_text(rgenh_getStatusName(status)) }
}

/// What to do about a status, one sentence; empty for a number without a name.
pub fn status_next_step(status: RgenStatus) -> &'static str {
    unsafe { static_text(rgenh_getStatusNextStep(status)) }
}

/// The likely causes of a status, the most likely one first.
pub fn status_causes(status: RgenStatus) -> Vec<&'static str> {
    let cause = |index| unsafe { rgenh_getStatusCause(status, index) };
    let causes = (0..).map(cause).take_while(|text| !text.is_null());
    causes.map(|text| unsafe { static_text(text) }).collect()
}

/// The texts about statuses live as long as the library, which the program is linked with.
unsafe fn static_text(text: *const CChar) -> &'static str {
    CStr::from_ptr(text.cast()).to_str().unwrap_or_default()
}

/// The versions and files of the libraries that the process has loaded.
#[derive(Debug, Clone, PartialEq, Eq)]
pub struct Versions {
    /// The version of strata_repgenlib.
    pub library: String,
    /// The version of strata_repgenlib_host.
    pub host: String,
    /// The file of strata_repgenlib.
    pub library_path: PathBuf,
    /// The file of strata_repgenlib_host.
    pub host_path: PathBuf,
}

/// Tells which libraries are loaded.
pub fn versions() -> Result<Versions, Error> {
    // Safe: the record consists of numbers.
    let mut record: RgenhVersions = unsafe { std::mem::zeroed() };
    record.size = std::mem::size_of::<RgenhVersions>() as u64;
    call(|error| unsafe { rgenh_getVersions(&mut record, error) })?;
    Ok(Versions {
        library: field_text(&record.library),
        host: field_text(&record.host),
        library_path: field_text(&record.libraryPath).into(),
        host_path: field_text(&record.hostPath).into(),
    })
}
