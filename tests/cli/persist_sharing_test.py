"""Persistent data of several processes: concurrent writers, locks, kills at every step.

SPDX-License-Identifier: MIT
"""

import os
import shutil
import signal
import threading
import unittest
from pathlib import Path

from cli_case import (NO_ACCESS, ON_WINDOWS, PersistCase, linux_only, unprivileged, wait_for)
from cli_templates import GUID, LISTING, OTHER_GUID

STORE = "case/.rgen/acquisition_data.xml"
# A library that ends rgen at a chosen file operation; not in instrumented builds.
KILL_POINT = os.environ.get("RGEN_CLI_KILL_POINT")
PART = "rgen.part-"
PUT_BACK = "an earlier run was ended while it wrote; its old data was put back"
OLD = '<data><properties><property name="A">old</property></properties></data>'
# Long enough that writing it can be seen from outside.
LARGE = 9_000_000


class SharingCase(PersistCase):

    def expect_nothing_beside(self):
        beside = [name for name in self.names() if name != STORE and
                  (name.startswith(STORE) or PART in name)]
        self.assertEqual([], beside)

    def at_once(self, *tasks):
        """Calls each task on its own thread; a failure in one fails the case."""
        failures = []

        def call(task):
            try:
                task()
            except Exception as failure:  # Shown below, on the case's own thread.
                failures.append(failure)

        threads = [threading.Thread(target=call, args=(task,)) for task in tasks]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        if failures:
            raise failures[0]


class WritersAtOnce(SharingCase):
    writers = 3 if ON_WINDOWS else 8
    rounds = 4 if ON_WINDOWS else 8

    def write_values(self, writer):
        for number in range(self.rounds):
            self.expect_done(self.persist("set", "-q", f"W{writer}.{number}=AT&T {number}"))

    def test_no_set_that_ended_well_is_lost(self):
        self.at_once(*(lambda writer=writer: self.write_values(writer)
                       for writer in range(self.writers)))
        self.assertEqual({f"W{writer}.{number}": f"AT&T {number}" for writer in range(self.writers)
                          for number in range(self.rounds)}, self.stored())
        self.expect_nothing_beside()

    def test_set_and_unset_of_different_names(self):
        kept = {f"K{number}": str(number) for number in range(self.rounds)}
        self.write_json("data.json", {**kept, **{f"U{n}": "x" for n in range(self.rounds)}})
        self.expect_done(self.persist("set", "--data", "data.json"))

        def unset():
            for number in range(self.rounds):
                self.expect_done(self.persist("unset", "-q", f"U{number}"))

        self.at_once(unset, lambda: self.write_values(0))
        new = {f"W0.{number}": f"AT&T {number}" for number in range(self.rounds)}
        self.assertEqual({**kept, **new}, self.stored())

    def test_readers_see_whole_sets(self):
        self.expect_done(self.persist("replace", "A=0", "B=0"))
        is_over = threading.Event()

        def write():
            for number in range(self.rounds):
                self.expect_done(self.persist("replace", "-q", f"A={number}", f"B={number}"))
            is_over.set()

        def read():
            while not is_over.is_set():
                values = self.stored()
                self.assertEqual({"A", "B"}, set(values))
                self.assertEqual(values["A"], values["B"])
                values = self.values()
                self.assertEqual({"A", "B"}, set(values))
                self.assertEqual(values["A"], values["B"])

        def write_and_tell():
            try:
                write()
            finally:
                is_over.set()

        self.at_once(write_and_tell, read)

    def test_two_report_types_with_one_file(self):
        self.make_data_dir("case", types=[("alpha.xsl", GUID, "a.xml"),
                                          ("beta.xsl", OTHER_GUID, "./a.xml")],
                           templates={"txt/alpha.xsl": LISTING})

        def write(name):
            for number in range(self.rounds):
                self.expect_done(self.persist("set", "-q", "-t", name, f"{name}{number}=x"))

        self.at_once(lambda: write("alpha"), lambda: write("beta"))
        result = self.persist("get", "-t", "alpha", "--json")
        self.assertEqual(2 * self.rounds, len(result.document["values"]))


