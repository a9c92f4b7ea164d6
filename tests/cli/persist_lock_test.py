"""Files with the name of the lock, left-over locks, and persistent data under every umask.

SPDX-License-Identifier: MIT
"""

import os
import shutil
import stat
import unittest

from cli_case import linux_only, unprivileged, windows_only
from cli_templates import GUID, OTHER_GUID, LISTING
from persist_sharing_test import OLD, STORE, SharingCase

LOCK = STORE + ".lock"
NOT_EMPTY = f'^rgen: cannot lock "{LOCK}": it is no empty file; move it away; .+$'
UNUSABLE = f'^rgen: cannot lock "{LOCK}": .+; .+$'


class WhatHasTheNameOfTheLock(SharingCase):

    def setUp(self):
        super().setUp()
        self.expect_done(self.persist("set", "A=1"))

    def expect_it_stays(self, pattern=NOT_EMPTY):
        before = self.contents()
        for command in ("set", "replace"):
            self.expect_error_like(self.persist(command, "A=2"), 5, pattern)
            self.assertEqual(before, self.contents())
        self.assertTrue(os.path.lexists(self.folder / LOCK))

    def test_a_file_with_something_in_it(self):
        self.write(LOCK, "data of somebody")
        self.expect_it_stays()

    def test_a_second_name_of_an_empty_file(self):
        other = self.write("empty.txt", "")
        os.link(other, self.folder / LOCK)
        self.expect_it_stays()
        self.assertTrue(other.exists())

    def test_an_empty_file_is_a_lock_that_was_left(self):
        self.write(LOCK, "")
        self.expect_done(self.persist("set", "A=2"))
        self.expect_nothing_beside()

    @linux_only
    def test_links_pipes_folders_and_devices(self):
        other = self.write("empty.txt", "")
        lock = self.folder / LOCK
        makers = {"link": lambda: lock.symlink_to(other), "pipe": lambda: os.mkfifo(lock),
                  "dangling": lambda: lock.symlink_to(self.folder / "nothing"), "folder": lock.mkdir}
        if os.geteuid() == 0:
            makers["device"] = lambda: os.mknod(lock, 0o666 | stat.S_IFCHR, os.makedev(1, 3))
        for name, make in makers.items():
            with self.subTest(name=name):
                make()
                for command in ("set", "replace"):
                    self.expect_error_like(self.persist(command, "A=2"), 5, UNUSABLE)
                self.assertTrue(os.path.lexists(lock))
                self.assertTrue(other.exists())
                self.assertFalse((self.folder / "nothing").exists())
                (lock.rmdir if name == "folder" else lock.unlink)()

    @windows_only
    def test_a_link_to_a_file_with_something_in_it(self):
        """Wine resolves links, so that a link to an empty file looks like a lock."""
        other = self.write("other.txt", "kept")
        (self.folder / LOCK).symlink_to(other)
        self.expect_error_like(self.persist("set", "A=2"), 5, UNUSABLE)
        self.assertEqual(b"kept", other.read_bytes())

    def test_the_data_of_another_report_type(self):
        self.make_data_dir("case", types=[("alpha.xsl", GUID, "persist.xml"),
                                          ("beta.xsl", OTHER_GUID, "persist.xml.lock")],
                           templates={"txt/alpha.xsl": LISTING})
        self.expect_done(self.persist("set", "-t", "beta", "B=1"))
        before = self.contents()
        self.expect_error_like(self.persist("set", "-t", "alpha", "A=1"), 5,
                               '^rgen: cannot lock "case/.rgen/persist.xml.lock": it is no empty file')
        self.assertEqual(before, self.contents())
        self.assertEqual("B=1\n", self.persist("get", "-t", "beta").text)


@linux_only
class LocksOfOtherUsers(SharingCase):

    def test_a_lock_file_without_rights_for_others(self):
        self.write(LOCK, "")
        self.forbid(LOCK)
        self.expect_error_like(
            self.persist("set", "A=1", prefix=unprivileged()), 5,
            f'^rgen: cannot lock "{LOCK}": Permission denied; remove it when no rgen runs$')

    def test_everybody_may_use_the_lock(self):
        """A second run waits for it, whatever the umask of the first one."""
        import fcntl
        path = self.write(LOCK, "")
        path.chmod(0o600)
        with path.open() as file:
            fcntl.flock(file, fcntl.LOCK_EX)
            waiting = self.start("persist", "set", "-d", "case", "A=1")
            while waiting.process.poll() is None and \
                    b"waiting" not in os.pread(waiting.err.fileno(), 1000, 0):
                pass
            mode = stat.S_IMODE(path.stat().st_mode)
        self.expect_done(waiting.finish())
        self.assertEqual(0o666, mode)


