"""What Python suites share that start programs of the target: a folder for each case, a started
program and what it left behind.

The target comes from the environment:

RGEN_CLI_PROGRAM    the program rgen (rgen.exe: the cases run under Wine)
RGEN_CLI_LAUNCHER   what starts programs of the target, words of a shell; may be empty

SPDX-License-Identifier: MIT
"""

import os
import re
import shlex
import shutil
import signal
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

PROGRAM = Path(os.environ["RGEN_CLI_PROGRAM"]).resolve()
LAUNCHER = shlex.split(os.environ.get("RGEN_CLI_LAUNCHER", ""))
SOURCE_FOLDER = Path(__file__).resolve().parents[2]
ON_WINDOWS = PROGRAM.suffix == ".exe"

# Bounds every wait; far above what a working program needs. Its passing fails the case.
LONGEST_WAIT = 120
# The words of the system in a regular expression; Windows speaks the language of its user.
NO_SUCH_FILE = ".+" if ON_WINDOWS else "No such file or directory"
IS_A_FOLDER = ".+" if ON_WINDOWS else "Is a directory"
NO_ACCESS = ".+" if ON_WINDOWS else "Permission denied"
# What the surroundings of the tests must not decide.
DROPPED_VARIABLES = {"NO_COLOR", "CLICOLOR", "CLICOLOR_FORCE", "WINEPATH", "STAND_IN_CONTROL",
                     "STAND_IN_ENGINE", "STAND_IN_ENGINE_LOG", "VELLUM_ENGINE", "VELLUM_TIMEOUT",
                     "VELLUM_MEMORY", "VELLUM_ON_ERROR"}
ROOT_RIGHTS = "-dac_override,-dac_read_search"

# A shell that starts the tests in the background lets them, and all their programs, ignore Ctrl-C.
signal.signal(signal.SIGINT, signal.default_int_handler)

linux_only = unittest.skipIf(ON_WINDOWS, "is about Linux")
windows_only = unittest.skipUnless(ON_WINDOWS, "is about Windows")


def native(path):
    """The absolute path as a program of the target writes it."""
    text = str(path)
    return "Z:" + text.replace("/", "\\") if ON_WINDOWS else text


def from_native(text, folder):
    """The path of this system for one that a program of the target wrote in that folder."""
    if re.match(r"[A-Za-z]:", text):
        text = text[2:]
    return folder / (text.replace("\\", "/") if ON_WINDOWS else text)


def search_path(*folders):
    """The variables that make a program search these folders and no others."""
    if ON_WINDOWS:
        return {"WINEPATH": ";".join(native(folder) for folder in folders)}
    return {"PATH": ":".join(str(folder) for folder in folders) or "/nonexistent"}


def reason_of(error):
    """Why a program could not be run, or what it wrote when it failed."""
    written = getattr(error, "stderr", None) or b""
    return written.decode(errors="replace").strip() or str(error)


def unprivileged():
    """The command that starts a program which the rights of files bind, even for root."""
    if os.geteuid() != 0:
        return []
    command = [shutil.which("setpriv") or "setpriv", f"--bounding-set={ROOT_RIGHTS}"]
    try:
        subprocess.run([*command, shutil.which("true")], check=True, capture_output=True)
    except (OSError, subprocess.CalledProcessError) as error:
        raise unittest.SkipTest("setpriv cannot take the rights of root away here: "
                                + reason_of(error)) from error
    return command


def with_small_files(limit, signal_is="ignored"):
    """The command that starts a program whose files cannot grow beyond that many bytes; the system's
    signal about it is ignored or has its default action, which ends the program."""
    option = {"ignored": "--ignore-signal=XFSZ", "default": "--default-signal=XFSZ"}[signal_is]
    return [shutil.which("env"), option, shutil.which("prlimit"), f"--fsize={limit}:{limit}"]


class Result:
    """How a run ended: code, the bytes of standard output, the text of standard error."""

    def __init__(self, code, out, err):
        self.code = code
        self.out = out
        self.err = err.decode("utf-8", "surrogateescape").replace("\r\n", "\n")

    @property
    def text(self):
        return self.out.decode("utf-8").replace("\r\n", "\n")

    def __repr__(self):
        return f"code {self.code}, out {self.out[:2000]!r}, err {self.err[:4000]!r}"


