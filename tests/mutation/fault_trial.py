"""Tries faults in a copy of the tree: builds, and runs the test programs until one of them fails.

SPDX-License-Identifier: MIT
"""

import ctypes
import os
import pwd
import resource
import shutil
import signal
import subprocess
import time
from dataclasses import dataclass
from pathlib import Path

# In the order of their speed, with the number of processes that share the cases of each.
PROGRAMS = {"unit_tests": 2, "host_tests": 3, "abi_tests": 1}
LARGEST_FILE = 1 << 30
PR_SET_CHILD_SUBREAPER = 36


@dataclass(frozen=True)
class Variant:
    """How a copy is built and run."""
    name: str
    dependencies: str
    options: tuple
    environment: dict
    address_space: int  # Bytes, or -1 without a limit.


def plain(dependencies):
    return Variant("plain", dependencies, ("-DRGEN_WHOLE_LIBRARY=OFF",), {}, 8 << 30)


def sanitized(dependencies):
    """Sees lost memory and reads beyond the end; slow, so it is the second look."""
    options = "allocator_may_return_null=1:detect_stack_use_after_return=1:strict_string_checks=1"
    return Variant("sanitized", dependencies, ("-DRGEN_SANITIZER=address,undefined",),
                   {"ASAN_OPTIONS": options, "UBSAN_OPTIONS": "halt_on_error=1"}, -1)


@dataclass
class Outcome:
    state: str  # "caught", "survived" or "does not compile"
    by: str = ""
    seconds: float = 0.0


