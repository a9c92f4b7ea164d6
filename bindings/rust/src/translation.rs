// The translate callback: the closure that the library calls, the text that it returned last, and
// its panic.
//
// SPDX-License-Identifier: MIT
use std::any::Any;
use std::cell::{RefCell, UnsafeCell};
use std::ffi::{c_void, CString};
use std::panic::{catch_unwind, resume_unwind, AssertUnwindSafe};

use crate::error::{native_text, Error};
use crate::rgen_native::CChar;

/// Why a translator failed.
pub(crate) enum Raised {
    Panic(Box<dyn Any + Send>),
    Error(Error),
}

impl Raised {
    /// Panics again, or returns the error.
    pub(crate) fn error(self) -> Error {
        match self {
            Raised::Panic(payload) => resume_unwind(payload),
            Raised::Error(error) => error,
        }
    }
}

thread_local! {
    /// The failure of a translator on this thread, which generates.
    static RAISED: RefCell<Option<Raised>> = RefCell::new(None);
}

/// Returns and forgets the failure of a translator on this thread.
pub(crate) fn take_raised() -> Option<Raised> {
    RAISED.try_with(RefCell::take).unwrap_or(None)
}

struct State {
    translate: Box<dyn FnMut(&str) -> String + Send>,
    text: CString,
}

/// A translator and the text that it returned last: the library copies it before the next call.
pub(crate) struct Translation(UnsafeCell<State>);

// The library calls a translator on one thread at a time, and never inside itself.
unsafe impl Sync for Translation {}

impl Translation {
    pub(crate) fn new(translate: Box<dyn FnMut(&str) -> String + Send>) -> Translation {
        Translation(UnsafeCell::new(State { translate, text: CString::default() }))
    }
}

/// The translation of a text, or null if it stays as it is.
fn translated(state: &mut State, original: &str) -> Result<*const CChar, Raised> {
    let call = AssertUnwindSafe(|| (state.translate)(original));
    let translation = catch_unwind(call).map_err(Raised::Panic)?;
    if translation == original {
        return Ok(std::ptr::null());
    }
    let zero = |_| Raised::Error(Error::argument_error("a translation contains a zero byte"));
    state.text = CString::new(translation).map_err(zero)?;
    Ok(state.text.as_ptr().cast())
}

/// The callback of the library, with a [`Translation`] as its context. No panic may leave it: null
/// tells the library that the translator failed.
pub(crate) unsafe extern "C" fn translate(
    text: *const CChar,
    context: *mut c_void,
) -> *const CChar {
    let state = &mut *(*context.cast::<Translation>()).0.get();
    match translated(state, &native_text(text)) {
        Ok(translation) if translation.is_null() => text,
        Ok(translation) => translation,
        Err(raised) => {
            // A thread that ends cannot store it any more.
            let _ = RAISED.try_with(|place| place.replace(Some(raised)));
            std::ptr::null()
        }
    }
}
