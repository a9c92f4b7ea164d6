"""The base class of the cases: a folder for each case, starting vellum, checking what it leaves.

The programs under test are set by environment variables, in addition to those of program_case.py:

RGEN_VELLUM_PROGRAM  the program vellum
RGEN_VELLUM_ENGINE   the stand-in engine (stand_in_engine.cpp)

SPDX-License-Identifier: MIT
"""

import os
import re
import shutil
import signal
import subprocess
import time
import unittest
import urllib.parse
from pathlib import Path

from program_case import (LAUNCHER, ON_WINDOWS, ProgramCase, Result, native, reason_of, search_path,
                          wait_for)

VELLUM = Path(os.environ["RGEN_VELLUM_PROGRAM"]).resolve()
STAND_IN = Path(os.environ["RGEN_VELLUM_ENGINE"]).resolve()
PROGRAM_ENDING = ".exe" if ON_WINDOWS else ""
# The default engine of the cases.
ENGINE = "chromium-headless-shell"
# The first engine that vellum searches for.
FIRST_ENGINE = "chrome-headless-shell" if ON_WINDOWS else ENGINE

PAGE = '<!doctype html>\n<html lang="de"><head><title>Prüfung</title></head><p>Größe и слово\n'
OLD = b"an older file"

# The number of an unprivileged user.
NOBODY = 65534
# Seconds to wait for the end of processes: less than the life of an engine that hangs, so that a
# remaining one is found.
LONGEST_END = 30


def path_of_address(address):
    """The path on this system for a "file:" URL that a program of the target system wrote."""
    path = urllib.parse.unquote(address.removeprefix("file://"))
    return path_here(path.removeprefix("/") if ON_WINDOWS else path)


def path_here(text):
    """The path on this system for an absolute path of the target system."""
    if not ON_WINDOWS:
        return Path(text)
    drive, path = text[:2].upper(), text[2:].replace("\\", "/")
    return Path(path) if drive == "Z:" else Path(LAUNCHER[-1]) / "drive_c" / path.lstrip("/")


class EngineLog:
    """The command line and page that an engine was started with."""

    def __init__(self, path):
        self.words = path.read_bytes().decode("utf-8").replace("\r", "").splitlines()
        self.page = path.with_name(path.name + ".html").read_bytes()

    @property
    def program(self):
        """The name of the engine's program without its extension."""
        return re.split(r"[\\/]", self.words[0])[-1].removesuffix(".exe")

    @property
    def arguments(self):
        return self.words[1:]

    @property
    def page_path(self):
        """The path of the page: the URL at the end, or the path before that of the PDF."""
        last = self.words[-1]
        return path_of_address(last) if last.startswith("file:") else path_here(self.words[-2])

    @property
    def pdf_path(self):
        return path_here(self.option("--print-to-pdf"))

    def option(self, name):
        """The value of "NAME=VALUE", or None."""
        values = [word[len(name) + 1:] for word in self.words if word.startswith(name + "=")]
        return values[-1] if values else None


class VellumResult(Result):

    @property
    def warnings(self):
        start = "vellum: warning: "
        return [line[len(start):] for line in self.err.splitlines() if line.startswith(start)]

    @property
    def messages(self):
        return [line for line in self.err.splitlines() if not line.startswith("vellum: warning: ")]


