// Checks whether a conversion made a pdf: the library always reports success.
//
// SPDX-License-Identifier: MIT
use std::fs::{self, File};
use std::io::{self, Read, Seek, SeekFrom};

use crate::error::{ConversionError, Error};

const SEARCHED: u64 = 1024;
const LONGEST_REASON: u64 = 65536;

/// Fails unless the file is a complete pdf and the converter wrote no text of a failure.
pub(crate) fn require_pdf(path: &str) -> Result<(), Error> {
    let note = part_of(&format!("{path}.error.txt"), 0, LONGEST_REASON).ok();
    let problem = match is_whole_pdf(path) {
        Err(_) => "the converter made no file",
        Ok(false) => "the converter's file is not a whole pdf",
        // The pdf is then a page about the failure.
        Ok(true) if note.is_some() => "the converter failed",
        Ok(true) => return Ok(()),
    };
    let reason = String::from_utf8_lossy(&note.unwrap_or_default()).trim_end().to_string();
    Err(Error::Conversion(ConversionError { path: path.to_string(), problem, reason }))
}

/// Removes the text of an earlier failure.
pub(crate) fn remove_note(path: &str) {
    // A file that cannot be removed is reported after the conversion.
    let _ = fs::remove_file(format!("{path}.error.txt"));
}

/// "%PDF-" at the start and "%%EOF" in the last 1024 bytes.
fn is_whole_pdf(path: &str) -> io::Result<bool> {
    let size = File::open(path)?.metadata()?.len();
    let start = part_of(path, 0, 5)?;
    let end = part_of(path, size.saturating_sub(SEARCHED), SEARCHED)?;
    Ok(start == b"%PDF-" && end.windows(5).any(|letters| letters == b"%%EOF"))
}

/// A number of bytes from a position; fewer at the end of the file.
fn part_of(path: &str, start: u64, length: u64) -> io::Result<Vec<u8>> {
    let mut file = File::open(path)?;
    file.seek(SeekFrom::Start(start))?;
    let mut bytes = Vec::new();
    file.take(length).read_to_end(&mut bytes)?;
    Ok(bytes)
}
