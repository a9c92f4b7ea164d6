"""What runs while a report is generated: translators, jobs, and what Ctrl-C may interrupt.

A KeyboardInterrupt comes on the main thread only: after a call, at the start of a function written
in Python, and at the end of a round of a loop. So what the library creates there is stored inside
one call of a function that is written in C, `store` or `each`, and freed by the first call of a
`finally`. Interpreters before Python 3.11 raise it at other places, too.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import asyncio
import atexit
import contextvars
import ctypes
import threading
import time
from collections import deque
from ctypes import c_void_p
from functools import partial
from itertools import count, repeat, starmap
from typing import Any, Callable, ClassVar, Iterable, Optional

from . import native
from .loading import Library

Translate = Callable[[str], str]
Slots = dict[int, c_void_p]

# How long a wait of the main thread keeps Python from handling Ctrl-C.
_SLICE_MILLISECONDS = 50

_keys = count(1)
# The reports that run, by the context of their translators; for those that run on a thread of the
# caller the negative number of the thread.
running: dict[int, Run] = {}
# The asynchronous reports that have ended, while their end function runs.
ending: set[int] = set()
# Jobs that a second Ctrl-C left running, with what they need. For the main thread only: two threads
# could free the same one.
_abandoned: list[tuple[Library, c_void_p, JobRun]] = []


def store(slot: c_void_p, function: Callable[..., Any], *arguments: Any) -> None:
    """Stores the result of a function, a pointer, in a slot."""
    any(map(partial(setattr, slot, "value"), starmap(function, (arguments,))))


def each(function: Callable[..., Any], *arguments: Iterable[Any]) -> None:
    """Calls a function for all items. Other threads of Python do not run meanwhile if the function
    keeps the global lock."""
    deque(map(function, *arguments), maxlen=0)


class Run:
    """One report that is generated."""

    def __init__(self) -> None:
        self.key = 0
        self.exception: Optional[BaseException] = None
        self.context: Optional[contextvars.Context] = None
        self.buffer: Optional[ctypes.Array[ctypes.c_char]] = None
        # It must live as long as the report.
        self.translation: Optional[Translation] = None

    def call(self, translate: Translate, text: str) -> str:
        return self.context.run(translate, text) if self.context else translate(text)


class DirectRun(Run):
    """A report on the calling thread, which is not the main thread."""

    def __init__(self) -> None:
        super().__init__()
        self.key = -threading.get_ident()

    def __enter__(self) -> DirectRun:
        # A translator may use other generators: their reports are inside this one.
        self._outer = running.get(self.key)
        running[self.key] = self
        return self

    def __exit__(self, *_: object) -> None:
        if self._outer is None:
            del running[self.key]
        else:
            running[self.key] = self._outer


class JobRun(Run):
    """A report on a thread of the library. `slots` has its job while it may be cancelled."""

    _ended: ClassVar[native.JobEnd] = native.NO_JOB_END

    def __init__(self, library: Library, slots: Slots) -> None:
        super().__init__()
        self.key = next(_keys)
        self.context = contextvars.copy_context()
        self.job = c_void_p()
        # 0 when the job is abandoned: its translator still needs it.
        self.registered = self.key
        self.library = library
        self.slots = slots

    def start(self, generator: c_void_p, request: c_void_p, error: native.RgenhError) -> None:
        """Starts the job; `job` stays null if that fails."""
        if is_main_thread():
            _free_abandoned(0)
        running[self.key] = self
        self.slots[self.key] = self.job
        store(self.job, self.library.rgenh_startReport, generator, request, self._ended, self.key,
              ctypes.byref(error))

    def cancel(self) -> None:
        self.library.rgenh_cancelJob(self.job, None)

    def wait(self) -> None:
        """Waits for the end on the main thread. Ctrl-C cancels the job and waits until it has
        ended; a second one does not wait any more."""
        try:
            try:
                self._wait_in_slices()
            except BaseException:
                self.cancel()
                self._wait_in_slices()
                raise
        except BaseException:
            if not self.library.rgenh_waitForJob(self.job, 0, None):
                self._abandon()
            raise

    def _abandon(self) -> None:
        owned = self.job
        self.job, self.registered = c_void_p(), 0
        _abandoned.append((self.library, owned, self))

    def _wait_in_slices(self) -> None:
        while not self.library.rgenh_waitForJob(self.job, _SLICE_MILLISECONDS, None):
            pass


class AsyncRun(JobRun):
    """A job that ends a future of an event loop."""

    def __init__(self, library: Library, slots: Slots, take: Callable[[AsyncRun], Any]) -> None:
        super().__init__(library, slots)
        self.loop = asyncio.get_running_loop()
        self.future: asyncio.Future[Any] = self.loop.create_future()
        # Nobody has to ask for the outcome: its task may be cancelled.
        self.future.add_done_callback(lambda future: future.cancelled() or future.exception())
        self._take = take
        self._outcome: Any = None

    def end(self) -> None:
        """Called on the job's thread."""
        try:
            self._outcome = self._take(self)
        except BaseException as exception:
            self.exception = exception
        # From here on nobody cancels the job, which is freed. `job` stays: the thread that started
        # it may look only now whether it was started.
        self.slots.pop(self.key, None)
        self.library.rgenh_freeJob(self.job)
        try:
            self.loop.call_soon_threadsafe(self._tell)
        except RuntimeError:
            pass  # The loop is closed.

    def cancel(self) -> None:
        # The slot is empty after the end. Nothing else runs between the look and the call.
        each(self.library.rgenh_cancelJob, filter(None, map(self.slots.get, (self.key,))),
             repeat(None))

    def _tell(self) -> None:
        if self.exception is None:
            self.future.set_result(self._outcome)
            return
        exception = self.exception
        if isinstance(exception, StopIteration):  # A future cannot have it.
            exception = RuntimeError(f"a translator raised {exception!r}")
        self.future.set_exception(exception)


