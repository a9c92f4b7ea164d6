"""Rights of persistent data: those that a replaced file keeps, and folders without access.

SPDX-License-Identifier: MIT
"""

import os
import stat
import unittest

from cli_case import linux_only, unprivileged
from cli_templates import GUID
from persist_sharing_test import OLD, STORE, SharingCase


class RightsOfTheFile(SharingCase):
    commands = (("set", "B=1"), ("unset", "B"), ("replace", "C=1"))

    def mode(self):
        return stat.S_IMODE((self.folder / STORE).stat().st_mode)

    @linux_only
    def test_the_mode_stays(self):
        self.expect_done(self.persist("set", "A=1"))
        for mode in (0o600, 0o640, 0o664, 0o400, 0o604):
            for command in self.commands:
                with self.subTest(mode=oct(mode), command=command):
                    (self.folder / STORE).chmod(mode)
                    self.expect_done(self.persist(*command))
                    self.assertEqual(mode, self.mode())

    @linux_only
    def test_a_new_file_follows_the_mask(self):
        for mask in (0o022, 0o077, 0o027):
            with self.subTest(mask=oct(mask)):
                (self.folder / STORE).unlink(missing_ok=True)
                old = os.umask(mask)
                try:
                    self.expect_done(self.persist("set", "A=1"))
                finally:
                    os.umask(old)
                self.assertEqual(0o666 & ~mask, self.mode())

    @linux_only
    @unittest.skipUnless(os.geteuid() == 0, "only root gives files away")
    def test_the_owner_stays(self):
        self.expect_done(self.persist("set", "A=1"))
        os.chown(self.folder / STORE, 12345, 23456)
        for command in self.commands:
            self.expect_done(self.persist(*command))
            facts = (self.folder / STORE).stat()
            self.assertEqual((12345, 23456), (facts.st_uid, facts.st_gid))

    @linux_only
    def test_a_link_stays(self):
        self.write("elsewhere/data.xml", OLD)
        (self.folder / STORE).symlink_to(self.folder / "elsewhere/data.xml")
        self.expect_done(self.persist("set", "B=1"))
        self.assertTrue((self.folder / STORE).is_symlink())
        self.assertIn("B", self.text_of("elsewhere/data.xml"))
        self.assertEqual(["elsewhere/data.xml"],
                         [name for name in self.names() if name.startswith("elsewhere/")])

    @linux_only
    def test_a_file_that_is_no_ordinary_one(self):
        os.mkfifo(self.folder / STORE)
        for command in (("set", "A=1"), ("replace", "A=1")):
            self.expect_error_like(self.persist(*command), 5,
                                   f'^rgen: "{STORE}" is no ordinary file; ')


@linux_only
class MissingRights(SharingCase):

    def commands(self):
        data = ("-d", "case")
        return {"types": ("types", *data), "get": ("persist", "get", *data),
                "set": ("persist", "set", *data, "A=1"),
                "report": ("report", *data, "-o", "r.txt", "--set", "A=1"),
                "doctor": ("doctor", *data)}

    def expect_no_access(self, place, patterns):
        self.forbid(place)
        for name, arguments in self.commands().items():
            for given in ((), ("-t", GUID)):
                if given and name in ("types", "doctor"):
                    continue
                with self.subTest(place=place, command=name, given=given):
                    result = self.rgen(*arguments, *given, prefix=unprivileged())
                    self.assertEqual(5, result.code, result)
                    self.assertRegex(result.err + result.text, patterns)
                    self.assertNotIn("rgen init", result.err + result.text)

    def test_a_data_directory_without_rights(self):
        self.expect_no_access(
            "case/.rgen", 'cannot look at "case/.rgen/config.xml": Permission denied; check the '
            "rights of it and of the folders that it is in")

    def test_a_folder_around_it_without_rights(self):
        self.expect_no_access("case", 'cannot look at "case/.rgen/config.xml": Permission denied')

    def test_a_configuration_without_rights(self):
        self.expect_no_access("case/.rgen/config.xml",
                              'cannot read "case/.rgen/config.xml": Permission denied')

    def test_persistent_data_in_a_folder_without_rights(self):
        self.make_data_dir("case", types=[("acquisition.xsl", GUID, "locked/data.xml")])
        self.write("case/.rgen/locked/data.xml", OLD)
        self.forbid("case/.rgen/locked")
        for command in (("get",), ("set", "B=1"), ("replace", "B=1")):
            self.expect_error_like(self.persist(*command, prefix=unprivileged()), 5,
                                   '^rgen: cannot look at "case/.rgen/locked/data.xml": Permission')
