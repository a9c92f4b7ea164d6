// Checks before calls of the library, whose C++ exceptions would end a host in Rust.
//
// SPDX-License-Identifier: MIT
use std::fs;
use std::io;
use std::path::Path;

use crate::error::Error;
use crate::request::Request;
use crate::texts::{path_text, to_native};

/// Fails unless the system can tell whether the path exists.
pub(crate) fn require_reachable(path: &Path) -> Result<&str, Error> {
    let text = path_text(path)?;
    if text.is_empty() {
        return Err(Error::Text("a path is empty".to_string()));
    }
    match fs::metadata(path) {
        Err(error) if error.kind() != io::ErrorKind::NotFound => Err(Error::io(path, error)),
        _ => Ok(text),
    }
}

/// Checks that the folder exists, and makes the data directory in it as the library does.
pub(crate) fn require_data_dir(folder: &Path) -> Result<(), Error> {
    let data_dir = folder.join(".rgen");
    if let Err(error) = fs::create_dir(&data_dir) {
        if error.kind() != io::ErrorKind::AlreadyExists {
            return Err(Error::io(&data_dir, error));
        }
    }
    match fs::metadata(&data_dir) {
        Err(error) => return Err(Error::io(&data_dir, error)),
        Ok(found) if !found.is_dir() => {
            let problem = io::Error::new(io::ErrorKind::Other, "the data directory is no folder");
            return Err(Error::io(&data_dir, problem));
        }
        Ok(_) => require_reachable(&data_dir.join("config.xml")).map(|_| ()),
    }
}

/// Checks that this process may look for the template of a format.
pub(crate) fn require_templates(folder: &Path, format: &str) -> Result<(), Error> {
    let name = format!(".rgen/templates/{format}/any.xsl");
    to_native(format, "the format")?;
    require_reachable(&folder.join(name)).map(|_| ())
}

pub(crate) fn require_output<'a>(output: &'a Path, request: &Request) -> Result<&'a str, Error> {
    let text = require_reachable(output)?;
    if request.converts() {
        require_reachable(Path::new(&format!("{text}.html")))?;
        if text.contains('"') || request.converter_base.contains('"') {
            return Err(Error::Text("a path for the converter holds a double quote".to_string()));
        }
    }
    Ok(text)
}
