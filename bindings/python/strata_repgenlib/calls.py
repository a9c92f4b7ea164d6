"""Runs calls of the library: exceptions of translators, Ctrl-C, and closing while calls run.

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
    """Exceptions of translators, by the thread that generates."""

    def __init__(self) -> None:
        self._by_thread: dict[int, BaseException] = {}

    def keep(self, exception: BaseException) -> None:
        self._by_thread[threading.get_ident()] = exception

    def take(self) -> Optional[BaseException]:
        return self._by_thread.pop(threading.get_ident(), None)

    def is_any(self) -> bool:
        return threading.get_ident() in self._by_thread


class Translation:
    """A translator with the signature of the library's callback. It must live until the next one is
    set. The text that it returned lives until the next call; the library has copied it by then."""

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
            # An exception must not leave the callback; it is raised after the call.
            except BaseException as exception:
                raised.keep(exception)
                return text

        self.function = TranslateFunction(call)


class Calls:
    """Counts the running calls, so that a handle is freed only after the last one."""

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
        """Refuses new calls and waits for the running ones; False if it was already closed."""
        with self._changed:
            was_closed = self._is_closed
            self._is_closed = True
            self._changed.wait_for(lambda: self._running == 0)
        return not was_closed


def interruptible(function: Callable[[], Result], interrupt: Callable[[], None]) -> Result:
    """Calls the function and returns its result. Python handles Ctrl-C only on the main thread, and
    not inside the library: so the main thread runs the function on another thread. After a
    KeyboardInterrupt it calls `interrupt` until the function ends, and raises the exception; after
    a second one it raises at once."""
    if threading.current_thread() is not threading.main_thread():
        return function()
    results: list[Result] = []
    raised: list[BaseException] = []
    done = threading.Event()
    # Acquired first by the call or by its interruption: Ctrl-C may come at any time.
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

    # The other thread has the context variables of the caller.
    context = contextvars.copy_context()
    try:
        threading.Thread(target=context.run, args=(run,), name="strata_repgenlib").start()
        _wait(done)
    except KeyboardInterrupt:
        if decision.acquire(blocking=False):
            raise
        # On another thread, since `interrupt` may have to wait for a running template.
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
    """Repeats the interrupt: the library ignores it before the call is registered."""
    with suppress(ValueError):  # The generator may have been closed.
        while not done.is_set():
            interrupt()
            done.wait(0.1)


def _discard(result: object) -> None:
    """Closes the file of an abandoned call."""
    close = getattr(result, "close", None)
    if close is not None:
        close()


def _wait(done: threading.Event) -> None:
    """Waits in short steps: on Windows Ctrl-C does not end a wait without a timeout."""
    while not done.wait(0.5):
        pass