class Workshop:
    """One copy of the tree with a build of its own."""

    def __init__(self, root, folder, variant):
        folder = folder / variant.name
        self.root = root
        self.variant = variant
        self.tree = folder / "tree"
        self.build = folder / "build"
        self.temporary = folder / "temporary"
        self.processor_seconds = {}
        self.seconds = {}
        # Programs that a test leaves behind become children of this process, which ends them.
        ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1)

    def prepare(self):
        """Brings the copy up to date, builds it and makes sure that every test passes as it is."""
        self.tree.mkdir(parents=True, exist_ok=True)
        self._copy_sources()
        # The programs must not be able to remove devices and the like, whatever the fault.
        self.temporary.mkdir(exist_ok=True)
        if os.geteuid() == 0:
            nobody = pwd.getpwnam("nobody")
            os.chown(self.temporary, nobody.pw_uid, nobody.pw_gid)
        command = ["cmake", "-G", "Ninja", "-S", self.tree, "-B", self.build,
                   "-DCMAKE_BUILD_TYPE=None", "-DCMAKE_C_FLAGS=-O1", "-DCMAKE_CXX_FLAGS=-O1",
                   "-DRGEN_BUILD_TOOLS=OFF", "-DRGEN_BUILD_TESTS=ON",
                   "-DRGEN_BUILD_EXAMPLES=OFF", "-DRGEN_BUILD_BENCHMARKS=OFF",
                   f"-DRGEN_DEPENDENCIES={self.variant.dependencies}", *self.variant.options]
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
        if not self._make("all"):
            raise SystemExit("The unchanged sources do not build.")
        for program in PROGRAMS:
            failure = self._run(program)
            if failure:
                raise SystemExit(f"{program} fails with the unchanged sources: {failure}\n"
                                 f"Its output is in {self.build}.")

    def try_fault(self, fault):
        started = time.monotonic()
        path = self.tree / fault.file
        original = path.read_text()
        try:
            path.write_text(original[:fault.start] + fault.text + original[fault.end:])
            outcome = self._judge()
        finally:
            path.write_text(original)
        outcome.seconds = round(time.monotonic() - started, 1)
        return outcome

    def _judge(self):
        for program in PROGRAMS:
            if not self._make(program, "strata_repgenlib"):
                return Outcome("does not compile")
            failure = self._run(program)
            if failure:
                return Outcome("caught", f"{self.variant.name} {program}: {failure}")
        return Outcome("survived")

    def _copy_sources(self):
        listed = subprocess.run(["git", "ls-files", "-z", "-co", "--exclude-standard"], check=True,
                                cwd=self.root, capture_output=True, text=True).stdout
        wanted = {name for name in listed.split("\0") if name and (self.root / name).is_file()}
        for path in [path for path in self.tree.rglob("*") if path.is_file()]:
            if path.relative_to(self.tree).as_posix() not in wanted:
                path.unlink()
        for name in wanted:
            source, copy = self.root / name, self.tree / name
            if not copy.is_file() or copy.read_bytes() != source.read_bytes():
                copy.parent.mkdir(parents=True, exist_ok=True)
                # The time of the copy is now, so that a build sees it.
                shutil.copyfile(source, copy)
                shutil.copymode(source, copy)

    def _make(self, *targets):
        log = self.build / "mutation_build.log"
        with open(log, "w") as output:
            return subprocess.run(["ninja", "-C", self.build, *targets], stdout=output,
                                  stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL,
                                  check=False).returncode == 0

    def _run(self, program):
        """Empty when every case passes, otherwise what is wrong."""
        started = time.monotonic()
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        try:
            shards = [self._start(program, number) for number in range(PROGRAMS[program])]
            failure = self._wait(program, shards, started)
        finally:
            self._end_everything()
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        if not failure and program not in self.seconds:
            self.seconds[program] = time.monotonic() - started
            self.processor_seconds[program] = \
                after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
        return failure

    def _start(self, program, shard):
        environment = dict(os.environ, **self.variant.environment, TZ="EST5EDT",
                           TMPDIR=str(self.temporary),
                           GTEST_TOTAL_SHARDS=str(PROGRAMS[program]),
                           GTEST_SHARD_INDEX=str(shard))
        with open(self._log(program, shard), "w") as output:
            return subprocess.Popen([self.build / "bin" / program, "--gtest_fail_fast"],
                                    stdout=output, stderr=subprocess.STDOUT,
                                    stdin=subprocess.DEVNULL, env=environment,
                                    start_new_session=True, cwd=self.temporary,
                                    preexec_fn=lambda: self._restrict(program))

    def _log(self, program, shard):
        return self.build / f"{program}_{shard}.log"

    def _restrict(self, program):
        processor = int(5 * self.processor_seconds.get(program, 60) + 15)
        limits = {resource.RLIMIT_AS: self.variant.address_space, resource.RLIMIT_CORE: 0,
                  resource.RLIMIT_FSIZE: LARGEST_FILE, resource.RLIMIT_CPU: processor}
        for what, limit in limits.items():
            resource.setrlimit(what, (limit, limit))
        if os.geteuid() == 0:
            nobody = pwd.getpwnam("nobody")
            os.setgroups([])
            os.setgid(nobody.pw_gid)
            os.setuid(nobody.pw_uid)

    def _wait(self, program, shards, started):
        """Waits for the processes; as soon as one fails, the others do not matter."""
        deadline = started + 6 * self.seconds.get(program, 90) + 60
        waiting = dict(enumerate(shards))
        while waiting:
            for number, process in list(waiting.items()):
                if process.poll() is None:
                    continue
                del waiting[number]
                failure = self._failure(process.returncode, self._log(program, number))
                if failure:
                    return failure
            if time.monotonic() > deadline:
                return "hangs"
            time.sleep(0.02)
        return ""

    @staticmethod
    def _failure(code, log):
        text = log.read_text(errors="replace")
        lines = text.splitlines()
        if code == 0 and lines and lines[-1] == "all tests ran to the end":
            return ""
        failed = [line[13:].split(",")[0].split(" (")[0] for line in lines
                  if line.startswith("[  FAILED  ] ")]
        running = [line[13:] for line in lines if line.startswith("[ RUN      ] ")]
        case = (failed or running[-1:] or ["no case"])[0]
        if "all tests ran to the end" in lines and not failed:
            case = "the check for lost memory at the end"
        if code == -signal.SIGXCPU or code == -signal.SIGKILL:
            return f"{case} hangs"
        return f"{case} crashes ({-code})" if code < 0 else case

    def _end_everything(self):
        """Ends what is left of the programs and of those that they started."""
        own = os.getpid()
        children = Path(f"/proc/{own}/task/{own}/children")
        deadline = time.monotonic() + 10
        while time.monotonic() < deadline:
            numbers = [int(number) for number in children.read_text().split()]
            if not numbers:
                break
            for number in numbers:
                os.kill(number, signal.SIGKILL)
                try:
                    os.waitpid(number, 0)
                except ChildProcessError:
                    pass
        for left in self.temporary.iterdir():
            if left.is_dir() and not left.is_symlink():
                # Cases take rights away from folders.
                subprocess.run(["chmod", "-R", "u+rwX", left], check=False,
                               stderr=subprocess.DEVNULL)
                shutil.rmtree(left, ignore_errors=True)
            else:
                left.unlink()
