// The generator: the owner of the library's handle, and its operations.
//
// SPDX-License-Identifier: MIT
use std::collections::BTreeMap;
use std::ffi::c_void;
use std::fs::File;
use std::path::Path;
use std::ptr::{self, NonNull};
use std::sync::Arc;

use crate::error::{call, call_for, Error};
use crate::guid::Guid;
use crate::job::Job;
use crate::records::{
    bytes_of, native_path, texts_of, value_records, values_of, NativeRequest, Owned,
};
use crate::request::{Request, Value};
use crate::rgen_native::*;
use crate::translation::{take_raised, translate, Translation};

/// Makes reports. All functions with `&self` may be called by several threads at once.
///
/// When a translator panics, the function that generates panics with the same payload after the
/// report; the file may exist.
pub struct Generator {
    handle: NonNull<RgenReportGenerator>,
    translation: Option<Arc<Translation>>,
}

// The library may be called by any thread; a translator, which is Send, is called by one at a time.
unsafe impl Send for Generator {}
unsafe impl Sync for Generator {}

impl Generator {
    /// A generator that keeps its data directory ".rgen" in an existing folder.
    pub fn new(folder: impl AsRef<Path>) -> Result<Generator, Error> {
        let handle = call_for(|error| unsafe { rgenh_newReportGenerator(error) })?;
        let mut generator = Generator { handle, translation: None };
        generator.set_data_dir(folder)?;
        Ok(generator)
    }

    /// Sets another folder for the data directory. A relative one is read against the current
    /// folder of each call. RGEN_E_DIR_NOT_FOUND if it does not exist; the previous one stays.
    pub fn set_data_dir(&mut self, folder: impl AsRef<Path>) -> Result<(), Error> {
        let path = native_path(folder.as_ref())?;
        let path = path.as_ptr().cast();
        call(|error| unsafe { rgenh_setDataDirPath(self.handle.as_ptr(), path, error) })?;
        Ok(())
    }

    /// Sets the function that translates the marked texts of templates. Its argument is the text as
    /// written in the template, its result a plain text. A text that is returned unchanged stays as
    /// it is. Jobs that started before use the previous translator.
    pub fn set_translator(
        &mut self,
        translate: impl FnMut(&str) -> String + Send + 'static,
    ) -> Result<(), Error> {
        self.set_translation(Some(Translation::new(Box::new(translate))), RGENH_PLAIN)
    }

    /// Like `set_translator`, but translations are XML content.
    pub fn set_markup_translator(
        &mut self,
        translate: impl FnMut(&str) -> String + Send + 'static,
    ) -> Result<(), Error> {
        self.set_translation(Some(Translation::new(Box::new(translate))), RGENH_MARKUP)
    }

    /// Removes the translator: marked texts stay as they are.
    pub fn clear_translator(&mut self) -> Result<(), Error> {
        self.set_translation(None, RGENH_PLAIN)
    }

    fn set_translation(&mut self, next: Option<Translation>, form: u64) -> Result<(), Error> {
        let next = next.map(Arc::new);
        let context: *const Translation = next.as_ref().map_or(ptr::null(), Arc::as_ptr);
        let function: RgenTranslateFunction = if next.is_some() { Some(translate) } else { None };
        let context = context as *mut c_void;
        call(|error| unsafe {
            rgenh_setTranslator(self.handle.as_ptr(), function, context, form, error)
        })?;
        // Jobs own the previous one as well.
        self.translation = next;
        Ok(())
    }

    /// Generates a report as a file; an existing one is replaced. A "pdf" that was converted is
    /// checked afterwards: if it is not complete, the error has the kind
    /// [`crate::ErrorKind::Conversion`].
    pub fn generate_file(&self, request: &Request, output: impl AsRef<Path>) -> Result<(), Error> {
        self.generate(request, RGEN_OUTPUT_FILE, output.as_ref()).map(no_result)
    }

    /// Generates a report in memory, without any conversion.
    pub fn generate_bytes(&self, request: &Request) -> Result<Vec<u8>, Error> {
        self.generate(request, RGEN_OUTPUT_BYTES, Path::new("")).map(bytes)
    }

    /// Generates a report as a file that the system deletes when it is closed, without conversion.
    /// On Linux the file offset is at the end of the report: seek before reading. On Windows it is
    /// for writing only, and the path is read in the ANSI code page: use ASCII.
    pub fn generate_open_file(
        &self,
        request: &Request,
        output: impl AsRef<Path>,
    ) -> Result<File, Error> {
        self.generate(request, RGEN_OUTPUT_DELETE_ON_CLOSE, output.as_ref()).map(open_file)
    }

    /// Starts `generate_file` on a thread of the library. Relative paths are read against the
    /// current folder at the time the job runs.
    pub fn start_file(
        &self,
        request: &Request,
        output: impl AsRef<Path>,
    ) -> Result<Job<()>, Error> {
        self.start(request, RGEN_OUTPUT_FILE, output.as_ref(), no_result)
    }

    /// Starts `generate_bytes` on a thread of the library.
    pub fn start_bytes(&self, request: &Request) -> Result<Job<Vec<u8>>, Error> {
        self.start(request, RGEN_OUTPUT_BYTES, Path::new(""), bytes)
    }

    /// Starts `generate_open_file` on a thread of the library.
    pub fn start_open_file(
        &self,
        request: &Request,
        output: impl AsRef<Path>,
    ) -> Result<Job<File>, Error> {
        self.start(request, RGEN_OUTPUT_DELETE_ON_CLOSE, output.as_ref(), open_file)
    }