class VellumCase(ProgramCase):
    """A case with a stand-in engine. At its end there must be no process and no temporary file."""

    folder_name = "vellum Größe и слово "
    result_type = VellumResult

    def setUp(self):
        super().setUp()
        self.base_folder = self.folder.parent
        self.token = self.base_folder.name.split()[-1].encode()
        self.logs = self.base_folder / "logs"
        self.logs.mkdir()
        self.engine = self.put_program(STAND_IN, self.base_folder / "engines", ENGINE)
        self.addCleanup(self.expect_no_staged_pages)
        self.addCleanup(self.expect_no_processes)

    @staticmethod
    def put_program(original, folder, name):
        """Copies a program to a folder under another name."""
        folder.mkdir(parents=True, exist_ok=True)
        path = folder / (name + PROGRAM_ENDING)
        shutil.copy(original, path)
        return path

    # ---- Starting programs ----------------------------------------------------------------------

    def environment(self, changes=None):
        """`changes` with None unset a variable."""
        env = super().environment({"VELLUM_ENGINE": native(self.engine),
                                   "STAND_IN_ENGINE_LOG": native(self.log_path()),
                                   **(changes or {})})
        return {name: value for name, value in env.items() if value is not None}

    def log_path(self, name="engine"):
        return self.logs / f"{name}.log"

    def log(self, name="engine"):
        return EngineLog(self.log_path(name))

    @property
    def engine_ran(self):
        return self.log_path().exists()

    def start(self, *args, program=VELLUM, **settings):
        return super().start(*args, program=program, **settings)

    def vellum(self, *args, **settings):
        """Runs vellum to its end; env contains changes of the environment."""
        return self.start(*args, **settings).finish()

    def start_conversion(self, *args, page=PAGE, output="report.pdf", base="", does="pdf", env=None,
                         **settings):
        """Starts vellum as the library does. `does` is what the stand-in engine is to do."""
        if page is not None:
            self.write("page.html", page)
        return self.start("-i", "page.html", "-b", base, "-t", "html", "-o", output, *args,
                          env={"STAND_IN_ENGINE": does, **(env or {})}, **settings)

    def convert(self, *args, **settings):
        return self.start_conversion(*args, **settings).finish()

    def wait_until_it_hangs(self, running, does="hangs"):
        """Waits until the engine, or its child, hangs."""
        wait_for(self.log_path().with_name("engine.log." + does), running)

    def as_nobody(self):
        """The command that starts a program as an unprivileged user, who gets the files of this case
        and a copy of vellum, since the original may be in a folder without access."""
        self.program = self.put_program(VELLUM, self.base_folder / "programs", "vellum")
        for folder, _, names in os.walk(self.base_folder):
            for path in [folder, *(os.path.join(folder, name) for name in names)]:
                os.chown(path, NOBODY, NOBODY)
        command = [shutil.which("setpriv") or "setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}",
                   "--clear-groups"]
        try:
            subprocess.run([*command, shutil.which("true")], check=True, capture_output=True)
        except (OSError, subprocess.CalledProcessError) as error:
            raise unittest.SkipTest("setpriv cannot make root another user here: "
                                    + reason_of(error)) from error
        return command

    # ---- Processes ------------------------------------------------------------------------------

    def processes(self):
        """The command lines of this case's processes, by their numbers. Under Wine, system processes
        inherit the variables of the case, so only the command line counts there."""
        found = {}
        for folder in Path("/proc").iterdir():
            if not folder.name.isdigit() or int(folder.name) == os.getpid():
                continue
            try:
                line = (folder / "cmdline").read_bytes()
                variables = b"" if ON_WINDOWS else (folder / "environ").read_bytes()
            except OSError:
                continue
            if self.token in line or self.token in variables:
                found[int(folder.name)] = line
        return found

    def expect_no_processes(self):
        """Waits for the end of processes that were killed."""
        limit = time.monotonic() + LONGEST_END
        while self.processes() and time.monotonic() < limit:
            time.sleep(0.005)
        left = self.processes()
        for number in left:
            os.kill(number, signal.SIGKILL)
        self.assertEqual({}, left)

    # ---- Checks of a run ------------------------------------------------------------------------

    def expect_no_staged_pages(self):
        for path in self.logs.glob("*.log"):
            staged = EngineLog(path).page_path
            self.assertFalse(staged.exists() or staged.parent.exists(), staged)

    def expect_done(self, result, *warnings):
        """Nothing but warnings is printed."""
        self.assertEqual((0, b"", []), (result.code, result.out, result.messages), result)
        self.assertEqual(list(warnings), result.warnings)

    def expect_error(self, result, code, message):
        """One line with the error, nothing on standard output."""
        self.assertEqual([f"vellum: {message}"], result.messages)
        self.assertEqual((code, b""), (result.code, result.out))
        self.expect_plain(result.err)

    def expect_error_like(self, result, code, pattern):
        self.assertEqual(1, len(result.messages), result)
        self.assertRegex(result.messages[0], "^vellum: " + pattern + "$")
        self.assertEqual((code, b""), (result.code, result.out))
        self.expect_plain(result.err)

    def expect_pdf(self, name="report.pdf"):
        content = self.read(name)
        self.assertTrue(content.startswith(b"%PDF-"), content[:20])
        self.assertIn(b"%%EOF", content[-1024:])

    def error_text(self, output="report.pdf"):
        return self.text_of(output + ".error.txt")


def engines_on(folder):
    """Environment variables with which engines are searched in this folder only."""
    return {**search_path(folder), "VELLUM_ENGINE": None}
