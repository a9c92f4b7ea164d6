// The generator: the owner of the library's handle, and its operations.
//
// SPDX-License-Identifier: MIT
use std::collections::BTreeMap;
use std::env;
use std::ffi::c_void;
use std::fs::File;
use std::panic::resume_unwind;
use std::path::{Path, PathBuf};
use std::ptr;

use crate::error::{Error, StatusError};
use crate::file_checks::{require_data_dir, require_output, require_reachable, require_templates};
use crate::pdf_check::{remove_note, require_pdf};
use crate::records::{
    bytes_of, create_pairs, create_values, request_record, require, stored_value, texts_of,
    values_of, Owned,
};
use crate::request::{Guid, OutputMode, Pair, Request, Value};
use crate::rgen_native::*;
use crate::texts::{from_native, stored_name, stored_text, to_native, without_references};
use crate::translation::{same, translate, watch, Translation};

/// Makes reports. All functions with `&self` may be called by several threads at once.
///
/// A failure is an [`Error`]. When a translator panics, the function that generates panics with the
/// same payload after the report; the file may exist.
pub struct Generator {
    handle: *mut RgenReportGenerator,
    folder: PathBuf,
    /// Null, or from a box. The library has the pointer, too, so there must be no reference to it.
    translation: *mut Translation,
}

// The library may be called by any thread; a translator, which is Send, is called by one at a time.
unsafe impl Send for Generator {}
unsafe impl Sync for Generator {}

impl Generator {
    /// A generator that keeps its data directory ".rgen" in an existing folder.
    pub fn new(folder: impl AsRef<Path>) -> Result<Generator, Error> {
        let handle = unsafe { rgen_newReportGenerator() };
        if handle.is_null() {
            return Err(Error::OutOfMemory);
        }
        let mut generator =
            Generator { handle, folder: PathBuf::new(), translation: ptr::null_mut() };
        generator.set_data_dir(folder)?;
        Ok(generator)
    }

    /// Sets another folder for the data directory. RGEN_E_DIR_NOT_FOUND if it does not exist; the
    /// previous one stays.
    pub fn set_data_dir(&mut self, folder: impl AsRef<Path>) -> Result<(), Error> {
        let named = folder.as_ref();
        require_reachable(named)?;
        let here = env::current_dir().map_err(|error| Error::io(named, error))?;
        let path = here.join(named);
        let text = require_reachable(&path)?;
        let native = to_native(text, "the folder")?;
        let status = unsafe { rgen_setDataDirPath(self.handle, native.as_ptr().cast()) };
        check(text, status)?;
        self.folder = path;
        Ok(())
    }

    /// Sets the function that translates the marked texts of templates. Its argument is the text as
    /// written in the template. In translations "&", "<", ">" and "'" are escaped, each unless the
    /// original text contains it. An "&" that starts no reference of XML is always escaped, and so
    /// is "]]>" unless the translation has a CDATA section. Characters that XML does not allow
    /// become U+FFFD. A text that is returned unchanged stays as it is.
    pub fn set_translator(&mut self, translate: impl FnMut(&str) -> String + Send + 'static) {
        self.set_translation(Translation::new(Box::new(translate), false));
    }

    /// Like `set_translator`, but translations become part of the template without escapes. A
    /// reference that XML does not define panics.
    pub fn set_markup_translator(
        &mut self,
        translate: impl FnMut(&str) -> String + Send + 'static,
    ) {
        self.set_translation(Translation::new(Box::new(translate), true));
    }

    /// Removes the translator: marked texts stay as they are.
    pub fn clear_translator(&mut self) {
        unsafe { rgen_setTranslateFunction(self.handle, Some(same), ptr::null_mut()) };
        self.replace_translation(ptr::null_mut());
    }

    fn set_translation(&mut self, translation: Translation) {
        let next = Box::into_raw(Box::new(translation));
        unsafe { rgen_setTranslateFunction(self.handle, Some(translate), next.cast()) };
        self.replace_translation(next);
    }

    /// Frees the previous one, which the library does not use any more.
    fn replace_translation(&mut self, next: *mut Translation) {
        let previous = std::mem::replace(&mut self.translation, next);
        if !previous.is_null() {
            drop(unsafe { Box::from_raw(previous) });
        }
    }

