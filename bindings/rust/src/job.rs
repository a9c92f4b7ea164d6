// A report that the library generates on a thread of its own.
//
// SPDX-License-Identifier: MIT
use std::ffi::c_void;
use std::ptr::NonNull;
use std::sync::mpsc::{channel, Receiver, Sender};
use std::sync::{Arc, Mutex};
use std::time::Duration;

use crate::error::{call, call_for, Error, ErrorKind};
use crate::generator::drop_result;
use crate::records::{NativeRequest, Owned};
use crate::rgen_native::*;
use crate::translation::{take_raised, Raised, Translation};

/// A report that is generated on a thread of the library; see [`crate::Generator::start_file`].
///
/// It may be sent to other threads and used by several at once. Dropping it cancels the report and
/// waits for its end; a translator must not drop a job of its own generator.
pub struct Job<T> {
    handle: NonNull<RgenhJob>,
    raised: Mutex<Receiver<Option<Raised>>>,
    convert: fn(Owned<RgenCVariant>) -> T,
    /// The library calls it until the job has ended.
    _translation: Option<Arc<Translation>>,
}

// Any thread may call the functions of the library.
unsafe impl<T> Send for Job<T> {}
unsafe impl<T> Sync for Job<T> {}

impl<T> Job<T> {
    pub(crate) fn start(
        generator: *mut RgenReportGenerator,
        request: &NativeRequest,
        translation: Option<Arc<Translation>>,
        convert: fn(Owned<RgenCVariant>) -> T,
    ) -> Result<Job<T>, Error> {
        let (sender, receiver) = channel();
        let context = Box::into_raw(Box::new(sender));
        let handle = call_for(|error| unsafe {
            rgenh_startReport(generator, request.handle(), Some(at_end), context.cast(), error)
        });
        if handle.is_err() {
            drop(unsafe { Box::from_raw(context) });
        }
        let raised = Mutex::new(receiver);
        Ok(Job { handle: handle?, raised, convert, _translation: translation })
    }

    /// Waits until the report has ended, no longer than a time limit. Tells whether it has ended.
    pub fn wait(&self, limit: Duration) -> Result<bool, Error> {
        let milliseconds = i64::try_from(limit.as_millis()).unwrap_or(-1);
        let ended =
            call(|error| unsafe { rgenh_waitForJob(self.handle.as_ptr(), milliseconds, error) })?;
        Ok(ended == 1)
    }

    /// Asks this report, and no other one, to stop.
    pub fn cancel(&self) {
        unsafe { rgenh_cancelJob(self.handle.as_ptr(), std::ptr::null_mut()) };
    }

    /// Waits for the end of the report and returns its result. Panics if its translator has
    /// panicked, with the same payload.
    pub fn take(self) -> Result<T, Error> {
        let mut result = Owned::<RgenCVariant>::empty();
        let outcome = call(|error| unsafe {
            rgenh_takeJobResult(self.handle.as_ptr(), &mut result.0, error)
        });
        if let Err(error) = &outcome {
            if error.kind() == ErrorKind::Reentered {
                // The translator of this job must not wait for its end, nor free it.
                std::mem::forget(self);
                return outcome.map(|_| unreachable!());
            }
        }
        match self.raised() {
            Some(raised) => {
                drop_result(result);
                drop(self);
                Err(raised.error())
            }
            None => outcome.map(|_| (self.convert)(result)),
        }
    }

    /// What `at_end` sends: it is called once, even if the job has ended before.
    fn raised(&self) -> Option<Raised> {
        self.raised.lock().ok()?.recv().ok()?
    }
}

impl<T> Drop for Job<T> {
    fn drop(&mut self) {
        unsafe { rgenh_freeJob(self.handle.as_ptr()) }
    }
}

/// Runs on the thread of the job, as its translator did.
unsafe extern "C" fn at_end(_job: *mut RgenhJob, context: *mut c_void) {
    let sender = Box::from_raw(context.cast::<Sender<Option<Raised>>>());
    // Nobody receives it after a drop of the job.
    let _ = sender.send(take_raised());
}
