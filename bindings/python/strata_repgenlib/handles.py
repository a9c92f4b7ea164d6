"""The handles of a generator: their settings, who uses them, and their end.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import threading
from ctypes import byref, c_void_p
from itertools import repeat
from typing import Optional

from . import native
from .calls import JobRun, Translate, Translation, each, store
from .errors import ReenteredError, described, failure_of
from .loading import Library
from .status import Status


class Handles:
    """Two generators of the library with the same settings: one for calls on threads of the caller,
    and one that only starts jobs, which therefore never waits for a report. It has the translator
    of the last job that was started.

    A lock for each thread tells that the thread makes a call. `with turn():` begins a call; unlike
    a count it is right even if Ctrl-C comes in between.
    """

    def __init__(self, library: Library) -> None:
        self.library = library
        self.is_closed = False
        # The threads on which a translator runs.
        self._inside: set[int] = set()
        self._turns: dict[int, threading.RLock] = {}
        # For each of the two. Changes of the first one may wait for a template, starts never.
        self._changes, self._starts = threading.Lock(), threading.Lock()
        self._is_translating = False
        self.translation = Translation(None, False, self._inside)
        self.direct, self._starter = c_void_p(), c_void_p()
        self._owned = [self.direct, self._starter]
        for handle in self._owned:
            error = native.new_error()
            store(handle, library.rgenh_newReportGenerator, byref(error))
            if not handle:
                raise failure_of(library, error)

    def turn(self) -> threading.RLock:
        """The lock for a call on this thread."""
        thread = threading.get_ident()
        if thread in self._inside:
            raise described(self.library, ReenteredError("a translator called its own generator"),
                            Status.RGEN_E_UNKNOWN, native.ERROR_REENTERED)
        return self._turns.get(thread) or self._turns.setdefault(thread, threading.RLock())

    def require_open(self) -> None:
        if self.is_closed:
            raise ValueError("the generator is closed")

    def check(self, status: int, error: native.RgenhError, names: tuple[str, ...] = ()) -> None:
        if status < 0:
            raise failure_of(self.library, error, names)

    def set_folder(self, path: str) -> None:
        for handle, lock in ((self.direct, self._changes), (self._starter, self._starts)):
            error = native.new_error()
            with lock:
                self.check(self.library.rgenh_setDataDirPath(handle, path.encode(), byref(error)),
                           error)

    def set_translator(self, translate: Optional[Translate], markup: bool) -> None:
        translation = Translation(translate, markup, self._inside)
        error = native.new_error()
        with self._changes:
            self.check(self.library.rgenh_setTranslator(
                self.direct, translation.function, None, translation.form, byref(error)), error)
            self.translation = translation

    def start(self, run: JobRun, request: c_void_p) -> None:
        """Starts a job, whose translator knows its run."""
        error = native.new_error()
        with self._starts:
            run.translation = translation = self.translation
            if translation or self._is_translating:
                # Until the call has returned, the library may have either translator.
                self._is_translating = True
                self.check(self.library.rgenh_setTranslator(
                    self._starter, translation.function, run.key, translation.form, byref(error)),
                    error)
                self._is_translating = bool(translation)
            run.start(self._starter, request, error)
        if not run.job:
            raise failure_of(self.library, error)

    def close(self) -> None:
        """Refuses new calls, waits for the running ones, and frees both. Jobs go on."""
        with self.turn():
            self.is_closed = True
        for turn in tuple(self._turns.values()):
            with turn:
                pass
        with self._changes, self._starts:
            each(self.library.rgenh_freeReportGenerator,
                 map(self._owned.pop, (-1,) * len(self._owned)), repeat(None))