@linux_only
class Masks(SharingCase):
    masks = (0, 0o022, 0o077, 0o177, 0o277, 0o577, 0o777)

    def set_under(self, mask):
        old = os.umask(mask)
        try:
            return self.persist("set", "A=1", prefix=unprivileged())
        finally:
            os.umask(old)

    def test_the_run_and_the_next_one(self):
        for mask in self.masks:
            for has_file in (False, True):
                with self.subTest(mask=oct(mask), has_file=has_file):
                    (self.folder / STORE).unlink(missing_ok=True)
                    if has_file:
                        self.write(STORE, OLD)
                    self.expect_notes(self.set_under(mask))
                    wanted = 0o644 if has_file else (0o666 & ~mask) | 0o600
                    self.assertEqual(wanted, stat.S_IMODE((self.folder / STORE).stat().st_mode))
                    self.expect_nothing_beside()
                    self.expect_notes(self.persist("set", "B=1", prefix=unprivileged()))
                    self.assertLessEqual({"A": "1", "B": "1"}.items(), self.stored().items())


class NamesAndLinks(SharingCase):

    def use(self, name):
        self.make_data_dir("case", types=[("acquisition.xsl", GUID, name)])

    def test_a_folder_of_the_user_beside_the_file(self):
        self.write(STORE + ".writing/mine.txt", "kept")
        self.expect_done(self.persist("set", "A=1"))
        self.assertEqual(b"kept", self.read(STORE + ".writing/mine.txt"))

    @linux_only
    def test_names_of_every_length_that_a_file_can_have(self):
        for size in (200, 201, 245, 246, 247, 248, 250, 251, 255):
            for letters in ("x" * size, "x" + "ж" * ((size - 1) // 2)):
                with self.subTest(size=size, letters=letters[:2]):
                    self.use(letters)
                    for number in ("1", "2"):
                        self.expect_notes(self.persist("set", f"A={number}"))
                    self.assertEqual({"A": "2"}, self.stored())
                    self.assertEqual([], [name for name in self.names() if ".lock" in name])

    @linux_only
    def test_a_link_to_a_file_that_is_not_there_yet(self):
        (self.folder / "elsewhere").mkdir()
        link = self.folder / STORE
        for target in (self.folder / "elsewhere/data.xml", "../../elsewhere/data.xml",
                       "acquisition_second.xml"):
            with self.subTest(target=str(target)):
                (link.parent / "acquisition_second.xml").unlink(missing_ok=True)
                (link.parent / "acquisition_second.xml").symlink_to("../../elsewhere/data.xml")
                link.symlink_to(target)
                self.expect_done(self.persist("set", "A=1"))
                self.assertTrue(link.is_symlink())
                self.assertIn("A", self.text_of("elsewhere/data.xml"))
                link.unlink()
                (self.folder / "elsewhere/data.xml").unlink()


@linux_only
@unittest.skipUnless(os.geteuid() == 0, "only root gives files away")
class RightsOfOthers(SharingCase):
    user = 12345

    def setUp(self):
        super().setUp()
        self.expect_done(self.persist("set", "A=1"))

    def mode_after(self, mode, prefix=()):
        os.chown(self.folder / STORE, self.user, self.user)
        (self.folder / STORE).chmod(mode)
        self.expect_done(self.persist("set", "B=1", prefix=prefix))
        return stat.S_IMODE((self.folder / STORE).stat().st_mode)

    def test_bits_that_lend_rights_do_not_go_over(self):
        for mode in (0o4755, 0o2755, 0o1755, 0o6770):
            self.assertEqual(mode & 0o777, self.mode_after(mode))

    def test_a_group_that_is_not_kept_gets_no_rights(self):
        without_chown = [shutil.which("setpriv") or "setpriv", "--bounding-set=-chown"]
        for mode, wanted in ((0o660, 0o600), (0o664, 0o644), (0o640, 0o600), (0o666, 0o666)):
            with self.subTest(mode=oct(mode)):
                self.assertEqual(wanted, self.mode_after(mode, prefix=without_chown))
