"""The base of relative links: the value of -b as the engine gets it in the page.

SPDX-License-Identifier: MIT
"""

import urllib.parse

from program_case import ON_WINDOWS, linux_only, native, search_path, windows_only
from staged_page import Tags
from vellum_case import PAGE, VELLUM, VellumCase


def address(path):
    """The URL of a folder, as every browser understands it."""
    text = "/" + native(path).replace("\\", "/") if ON_WINDOWS else native(path)
    return "file://" + urllib.parse.quote(text, safe="/:") + "/"


class BaseCase(VellumCase):

    def staged_base(self, base, **settings):
        self.expect_done(self.convert(base=base, **settings))
        found = Tags(self.log().page.decode("utf-8")).values("base", "href")
        self.assertEqual(1, len(found), found)
        return found[0]

    def expect_folder(self, path, base, **settings):
        """Some characters may or may not be percent-encoded."""
        found = self.staged_base(base, **settings)
        plain = urllib.parse.unquote(found.removeprefix("file://"))
        self.assertEqual(urllib.parse.unquote(address(path).removeprefix("file://")), plain)
        self.assertRegex(found, r"\Afile://[!-~]*/\Z")
        self.assertNotRegex(found, r"[ #?\"<>\\^`{|}]|%(?![0-9A-F]{2})")


class Folders(BaseCase):

    def test_blank_means_the_folder_of_the_page(self):
        self.expect_folder(self.folder, "")
        self.assertTrue(self.staged_base("").startswith("file:///"))

    def test_the_folder_of_a_page_elsewhere(self):
        self.write("Отчёт ß/page.html", PAGE)
        self.expect_done(self.vellum("-i", "Отчёт ß/page.html", "-b", "", "-o", "report.pdf"))
        found = Tags(self.log().page.decode("utf-8")).values("base", "href")
        self.assertEqual([address(self.folder / "Отчёт ß")], found)

    def test_relative_folders(self):
        (self.folder / "sub").mkdir()
        self.expect_folder(self.folder / "sub", "sub")
        self.expect_folder(self.folder / "sub", "sub/")
        self.expect_folder(self.folder / "sub", "./x/../sub")
        self.expect_folder(self.folder, ".")
        self.expect_folder(self.folder.parent, "..")

    def test_absolute_folders(self):
        self.expect_folder(self.folder / "sub", native(self.folder / "sub"))
        self.expect_folder(self.folder / "sub", native(self.folder / "sub") + "/")

    def test_signs_in_names(self):
        for name in ("Größe и слово", "a b", "a#b", "100%", "%41", "a&amp;b", "a'b", "a+b;c=d",
                     "a,b@c!d(e)", "[x]", "~a"):
            with self.subTest(name=name):
                self.expect_folder(self.folder / name, name)

    @linux_only
    def test_signs_that_only_linux_takes_in_names(self):
        for name in ('a"b', "a?b", "a\\b", "<b>", "a|b*c"):
            with self.subTest(name=name):
                self.expect_folder(self.folder / name, native(self.folder / name))

    @windows_only
    def test_backslashes(self):
        self.expect_folder(self.folder / "a/b", "a\\b")
        self.expect_folder(self.folder / "a/b", native(self.folder) + "\\a/b\\")

    @windows_only
    def test_drives(self):
        self.assertEqual("file:///C:/", self.staged_base("C:\\"))
        self.assertEqual("file:///C:/Daten/x%20y/", self.staged_base("C:\\Daten\\x y"))

    @windows_only
    def test_network_folders(self):
        for base in ("\\\\server\\share\\a b", "\\\\server\\share\\a b\\", "//server/share/a b/"):
            with self.subTest(base=base):
                self.assertEqual("file://server/share/a%20b/", self.staged_base(base))


class Addresses(BaseCase):

    def test_they_stay_as_they_are(self):
        for base in ("https://base.invalid/a/", "http://base.invalid:8080/a%20b/c?d=e&f#g",
                     "file:///a/b/", "HTTPS://BASE.INVALID", "https://base.invalid/größe/a b/"):
            with self.subTest(base=base):
                self.assertEqual(base, self.staged_base(base))


@windows_only
class LiteralCommandLine(BaseCase):
    """A batch file starts vellum with exactly the command line that the library uses."""

    def run_line(self, line):
        self.write("page.html", PAGE)
        self.write("run.bat", f"@{line}\r\n@exit /b %errorlevel%\r\n")
        return self.start("/c", "run.bat", program="cmd", env=search_path(VELLUM.parent)).finish()

    def expect_base(self, wanted, given):
        result = self.run_line(f'vellum -i "page.html" -b "{given}" -t html -o "report.pdf"')
        self.assertEqual((0, ""), (result.code, result.err), result)
        found = Tags(self.log().page.decode("utf-8")).values("base", "href")
        self.assertEqual([wanted], found)
        self.expect_pdf()

    def test_a_backslash_at_the_end(self):
        self.expect_base("file:///C:/a%20b/", "C:\\a b\\")
        self.expect_base(address(self.folder / "sub"), "sub\\")
        self.expect_base("file://server/share/", "\\\\server\\share\\")

    def test_everything_else(self):
        self.expect_base(address(self.folder), "")
        self.expect_base("https://base.invalid/a b/", "https://base.invalid/a b/")

    def test_other_lines_are_taken_apart_as_usual(self):
        result = self.run_line('vellum -o "report.pdf" -b "C:\\a b\\\\" -i page.html')
        self.assertEqual((0, ""), (result.code, result.err), result)
        found = Tags(self.log().page.decode("utf-8")).values("base", "href")
        self.assertEqual(["file:///C:/a%20b/"], found)