    /// Asks all running reports to stop, but no jobs. They end with an error whose
    /// `is_cancellation` is true. Call it on another thread than the generating one; it waits while
    /// a transformation runs.
    pub fn cancel(&self) -> Result<(), Error> {
        self.cancel_reports(ptr::null())
    }

    /// Like `cancel`, for the reports of one type.
    pub fn cancel_type(&self, report_type: &Guid) -> Result<(), Error> {
        self.cancel_reports(&report_type.0)
    }

    fn cancel_reports(&self, guid: *const RgenGuid) -> Result<(), Error> {
        call(|error| unsafe { rgenh_cancel(self.handle.as_ptr(), guid, error) })?;
        Ok(())
    }

    /// The persistent data of a report type, as passed to `set_persistent_data`; characters that
    /// XML cannot contain are returned as U+FFFD. RGEN_E_OPEN_PERSIST if nothing was stored yet.
    pub fn persistent_data(&self, report_type: &Guid) -> Result<BTreeMap<String, String>, Error> {
        let mut set = Owned::<RgenCAnsiStringPairSet>::empty();
        let guid = &report_type.0;
        call(|error| unsafe {
            rgenh_getPersistentTexts(self.handle.as_ptr(), guid, &mut set.0, error)
        })?;
        Ok(texts_of(&set.0).into_iter().collect())
    }

    /// Replaces the persistent data of a report type. Entries without a name or text are not
    /// stored; texts that are too long for the library are errors.
    pub fn set_persistent_data<Name: Into<String>, Text: Into<String>>(
        &self,
        report_type: &Guid,
        texts: impl IntoIterator<Item = (Name, Text)>,
    ) -> Result<(), Error> {
        let value = |(name, text): (Name, Text)| (name.into(), Value::Text(text.into()));
        let values: Vec<(String, Value)> = texts.into_iter().map(value).collect();
        self.set_persistent_values(report_type, &values)
    }

    /// Replaces the persistent data of a report type by the texts that reports show for values;
    /// types and hints are not stored. A [`Value::Markup`] with a reference that XML does not know
    /// is an error.
    pub fn set_persistent_values(
        &self,
        report_type: &Guid,
        values: &[(String, Value)],
    ) -> Result<(), Error> {
        let records = value_records(values)?;
        let (guid, array, count) = (&report_type.0, records.as_ptr(), records.len() as u64);
        call(|error| unsafe {
            rgenh_setPersistentValues(self.handle.as_ptr(), guid, array, count, error)
        })
        .map_err(|error| error.with_key_of(|entry, _| Some(values.get(entry)?.0.as_str())))?;
        Ok(())
    }

    /// Writes values as an XML file of names and texts.
    pub fn dump(&self, values: &[(String, Value)], output: impl AsRef<Path>) -> Result<(), Error> {
        let path = native_path(output.as_ref())?;
        let mut request = Request::new(Guid::new(0, 0, 0, [0; 8]), "");
        request.values.extend_from_slice(values);
        let native = NativeRequest::new(&request, RGEN_OUTPUT_FILE, Path::new(""))?;
        let (input, path) = (native.input(), path.as_ptr().cast());
        call(|error| unsafe {
            rgenh_dumpRawInputDataToFile(self.handle.as_ptr(), input, path, error)
        })?;
        Ok(())
    }

    /// Reads typed values from an XML file, which may be missing or contain none. Their order is
    /// not defined.
    pub fn simulated_input(&self, input: impl AsRef<Path>) -> Result<Vec<(String, Value)>, Error> {
        let path = native_path(input.as_ref())?;
        let path = path.as_ptr().cast();
        let mut set = Owned::<RgenCVariantSet>::empty();
        call(|error| unsafe {
            rgenh_getSimulatedRawDataFromFile(self.handle.as_ptr(), path, &mut set.0, error)
        })?;
        Ok(values_of(&set.0))
    }

    fn generate(
        &self,
        request: &Request,
        mode: u64,
        output: &Path,
    ) -> Result<Owned<RgenCVariant>, Error> {
        let native = NativeRequest::new(request, mode, output)?;
        let mut result = Owned::<RgenCVariant>::empty();
        let outcome = call(|error| unsafe {
            rgenh_generateReport(self.handle.as_ptr(), native.input(), &mut result.0, error)
        });
        if let Some(raised) = take_raised() {
            drop(native);
            drop_result(result);
            return Err(raised.error());
        }
        outcome.map(|_| result)
    }

    fn start<T>(
        &self,
        request: &Request,
        mode: u64,
        output: &Path,
        convert: fn(Owned<RgenCVariant>) -> T,
    ) -> Result<Job<T>, Error> {
        let native = NativeRequest::new(request, mode, output)?;
        Job::start(self.handle.as_ptr(), &native, self.translation.clone(), convert)
    }
}

impl Drop for Generator {
    fn drop(&mut self) {
        unsafe { rgenh_freeReportGenerator(self.handle.as_ptr(), ptr::null_mut()) };
    }
}

fn no_result(_result: Owned<RgenCVariant>) {}

fn bytes(result: Owned<RgenCVariant>) -> Vec<u8> {
    bytes_of(&result.0)
}

fn open_file(result: Owned<RgenCVariant>) -> File {
    unsafe { file_of(result.0.value.handleValue) }
}

/// Frees a result that is not returned to the host, and closes its file.
pub(crate) fn drop_result(result: Owned<RgenCVariant>) {
    if result.0.r#type == RGEN_TYPE_HANDLE {
        drop(open_file(result));
    }
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