class Running:
    """A started program. Its output goes through files: under Wine, processes that outlive it may
    hold on to a pipe. Descriptors given for standard output and error are closed here."""

    def __init__(self, command, folder, env, result_type=Result, stdin=None, stdout=None,
                 stderr=None):
        self.result_type = result_type
        self.is_captured = stdout is None and stderr is None
        self.out = tempfile.TemporaryFile()
        self.err = tempfile.TemporaryFile()
        with tempfile.TemporaryFile() as given:
            given.write(stdin or b"")
            given.seek(0)
            self.process = subprocess.Popen(
                [str(word) for word in command], cwd=folder, env=env,
                stdin=subprocess.DEVNULL if stdin is None else given,
                stdout=self.out if stdout is None else stdout,
                stderr=self.err if stderr is None else stderr)
        for descriptor in (stdout, stderr):
            if descriptor is not None:
                os.close(descriptor)

    def interrupt(self):
        self.process.send_signal(signal.SIGINT)

    def interrupt_until_it_ends(self):
        """Interrupts again and again: two that come at once may count as one."""
        limit = time.monotonic() + LONGEST_WAIT
        while self.process.poll() is None and time.monotonic() < limit:
            self.interrupt()
            time.sleep(0.05)
        return self.finish()

    def finish(self):
        """Waits for the end."""
        try:
            code = self.process.wait(LONGEST_WAIT)
        except subprocess.TimeoutExpired as error:
            raise AssertionError("the program does not end") from error
        finally:
            self.stop()
        contents = []
        for file in (self.out, self.err):
            file.seek(0)
            contents.append(file.read())
            file.close()
        result = self.result_type(code, *contents)
        if ON_WINDOWS and self.is_captured and (code, *contents) == (1, b"", b""):
            raise AssertionError(f"Wine did not start the program: {result}")
        return result

    def stop(self):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()


def wait_for(path, running=None, is_gone=False):
    """Waits until a file exists, or is gone; stops early when the program that is to make it has
    ended."""
    limit = time.monotonic() + LONGEST_WAIT
    while path.exists() == is_gone:
        ended = running is not None and running.process.poll() is not None
        if ended and not path.exists():
            raise AssertionError(f"ended without making {path.name}: {running.finish()}")
        if time.monotonic() > limit:
            raise AssertionError(f"never {'removed' if is_gone else 'made'}: {path}")
        time.sleep(0.002)


class ProgramCase(unittest.TestCase):
    """A case with a folder of its own, which is the current folder of every program it starts."""

    folder_name = "rgen Größe и слово "
    result_type = Result
    maxDiff = 4000

    def setUp(self):
        base = Path(tempfile.mkdtemp(prefix=self.folder_name))
        self.addCleanup(shutil.rmtree, base)
        self.folder = base / "work"
        self.folder.mkdir()
        self.system_temp = base / "temp"
        self.system_temp.mkdir()
        self.addCleanup(self.expect_no_temporary_files)

    def expect_no_temporary_files(self):
        self.assertEqual([], [name for name in self.names() if ".part-" in name])
        self.assertEqual([], sorted(path.name for path in self.system_temp.iterdir()))

    # ---- Starting programs ----------------------------------------------------------------------

    def environment(self, changes=None):
        env = {name: value for name, value in os.environ.items() if name not in DROPPED_VARIABLES}
        env.update(LC_ALL="C.UTF-8", TZ="EST5EDT")
        if not ON_WINDOWS:
            # Wine's server has its socket there; Wine's programs use another folder.
            env["TMPDIR"] = str(self.system_temp)
        env.update(search_path(self.folder / "nothing here"))
        env.update(changes or {})
        return env

    def start(self, *args, program, prefix=(), env=None, folder=None, **streams):
        launcher = [shutil.which(LAUNCHER[0]) or LAUNCHER[0], *LAUNCHER[1:]] if LAUNCHER else []
        running = Running([*prefix, *launcher, program, *args], folder or self.folder,
                          self.environment(env), self.result_type, **streams)
        self.addCleanup(running.stop)
        return running

    # ---- Files ----------------------------------------------------------------------------------

    def write(self, name, content):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content if isinstance(content, bytes) else content.encode("utf-8"))
        return path

    def read(self, name):
        return (self.folder / name).read_bytes()

    def text_of(self, name):
        return self.read(name).decode("utf-8").replace("\r\n", "\n")

    def names(self):
        """Every file and folder below the case's folder."""
        return sorted(path.relative_to(self.folder).as_posix()
                      for path in self.folder.rglob("*"))

    def contents(self):
        """The files with their bytes, the folders with None."""
        return {path.relative_to(self.folder).as_posix():
                path.read_bytes() if path.is_file() else None for path in self.folder.rglob("*")}

    def forbid(self, name):
        """Takes away all rights of a file or folder until the case is over."""
        path = self.folder / name
        old = path.stat().st_mode
        path.chmod(0)
        self.addCleanup(path.chmod, old)

    # ---- Statements about a run -----------------------------------------------------------------

    def expect_plain(self, text):
        """No colour, and nothing that is not UTF-8."""
        self.assertNotIn("\x1b", text)
        self.assertFalse(re.search("[\udc80-\udcff]", text), repr(text))