def _job_ended(_job: Optional[int], key: int) -> None:
    """The last statement lets the process end: see _wait_for_all. It destroys nothing, since that
    could run code of the host."""
    ending.add(key)
    run = running.pop(key)
    try:
        assert isinstance(run, AsyncRun)
        run.end()
    finally:
        del run
        ending.discard(key)


AsyncRun._ended = native.JobEndFunction(_job_ended)


class Translation:
    """A translator with the signature of the library's callback. The text that it returned lives
    until the next call for the same report; the library has copied it by then."""

    def __init__(self, translate: Optional[Translate], markup: bool, inside: set[int]) -> None:
        """`inside` has the threads on which a translator of the generator runs."""
        self._translate = translate
        self._inside = inside
        self._turn = threading.Lock()
        self.form = native.MARKUP if markup else native.PLAIN
        self.function = (native.TranslateFunction(self._call) if translate
                         else native.NO_TRANSLATOR)

    def __bool__(self) -> bool:
        return self._translate is not None

    def _call(self, text: int, context: Optional[int]) -> Optional[int]:
        thread = threading.get_ident()
        run = running[context or -thread]
        self._inside.add(thread)
        try:
            with self._turn:
                return self._translated(text, run)
        # An exception must not leave the callback; it is raised after the report.
        except BaseException as exception:
            run.exception = exception
            return None
        finally:
            self._inside.discard(thread)

    def _translated(self, text: int, run: Run) -> int:
        assert self._translate is not None
        original = ctypes.string_at(text).decode("utf-8", "surrogateescape")
        translated = run.call(self._translate, original)
        if not isinstance(translated, str):
            raise TypeError(f"a translation must be a str, not {translated!r:.80}")
        if translated == original:
            return text
        if "\0" in translated:
            raise ValueError(f"a translation contains a zero byte: {translated!r:.80}")
        run.buffer = ctypes.create_string_buffer(translated.encode("utf-8", "surrogateescape"))
        return ctypes.addressof(run.buffer)


def is_main_thread() -> bool:
    return threading.get_ident() == threading.main_thread().ident


def _free_abandoned(milliseconds: int) -> None:
    """Frees the abandoned jobs that end in this time; a negative number waits for all."""
    for entry in tuple(_abandoned):
        library, job, run = entry
        if library.rgenh_waitForJob(job, milliseconds, None):
            _abandoned.remove(entry)
            running.pop(run.key, None)
            library.rgenh_freeJob(job)


@atexit.register
def _wait_for_all() -> None:
    """Cancels the jobs that still run when the process ends, and waits: they call Python."""
    for run in tuple(running.values()):
        if isinstance(run, AsyncRun):
            run.cancel()
    _free_abandoned(-1)
    while any(isinstance(run, AsyncRun) for run in tuple(running.values())) or ending:
        time.sleep(0.01)
