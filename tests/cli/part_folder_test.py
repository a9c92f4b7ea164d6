"""The folder of unfinished files: links cannot be planted in it, the next run removes that of a
killed run, and concurrent runs do not disturb each other.

SPDX-License-Identifier: MIT
"""

import os
import shutil
import stat
import subprocess
import unittest
from pathlib import Path

from cli_case import ON_WINDOWS, PROGRAM, CliCase, linux_only, unprivileged
from cli_converter import WHOLE_PDF, ConversionCase

SET = ("--set", "A=1")
NO_LOCKS = os.environ.get("RGEN_CLI_NO_LOCKS")


def machine():
    """The content of the lock file of a run on this machine."""
    if ON_WINDOWS:
        return os.uname().nodename
    return Path("/proc/sys/kernel/random/boot_id").read_text(encoding="ascii").strip()


class PlantedFiles(ConversionCase):

    @linux_only
    def test_names_with_the_number_of_the_process(self):
        """A link planted under a predictable name is not followed."""
        self.write("victim", "kept")
        shell = 'echo $$; read go; exec "$0" "$@"'
        for arguments, names in ((("-o", "o.txt"), ("o.part-{}.txt",)),
                                 (("-o", "o.txt", "--mode", "bytes"), ("o.part-{}.txt",)),
                                 (("-o", "o.pdf"), ("o.part-{}.pdf", "o.part-{}.pdf.html",
                                                    "o.part-{}.pdf.error.txt"))):
            with self.subTest(arguments=arguments):
                run = subprocess.Popen(
                    ["/bin/bash", "-c", shell, PROGRAM, "report", "-d", "case", *SET, *arguments],
                    cwd=self.folder, env=self.environment(self.converter_environment()),
                    stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
                number = run.stdout.readline().decode().strip()
                links = [self.folder / name.format(number) for name in names]
                for link in links:
                    link.symlink_to("victim")
                run.communicate(b"go\n")
                self.assertEqual(b"kept", self.read("victim"))
                for link in links:
                    self.assertTrue(link.is_symlink(), link)
                    link.unlink()

    def test_nobody_else_may_enter_the_folder(self):
        conversion = self.convert(*SET)
        facts = conversion.page.parent.lstat()
        self.assertTrue(stat.S_ISDIR(facts.st_mode))
        if not ON_WINDOWS:
            self.assertEqual(0o700, stat.S_IMODE(facts.st_mode))
        self.expect_done(conversion.finish(WHOLE_PDF))

    def test_every_run_takes_another_name(self):
        names = set()
        for _ in range(3):
            conversion = self.convert(*SET)
            names.add(conversion.page.parent.name)
            self.expect_done(conversion.finish(WHOLE_PDF))
        self.assertEqual(3, len(names))

    @linux_only
    def test_links_among_the_leftovers_are_not_followed(self):
        self.write("victim/lock", "")
        self.write("victim/file", "kept")
        (self.folder / "rgen.part-aaaaaaaaaa").symlink_to("victim")
        (self.folder / "rgen.part-bbbbbbbbbb").mkdir()
        (self.folder / "rgen.part-bbbbbbbbbb/lock").symlink_to("../victim/lock")
        self.write("rgen.part-cccccccccc/lock", machine())
        (self.folder / "rgen.part-cccccccccc/link").symlink_to("../victim")
        self.expect_done(self.report(*SET))
        self.assertEqual(b"kept", self.read("victim/file"))
        self.assertTrue((self.folder / "victim/lock").exists())
        self.assertNotIn("rgen.part-cccccccccc", self.names())
        (self.folder / "rgen.part-aaaaaaaaaa").unlink()
        (self.folder / "rgen.part-bbbbbbbbbb/lock").unlink()
        (self.folder / "rgen.part-bbbbbbbbbb").rmdir()


class KilledRuns(ConversionCase):

    def leftovers(self):
        return [path for path in self.folder.iterdir() if path.name.startswith("rgen.part-")]

    def kill(self, conversion):
        conversion.running.process.kill()
        conversion.running.finish()
        self.assertEqual([conversion.page.parent], self.leftovers())
        conversion.case.remove_traces(conversion.number)

    def expect_removed_by(self, *args):
        """On Windows an ending converter may keep a file open: then a later run removes it."""
        for _ in range(20 if ON_WINDOWS else 1):
            self.expect_done(self.rgen(*args))
            if not self.leftovers():
                return
        self.fail(f"left: {self.leftovers()}")

    def test_the_next_run_of_every_command_removes_what_is_left(self):
        for arguments in (("report", "-d", "case", *SET, "-o", "report.txt"),
                          ("report", "-d", "case", *SET, "-o", "report.txt", "--mode", "bytes"),
                          ("report", "-d", "case", *SET, "-o", "other.html"),
                          ("dump", *SET, "-o", "dump.xml"), ("simulate", *SET, "-o", "sim.xml")):
            with self.subTest(arguments=arguments):
                self.write("report.pdf", "older")
                self.kill(self.convert(*SET))
                self.expect_removed_by(*arguments)
                self.assertEqual(b"older", self.read("report.pdf"))

    def test_what_belongs_to_a_living_run_stays(self):
        living = self.convert(*SET, output="living.pdf")
        killed = self.convert(*SET, output="killed.pdf")
        killed.running.process.kill()
        killed.running.finish()
        for _ in range(20 if ON_WINDOWS else 1):
            self.expect_done(self.report(*SET))
            if self.leftovers() == [living.page.parent]:
                break
        self.assertEqual([living.page.parent], self.leftovers())
        self.assertTrue(living.page.exists())
        self.expect_done(living.finish(WHOLE_PDF))
        self.assertEqual(WHOLE_PDF, self.read("living.pdf"))
        self.assertEqual([], self.leftovers())
        self.remove_traces(killed.number)

    def test_what_is_not_known_to_be_abandoned_stays(self):
        (self.folder / "rgen.part-aaaaaaaaaa").mkdir()
        self.write("rgen.part-bbbbbbbbbb/lock", machine())
        self.write("rgen.part-bbbbbbbbbb/report", "half")
        kept = ["rgen.part-cccccccccc/report", "rgen.part-short/lock", "other.part-dddddddddd/lock"]
        for name in kept:
            self.write(name, "somebody's")
        self.expect_done(self.report(*SET))
        self.assertEqual({name.split("/")[0] for name in kept},
                         {name for name in self.names() if ".part-" in name and "/" not in name})
        for name in kept:
            (self.folder / name).unlink()
            (self.folder / name).parent.rmdir()

    def test_what_another_machine_may_use_stays(self):
        """On some network file systems its locks are not visible here."""
        for owner in ("", "0" * 8, machine()[:-1], machine() + "0"):
            with self.subTest(owner=owner):
                self.write("rgen.part-aaaaaaaaaa/lock", owner)
                self.write("rgen.part-aaaaaaaaaa/report", "half")
                self.expect_done(self.report(*SET))
                self.assertEqual(b"half", self.read("rgen.part-aaaaaaaaaa/report"))
        shutil.rmtree(self.folder / "rgen.part-aaaaaaaaaa")

    @unittest.skipUnless(NO_LOCKS, "LD_PRELOAD needs Linux and a build without a sanitizer")
    def test_what_belongs_to_a_living_run_stays_without_locks(self):
        environment = {"LD_PRELOAD": NO_LOCKS}
        living = self.convert(*SET, output="living.pdf", more=environment)
        for env in (environment, {}):
            self.expect_done(self.report(*SET, env=env))
            self.assertEqual([living.page.parent], self.leftovers())
        for path in living.page.parent.iterdir():
            if path.name != "lock":
                path.unlink()
        self.expect_done(self.report(*SET, env=environment))
        self.assertEqual([living.page.parent], self.leftovers())
        self.expect_done(living.finish(WHOLE_PDF))
        self.assertEqual([], self.leftovers())


@linux_only
class Masks(ConversionCase):
    """A umask that restricts the owner applies to the finished report, not to temporary files."""

    masks = (0o000, 0o077, 0o177, 0o277, 0o577, 0o777)

    def with_mask(self, mask):
        return [*unprivileged(), "/bin/sh", "-c", 'umask "$0"; exec "$@"', f"{mask:o}"]

    def mode_of(self, name):
        return stat.S_IMODE((self.folder / name).stat().st_mode)

    def test_every_command_that_writes_a_file(self):
        commands = [("report", "-d", "case"), ("report", "-d", "case", "--mode", "bytes"),
                    ("dump",), ("simulate",)]
        for mask in self.masks:
            for number, command in enumerate(commands):
                with self.subTest(mask=f"{mask:o}", command=command):
                    name = f"{mask:o}-{number}.txt"
                    for _ in range(2):
                        self.expect_done(self.rgen(*command, *SET, "-o", name,
                                                   prefix=self.with_mask(mask)))
                        self.assertEqual(0o666 & ~mask, self.mode_of(name))
                    self.assertIn(b"A", self.read(name))
                    self.assertFalse([each for each in self.names() if "rgen.part-" in each])

    def test_a_file_that_vanishes(self):
        for mask in self.masks:
            with self.subTest(mask=f"{mask:o}"):
                self.expect_done(self.report(*SET, "--mode", "delete-on-close",
                                             prefix=self.with_mask(mask)))
                self.assertFalse([each for each in self.names() if "rgen.part-" in each])

    def test_the_converter_reads_and_writes(self):
        for mask in self.masks:
            with self.subTest(mask=f"{mask:o}"):
                name = f"{mask:o}.pdf"
                conversion = self.convert(*SET, output=name, prefix=self.with_mask(mask))
                for path in (conversion.page, conversion.page.parent / "converter.log"):
                    self.assertEqual(0o600, stat.S_IMODE(path.stat().st_mode) & 0o600)
                self.expect_done(conversion.finish(WHOLE_PDF))
                self.assertEqual(WHOLE_PDF, self.read(name))
                self.assertEqual(0, self.mode_of(name) & mask & 0o700)

    def test_an_older_report_keeps_its_rights(self):
        for mask in self.masks:
            with self.subTest(mask=f"{mask:o}"):
                self.write("report.txt", "older")
                (self.folder / "report.txt").chmod(0o640)
                self.expect_done(self.report(*SET, prefix=self.with_mask(mask)))
                self.assertEqual(0o640, self.mode_of("report.txt"))

    def test_a_killed_run_of_any_mask_is_removed(self):
        for mask in self.masks:
            with self.subTest(mask=f"{mask:o}"):
                conversion = self.convert(*SET, prefix=self.with_mask(mask))
                conversion.running.process.kill()
                conversion.running.finish()
                self.remove_traces(conversion.number)
                self.expect_done(self.report(*SET, prefix=unprivileged()))
                self.assertFalse(conversion.page.parent.exists())


class ManyWriters(CliCase):

    def test_runs_beside_one_another(self):
        """Each finishes its own report; no temporary file is left."""
        for round_number in range(3):
            runs = [self.start("report", "-d", "case", "--set", f"A={number}", "-o",
                               f"report-{number}.txt") for number in range(8)]
            for number, run in enumerate(runs):
                self.expect_done(run.finish())
                self.assertEqual(f"[A={number}]\n".encode(), self.read(f"report-{number}.txt"))

    @linux_only
    def test_runs_that_write_one_file(self):
        """The file is always complete, from one of them. Windows may refuse one of two renames."""
        text = "x" * 50_000
        for _ in range(5):
            runs = [self.start("report", "-d", "case", "--set", f"A={number}{text}", "-o",
                               "report.txt") for number in range(8)]
            for run in runs:
                self.expect_done(run.finish())
            self.assertRegex(self.text_of("report.txt"), f"^\\[A=[0-7]{text}\\]\n$")