    /// Generates a report as a file; an existing one is replaced. A "pdf" that was converted is
    /// checked afterwards.
    pub fn generate_file(&self, request: &Request, output: impl AsRef<Path>) -> Result<(), Error> {
        let path = require_output(output.as_ref(), request)?;
        if request.converts() {
            remove_note(path);
        }
        self.generate(request, OutputMode::File, path)?;
        if request.converts() {
            require_pdf(path)?;
        }
        Ok(())
    }

    /// Generates a report in memory, without any conversion.
    pub fn generate_bytes(&self, request: &Request) -> Result<Vec<u8>, Error> {
        let result = self.generate(request, OutputMode::Bytes, "")?;
        // For a report without bytes the record stays empty.
        let is_there = unsafe { !result.0.value.byteArrayValue.data.is_null() };
        require(result.0.r#type == RGEN_TYPE_EMPTY || is_there)?;
        Ok(bytes_of(&result.0))
    }

    /// Generates a report as a file that the system deletes when it is closed, without conversion.
    /// On Linux the file offset is at the end of the report: seek before reading. On Windows it is
    /// for writing only, and the path is read in the ANSI code page: use ASCII.
    pub fn generate_open_file(
        &self,
        request: &Request,
        output: impl AsRef<Path>,
    ) -> Result<File, Error> {
        let path = require_reachable(output.as_ref())?;
        let result = self.generate(request, OutputMode::DeleteOnClose, path)?;
        require(result.0.r#type == RGEN_TYPE_HANDLE)?;
        Ok(unsafe { file_of(result.0.value.handleValue) })
    }

    /// Requests all running generations to stop. They end with a status whose `is_cancellation` is
    /// true. Call it on another thread than the generating one; it waits while a transformation
    /// runs.
    pub fn cancel(&self) {
        unsafe { rgen_cancel(self.handle, ptr::null()) };
    }

    /// Like `cancel`, for the generations of one report type.
    pub fn cancel_type(&self, report_type: &Guid) {
        unsafe { rgen_cancel(self.handle, &report_type.0) };
    }

    /// The persistent data of a report type, as passed to `set_persistent_data`; control
    /// characters, U+FFFE and U+FFFF are returned as U+FFFD. RGEN_E_OPEN_PERSIST if nothing was
    /// stored yet.
    pub fn persistent_data(&self, report_type: &Guid) -> Result<BTreeMap<String, String>, Error> {
        require_data_dir(&self.folder)?;
        let mut set = Owned::<RgenCAnsiStringPairSet>::empty();
        let status = unsafe { rgen_getPersistentData(self.handle, &report_type.0, &mut set.0) };
        if status == RGEN_E_NO_PERSIST_VALUES || status == RGEN_E_NO_VALID_PERSIST_VALUES {
            return Ok(BTreeMap::new());
        }
        check(&report_type.to_string(), status)?;
        require(set.0.count != 0)?;
        let texts = texts_of(&set.0).into_iter();
        Ok(texts.map(|(name, text)| (name, without_references(&text))).collect())
    }

    /// Replaces the persistent data of a report type. Entries without a name or text are not
    /// stored; more than 10,000,000 bytes of text or 1,000,000 of name are an [`Error::Text`].
    pub fn set_persistent_data<Name: Into<String>, Text: Into<String>>(
        &self,
        report_type: &Guid,
        texts: impl IntoIterator<Item = (Name, Text)>,
    ) -> Result<(), Error> {
        let stored = |(name, text): (Name, Text)| -> Result<Pair, Error> {
            let name = stored_name(&name.into())?;
            let text = stored_text(&name, &text.into())?;
            Ok(Pair::markup(name, text))
        };
        let pairs = texts.into_iter().map(stored).collect::<Result<Vec<Pair>, Error>>()?;
        require_data_dir(&self.folder)?;
        let mut set = Owned::<RgenCAnsiStringPairSet>::empty();
        create_pairs(&pairs, &mut set.0)?;
        let guid = &report_type.0;
        let status =
            unsafe { rgen_setPersistentDataFromAnsiStringPairSet(self.handle, guid, &set.0) };
        check(&report_type.to_string(), status)
    }

    /// Replaces the persistent data of a report type by the texts that reports show for values;
    /// types and hints are not stored. A [`Value::Markup`] with a reference that XML does not
    /// define, which would damage other entries, is an [`Error::Text`]. In other respects like
    /// `set_persistent_data`.
    pub fn set_persistent_values(
        &self,
        report_type: &Guid,
        values: &[(String, Value)],
    ) -> Result<(), Error> {
        let stored = values.iter().map(|(name, value)| stored_value(name, value));
        let values = stored.collect::<Result<Vec<(String, Value)>, Error>>()?;
        require_data_dir(&self.folder)?;
        let mut set = Owned::<RgenCVariantSet>::empty();
        create_values(&values, &mut set.0)?;
        let guid = &report_type.0;
        let status = unsafe { rgen_setPersistentDataFromCVariantSet(self.handle, guid, &set.0) };
        check(&report_type.to_string(), status)
    }

    /// Writes values as an XML file of names and texts.
    pub fn dump(&self, values: &[(String, Value)], output: impl AsRef<Path>) -> Result<(), Error> {
        let path = require_reachable(output.as_ref())?;
        let native = to_native(path, "the path")?;
        let mut input = Owned::<RgenCInputParams>::empty();
        create_values(values, &mut input.0.variants)?;
        check(path, unsafe {
            rgen_dumpRawInputDataToFile(self.handle, &input.0, native.as_ptr().cast())
        })
    }

    /// Reads typed values from an XML file, which may contain none. Their order is not defined.
    pub fn simulated_input(&self, input: impl AsRef<Path>) -> Result<Vec<(String, Value)>, Error> {
        let native = to_native(require_reachable(input.as_ref())?, "the path")?;
        let mut set = Owned::<RgenCVariantSet>::empty();
        let path = native.as_ptr().cast();
        unsafe { rgen_getSimulatedRawDataFromFile(self.handle, path, &mut set.0) };
        Ok(values_of(&set.0))
    }

    fn generate(
        &self,
        request: &Request,
        mode: OutputMode,
        output: &str,
    ) -> Result<Owned<RgenCVariant>, Error> {
        require_data_dir(&self.folder)?;
        require_templates(&self.folder, &request.format)?;
        let input = request_record(request, mode, output)?;
        let mut result = Owned::<RgenCVariant>::empty();
        let (status, raised) =
            watch(|| unsafe { rgen_generateReport(self.handle, &input.0, &mut result.0) });
        if let Some(payload) = raised {
            // Closes the handle of a report that is not returned to the host.
            if result.0.r#type == RGEN_TYPE_HANDLE {
                drop(unsafe { file_of(result.0.value.handleValue) });
            }
            drop((input, result));
            resume_unwind(payload);
        }
        let type_text = request.report_type.to_string();
        check(if output.is_empty() { &type_text } else { output }, status)?;
        Ok(result)
    }
}

impl Drop for Generator {
    fn drop(&mut self) {
        unsafe { rgen_freeReportGenerator(self.handle) }
        self.replace_translation(ptr::null_mut());
    }
}

/// The library's text for a status.
pub fn status_text(status: RgenStatus) -> String {
    // The library only checks whether the handle is null.
    let any_handle = ptr::NonNull::<RgenReportGenerator>::dangling();
    unsafe { from_native(rgen_getStatusCodeDescription(any_handle.as_ptr(), status)) }
}

fn check(subject: &str, status: RgenStatus) -> Result<(), Error> {
    if status < 0 {
        return Err(Error::Status(StatusError::new(subject, status)));
    }
    Ok(())
}

#[cfg(unix)]
unsafe fn file_of(handle: *mut c_void) -> File {
    use std::os::unix::io::FromRawFd;
    File::from_raw_fd(handle as usize as i32)
}

#[cfg(windows)]
unsafe fn file_of(handle: *mut c_void) -> File {
    use std::os::windows::io::FromRawHandle;
    File::from_raw_handle(handle.cast())
}
