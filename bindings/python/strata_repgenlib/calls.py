"""How calls run: translators that raise, calls that Ctrl-C can reach, handles that close late.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import contextvars
import ctypes
import threading
from contextlib import contextmanager, suppress
from typing import Callable, Iterator, Optional, TypeVar

from .library import TranslateFunction
from .texts import as_markup, checked_markup, decoded

Result = TypeVar("Result")
Translate = Callable[[str], str]


class Raised:
    """What translators raised, by the thread that generates."""

    def __init__(self) -> None:
        self._by_thread: dict[int, BaseException] = {}

    def keep(self, exception: BaseException) -> None:
        self._by_thread[threading.get_ident()] = exception

    def take(self) -> Optional[BaseException]:
        return self._by_thread.pop(threading.get_ident(), None)

    def is_any(self) -> bool:
        return threading.get_ident() in self._by_thread


class Translation:
    """A translator as the library calls it. It must live until the next one is set; the text that
    it gave last lives until it is asked again, by when the library has copied it."""

    def __init__(self, translate: Translate, is_markup: bool, raised: Raised) -> None:
        buffer: Optional[ctypes.Array[ctypes.c_char]] = None

        def call(text: int, _context: object) -> int:
            nonlocal buffer
            try:
                if raised.is_any():
                    return text
                original = decoded(ctypes.string_at(text))
                translated = translate(original)
                if not isinstance(translated, str):
                    raise TypeError(f"a translation must be a str, not {translated!r}")
                if "\0" in translated:
                    raise ValueError(f"a translation holds a zero byte: {translated!r}")
                if translated == original:
                    return text
                translated = (checked_markup(translated, "a translation") if is_markup
                              else as_markup(original, translated))
                buffer = ctypes.create_string_buffer(translated.encode("utf-8"))
                return ctypes.addressof(buffer)
            # Nothing may cross the library; it is raised after the call.
            except BaseException as exception:
                raised.keep(exception)
                return text

        self.function = TranslateFunction(call)


class Calls:
    """Counts the calls that run, so that a handle is freed only after the last one."""

    def __init__(self) -> None:
        self._changed = threading.Condition()
        self._running = 0
        self._is_closed = False

    @contextmanager
    def one(self) -> Iterator[None]:
        with self._changed:
            if self._is_closed:
                raise ValueError("the generator is closed")
            self._running += 1
        try:
            yield
        finally:
            with self._changed:
                self._running -= 1
                self._changed.notify_all()

    def close(self) -> bool:
        """Lets no further call in and waits for the others; False when that was done before."""
        with self._changed:
            was_closed = self._is_closed
            self._is_closed = True
            self._changed.wait_for(lambda: self._running == 0)
        return not was_closed


def interruptible(function: Callable[[], Result], interrupt: Callable[[], None]) -> Result:
    """What the function gives. On the main thread, the only one that Ctrl-C reaches, another thread
    runs it, since Python hears nothing while it is inside the library: then a KeyboardInterrupt
    calls `interrupt` until the function ends, and goes on; a second one goes on at once."""
    if threading.current_thread() is not threading.main_thread():
        return function()
    results: list[Result] = []
    raised: list[BaseException] = []
    done = threading.Event()
    # Whoever takes it first decides whether the function is called: Ctrl-C may come at any moment.
    decision = threading.Lock()

    def run() -> None:
        if not decision.acquire(blocking=False):
            return
        try:
            results.append(function())
        except BaseException as exception:
            raised.append(exception)
        finally:
            done.set()

    # Context variables are the caller's there, too.
    context = contextvars.copy_context()
    try:
        threading.Thread(target=context.run, args=(run,), name="strata_repgenlib").start()
        _wait(done)
    except KeyboardInterrupt:
        if decision.acquire(blocking=False):
            raise
        # It may have to wait itself, for a template that runs.
        threading.Thread(target=_interrupt, args=(interrupt, done),
                         name="strata_repgenlib_interrupt").start()
        _wait(done)
        for unwanted in results:
            _discard(unwanted)
        raise
    if raised:
        raise raised[0]
    return results[0]


def _interrupt(interrupt: Callable[[], None], done: threading.Event) -> None:
    """Again and again: a call that the library does not know yet hears nothing of it."""
    with suppress(ValueError):  # The generator may be closed meanwhile.
        while not done.is_set():
            interrupt()
            done.wait(0.1)


def _discard(result: object) -> None:
    """Closes the file of a call that nobody waits for any more."""
    close = getattr(result, "close", None)
    if close is not None:
        close()


def _wait(done: threading.Event) -> None:
    """On Windows a wait without an end does not hear Ctrl-C."""
    while not done.wait(0.5):
        pass
