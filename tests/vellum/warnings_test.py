"""Warnings: missing files and characters without a font.

SPDX-License-Identifier: MIT
"""

import re
import shutil
import unittest

from program_case import linux_only, native, search_path
from vellum_case import VellumCase, path_here


class MissingFiles(VellumCase):

    def warnings_of(self, body, **settings):
        """The links and files in the warnings for a page with this body."""
        result = self.convert(page=f"<!doctype html><html><body>{body}", **settings)
        self.assertEqual((0, []), (result.code, result.messages), result)
        self.expect_pdf()
        pattern = r'"(.*)" does not exist \(looked for "(.*)"\)'
        rows = [re.fullmatch(pattern, line) for line in result.warnings]
        self.assertTrue(all(rows), result)
        return [(row.group(1), path_here(row.group(2))) for row in rows]

    def test_the_words(self):
        result = self.convert(page='<!doctype html><img src="logo.png">')
        looked_for = native(self.folder / "logo.png")
        self.expect_done(result, f'"logo.png" does not exist (looked for "{looked_for}")')

    def test_images_and_styles(self):
        rows = self.warnings_of('<link rel="stylesheet" href="a/style.css"><IMG SRC=Größe.png>')
        self.assertEqual([("a/style.css", self.folder / "a/style.css"),
                          ("Größe.png", self.folder / "Größe.png")], rows)

    def test_they_count_from_the_base(self):
        (self.folder / "sub").mkdir()
        self.assertEqual([("a.png", self.folder / "sub/a.png")],
                         self.warnings_of('<img src="a.png">', base="sub"))
        self.assertEqual([("../a.png", self.folder / "a.png")],
                         self.warnings_of('<img src="../a.png">', base="sub"))

    def test_files_that_are_there(self):
        self.write("bild ß#1.png", b"x")
        self.write("style.css", "p{}")
        self.assertEqual([], self.warnings_of(
            '<link rel="stylesheet" href="style.css?v=1"><img src="bild%20%C3%9F%231.png">'
            '<img src="./style.css#x"><img src=" style.css ">'))

    def test_addresses_of_other_kinds(self):
        self.assertEqual([], self.warnings_of(
            '<img src="data:image/png;base64,AAAA"><img src="https://base.invalid/a.png">'
            '<img src="//base.invalid/a.png"><a href="#x">x</a><a href="mailto:a@b.invalid">x</a>'
            '<img><img src=""><img src="cid:1">'))

    def test_nothing_is_looked_for_below_an_address(self):
        self.assertEqual([], self.warnings_of('<img src="a.png">', base="https://base.invalid/"))

    def test_each_is_named_once(self):
        self.assertEqual(["a.png", "b.png"], [link for link, _ in self.warnings_of(
            '<img src="a.png"><img src="b.png"><img src="a.png">')])

    def test_in_comments_there_are_none(self):
        self.assertEqual([], self.warnings_of('<!-- <img src="a.png"> -->'))

    def test_they_come_with_errors_as_well(self):
        result = self.convert(page='<img src="a.png">', does="nothing")
        self.assertEqual((5, 1, 1), (result.code, len(result.warnings), len(result.messages)))
        self.assertEqual(result.messages[0] + "\n", self.error_text())


class MissingCharacters(VellumCase):
    """With the fonts of this machine, which do not have the tested characters."""

    def setUp(self):
        super().setUp()
        program = shutil.which("fc-list")
        if program is None:
            raise unittest.SkipTest("fontconfig's fc-list is not installed")
        self.tools = self.base_folder / "tools"
        self.tools.mkdir()
        (self.tools / "fc-list").symlink_to(program)

    def environment(self, changes=None):
        return super().environment({**search_path(self.tools), **(changes or {})})

    @linux_only
    def test_one_character(self):
        self.expect_done(self.convert(page="<!doctype html><p>a \ue123 b"),
                         "no installed font has U+E123")

    @linux_only
    def test_several_characters(self):
        result = self.convert(page="<!doctype html><p>\ue124 \ue123 \U0010fffd \ue123")
        self.expect_done(result, "no installed font has U+E123, U+E124, U+10FFFD")

    @linux_only
    def test_characters_that_need_no_font(self):
        self.expect_done(self.convert(
            page="\ufeff<!doctype html><p>a\xa0b\xadc\u2003d\u200be\u202ff\u2028g\ufe0fh"))

    @linux_only
    def test_ordinary_letters(self):
        self.expect_done(self.convert(page="<!doctype html><p>Größe € „слово“ – ½"))

    @linux_only
    def test_without_the_list(self):
        self.expect_done(self.convert(page="<!doctype html><p>\ue123",
                                      env=search_path(self.folder / "no")))

    @linux_only
    def test_a_list_that_fails(self):
        (self.tools / "fc-list").unlink()
        (self.tools / "fc-list").symlink_to(shutil.which("false"))
        self.expect_done(self.convert(page="<!doctype html><p>\ue123"))

    @linux_only
    def test_a_list_that_hangs_stops_nothing(self):
        (self.tools / "fc-list").unlink()
        program = self.tools / "fc-list"
        program.write_text(f"#!/bin/sh\nexec {shutil.which('tail')} -f /dev/null\n")
        program.chmod(0o755)
        self.expect_done(self.convert(page="<!doctype html><p>\ue123"))
        self.expect_no_processes()