class Locks(SharingCase):

    @linux_only
    def test_who_waits_says_for_what_and_goes_on(self):
        """A writer is stopped while it holds the lock. Not under Wine, whose server would block."""
        self.write_json("data.json", {"Large": "x" * LARGE})
        folder = (self.folder / STORE).parent

        def is_writing():
            return any(folder.glob(PART + "*"))

        while True:
            writer = self.start("persist", "set", "-d", "case", "--data", "data.json")
            while writer.process.poll() is None and not is_writing():
                pass
            self.halt(writer)
            if is_writing():
                break
            writer.process.send_signal(signal.SIGCONT)
            self.expect_done(writer.finish())
        self.addCleanup(writer.process.send_signal, signal.SIGCONT)
        waiting = self.start("persist", "set", "-d", "case", "B=1")
        note = f'rgen: note: waiting for another rgen, which changes "{STORE}"\n'.encode()
        while waiting.process.poll() is None and not self.printed(waiting).startswith(note):
            pass
        writer.process.send_signal(signal.SIGCONT)
        self.expect_done(writer.finish())
        result = waiting.finish()
        self.expect_done(result)
        self.assertEqual([note.decode()[len("rgen: note: "):-1]], result.notes)
        self.assertEqual({"Large", "B"}, set(self.stored()))
        self.expect_nothing_beside()

    @staticmethod
    def halt(running):
        """Stops a program and waits until it has stopped."""
        running.process.send_signal(signal.SIGSTOP)
        state = Path(f"/proc/{running.process.pid}/stat")
        while state.read_text(encoding="utf-8").rpartition(") ")[2][0] not in "TZ":
            pass

    @staticmethod
    def printed(running):
        return os.pread(running.err.fileno(), 1000, 0).replace(b"\r\n", b"\n")

    @linux_only
    def test_ctrl_c_ends_the_waiting(self):
        import fcntl
        self.expect_done(self.persist("set", "A=1"))
        before = self.contents()
        lock = self.write(STORE + ".lock", "")
        with lock.open() as file:
            fcntl.flock(file, fcntl.LOCK_EX)
            waiting = self.start("persist", "set", "-d", "case", "B=1")
            while waiting.process.poll() is None and b"waiting" not in self.printed(waiting):
                pass
            waiting.interrupt()
            self.assertEqual(130, waiting.finish().code)
        lock.unlink()
        self.assertEqual(before, self.contents())

    @linux_only
    def test_what_a_killed_process_leaves_locks_nobody_out(self):
        self.write(STORE + ".lock", "")
        self.expect_notes(self.persist("set", "A=1"))
        self.assertEqual({"A": "1"}, self.stored())
        self.expect_nothing_beside()

    @linux_only
    def test_a_link_in_the_place_of_the_lock_is_not_followed(self):
        other = self.write("other.txt", "kept")
        (self.folder / (STORE + ".lock")).symlink_to(other)
        self.expect_error_like(self.persist("set", "A=1"), 5,
                               f'^rgen: cannot lock "{STORE}.lock": .+; remove it when no rgen runs$')
        (self.folder / (STORE + ".lock")).unlink()
        self.expect_done(self.persist("set", "A=1"))
        self.assertEqual(b"kept", other.read_bytes())
        self.expect_nothing_beside()

    @linux_only
    def test_a_folder_that_allows_no_lock(self):
        self.expect_done(self.persist("set", "A=1"))
        before = self.contents()
        (self.folder / "case/.rgen").chmod(0o555)
        self.addCleanup((self.folder / "case/.rgen").chmod, 0o755)
        for arguments in (("set", "A=2"), ("unset", "A"), ("replace", "B=1")):
            self.expect_error(
                self.persist(*arguments, prefix=unprivileged()), 5,
                f'rgen: cannot lock "{STORE}.lock": {NO_ACCESS}; check the rights of the folder '
                '"case/.rgen" and the room on the disk')
        self.assertEqual("A=1\n", self.persist("get", prefix=unprivileged()).text)
        self.assertEqual(before, self.contents())


