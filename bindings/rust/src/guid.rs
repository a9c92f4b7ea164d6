// The GUID of a report type.
//
// SPDX-License-Identifier: MIT
use std::fmt;
use std::str::FromStr;

use crate::error::{call, field_text, Error};
use crate::rgen_native::*;

/// The GUID of a report type.
#[derive(Clone, Copy, PartialEq, Eq, Hash)]
pub struct Guid(pub RgenGuid);

impl Guid {
    /// A GUID from its four fields.
    pub const fn new(data1: u32, data2: u16, data3: u16, data4: [u8; 8]) -> Guid {
        Guid(RgenGuid { data1, data2, data3, data4 })
    }
}

/// Reads "deadbabe-0000-0000-0000-000000000000", with or without braces.
impl FromStr for Guid {
    type Err = Error;

    fn from_str(text: &str) -> Result<Guid, Error> {
        let mut guid = Guid::new(0, 0, 0, [0; 8]);
        let start = text.as_ptr().cast();
        call(|error| unsafe { rgenh_parseGuid(start, text.len() as u64, &mut guid.0, error) })?;
        Ok(guid)
    }
}

impl fmt::Display for Guid {
    fn fmt(&self, formatter: &mut fmt::Formatter<'_>) -> fmt::Result {
        let mut text = [0_u8; RGENH_GUID_TEXT_SIZE];
        call(|error| unsafe { rgenh_formatGuid(&self.0, text.as_mut_ptr().cast(), error) })
            .map_err(|_| fmt::Error)?;
        formatter.pad(&field_text(&text))
    }
}

impl fmt::Debug for Guid {
    fn fmt(&self, formatter: &mut fmt::Formatter<'_>) -> fmt::Result {
        fmt::Display::fmt(self, formatter)
    }
}
