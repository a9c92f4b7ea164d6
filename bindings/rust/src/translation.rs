// The translate callback: the closure that the library calls, the text that it returned last, and
// its panic.
//
// SPDX-License-Identifier: MIT
use std::any::Any;
use std::cell::RefCell;
use std::ffi::{c_void, CString};
use std::panic::{catch_unwind, AssertUnwindSafe};

use crate::rgen_native::CChar;
use crate::texts::{as_markup, checked_markup, from_native};

type Payload = Box<dyn Any + Send>;

thread_local! {
    /// The payload of a translator's panic on this thread, which generates.
    static RAISED: RefCell<Option<Payload>> = RefCell::new(None);
}

/// A translator and the text that it returned last: the library copies it before the next call. The
/// library holds the generator's lock meanwhile, so only one thread uses it.
pub(crate) struct Translation {
    translate: Box<dyn FnMut(&str) -> String + Send>,
    is_markup: bool,
    text: CString,
}

impl Translation {
    pub(crate) fn new(
        translate: Box<dyn FnMut(&str) -> String + Send>,
        is_markup: bool,
    ) -> Translation {
        Translation { translate, is_markup, text: CString::default() }
    }

    /// `None` for a text that stays as it is.
    fn translated(&mut self, original: &str) -> Option<CString> {
        let translation = (self.translate)(original);
        if translation == original {
            return None;
        }
        let zero = "a translation holds a zero byte";
        let native = CString::new(translation).expect(zero);
        let text = native.to_str().expect("UTF-8");
        let markup = if self.is_markup {
            checked_markup(text, "a translation").unwrap_or_else(|error| panic!("{error}"))
        } else {
            as_markup(original, text)
        };
        Some(CString::new(markup).expect(zero))
    }
}

/// The callback of the library, with a [`Translation`] as its context. No panic may leave it: after
/// one the text stays as it is.
pub(crate) unsafe extern "C" fn translate(
    text: *const CChar,
    context: *mut c_void,
) -> *const CChar {
    let work = AssertUnwindSafe(|| {
        if RAISED.with(|raised| raised.borrow().is_some()) {
            return text;
        }
        let translation = &mut *context.cast::<Translation>();
        match translation.translated(&from_native(text)) {
            Some(translated) => {
                translation.text = translated;
                translation.text.as_ptr().cast()
            }
            None => text,
        }
    });
    catch_unwind(work).unwrap_or_else(|payload| {
        // A thread that ends cannot store it any more.
        let _ = RAISED.try_with(|raised| raised.replace(Some(payload)));
        text
    })
}

/// The callback when there is no translator.
pub(crate) unsafe extern "C" fn same(text: *const CChar, _context: *mut c_void) -> *const CChar {
    text
}

/// Makes a call of the library; returns its result, and the payload of a translator's panic during
/// the call. It may be made inside a translator of another generator, which has not panicked.
pub(crate) fn watch<T>(call: impl FnOnce() -> T) -> (T, Option<Payload>) {
    let result = call();
    (result, RAISED.with(RefCell::take))
}