class Kills(SharingCase):

    def expect_old_or_new(self, old, new):
        """A reader sees one of the two, and so does the next writer, which removes everything else."""
        values = self.values("--set", "Z=1")
        del values["Z"]
        self.assertIn(values, (old, new))
        self.expect_notes(self.persist("set", "Later=1"))
        self.assertEqual({**values, "Later": "1"}, self.stored())
        self.remove_folders_without_owner()
        self.expect_nothing_beside()
        return values

    def remove_folders_without_owner(self):
        """The folder of a run that was killed before it wrote its lock file: it is empty and harmless."""
        for folder in (self.folder / STORE).parent.glob(PART + "*"):
            if all(path.name == "lock" and path.stat().st_size == 0 for path in folder.iterdir()):
                shutil.rmtree(folder)

    @unittest.skipUnless(KILL_POINT, "LD_PRELOAD needs Linux and a build without a sanitizer")
    def test_before_every_file_operation(self):
        new = {"B": "2", "Text": "AT&T" * 5000}
        self.write_json("data.json", new)
        for old in ({}, {"A": "1", "B": "1"}):
            outcomes = self.kill_everywhere(old, {**old, **new})
            # A kill at the first operations leaves the old data, one at the last the new data.
            self.assertEqual([old, {**old, **new}], [outcomes[0], outcomes[-1]])
            self.assertGreater(len(outcomes), 10)

    def kill_everywhere(self, old, new):
        """The stored data after a kill at the first operation, at the second and so on, until the
        program ends by itself."""
        self.write_json("old.json", old)
        self.expect_done(self.persist("replace", "--data", "old.json"))
        before = self.read(STORE)
        outcomes = []
        point, code = 0, -9
        while code == -9:
            point += 1
            self.write(STORE, before)
            if not old:
                (self.folder / STORE).unlink()
            code = self.persist("set", "--data", "data.json",
                                env={"LD_PRELOAD": KILL_POINT, "RGEN_KILL_POINT": str(point)}).code
            with self.subTest(point=point):
                outcomes.append(self.expect_old_or_new(old, new))
        self.assertEqual(0, code)
        return outcomes

    def test_while_it_can_be_seen_to_write(self):
        """Kills when the lock or the folder appears, or shortly after."""
        self.write_json("data.json", {"A": "2", "Large": "x" * LARGE})
        for mark in (STORE.rpartition("/")[2] + ".lock", PART + "*", PART + "*/.rgen/data.xml"):
            self.expect_done(self.persist("replace", "A=1"))
            running = self.start("persist", "set", "-d", "case", "--data", "data.json")
            folder = (self.folder / STORE).parent
            while running.process.poll() is None and not any(folder.glob(mark)):
                pass
            running.stop()
            with self.subTest(mark=mark):
                self.expect_old_or_new({"A": "1"}, {"A": "2", "Large": "x" * LARGE})


class DataKeptAside(SharingCase):
    """An earlier version of rgen wrote in place and kept the old file next to it."""

    def put_aside(self, rest):
        self.write(STORE + ".kept", OLD)
        if rest is None:
            (self.folder / STORE).unlink(missing_ok=True)
        else:
            self.write(STORE, rest)

    def readers(self):
        self.write("batch.ndjson", '{"output": "batch.txt"}\n')
        data = ("-d", "case")
        return {"get": ("persist", "get", *data),
                "report": ("report", *data, "-o", "-", "-f", "txt", "--set", "B=1"),
                "report with data": ("report", *data, "-o", "r.txt", "--show-data"),
                "batch": ("report", *data, "--batch", "batch.ndjson"),
                "doctor": ("doctor", *data)}

    def test_every_reader_puts_it_back(self):
        for rest in (None, "", "<data><prop"):
            for name, arguments in self.readers().items():
                with self.subTest(rest=rest, reader=name):
                    self.put_aside(rest)
                    result = self.rgen(*arguments)
                    place = "batch.ndjson:1: " if name == "batch" else ""
                    self.assertEqual([place + PUT_BACK], result.notes)
                    if name == "doctor":
                        self.assertIn("acquisition, persistent data: 1 values", result.text)
                    else:
                        self.assertEqual(0, result.code, result)
                        self.assertIn("old", result.text if name != "batch"
                                      else self.text_of("batch.txt"))
                    self.expect_nothing_beside()

    def test_a_whole_file_is_what_counts(self):
        for name, arguments in self.readers().items():
            with self.subTest(reader=name):
                self.put_aside(OLD.replace("old", "new"))
                result = self.rgen(*arguments)
                self.assertEqual([], result.notes)
                if name != "doctor":
                    self.assertNotIn("old", result.text)

    @linux_only
    def test_it_cannot_be_put_back(self):
        """A command that only reads notes it and reads the existing data."""
        reason = f'cannot lock "{STORE}.lock": {NO_ACCESS}'
        for rest in (None, "<data><prop"):
            for name, arguments in self.readers().items():
                with self.subTest(rest=rest, reader=name):
                    self.put_aside(rest)
                    (self.folder / "case/.rgen").chmod(0o555)
                    result = self.rgen(*arguments, prefix=unprivileged())
                    (self.folder / "case/.rgen").chmod(0o755)
                    self.assertIn(reason, result.err + result.text)
                    if name == "doctor":
                        self.assertEqual(5, result.code, result)
                        continue
                    self.assertIn(f'note: {"batch.ndjson:1: " if name == "batch" else ""}the old data in '
                                  f'"{STORE}.kept" was not put back: {reason}', result.err)
                    # Without other values the report is now empty.
                    code = {"get": 0 if rest is None else 1, "report": 0}.get(name, 1)
                    self.assertEqual(code, result.code, result)
