"""The checks of the documents notice what is wrong: each case breaks one thing in a small document.

SPDX-License-Identifier: MIT
"""

import os
import subprocess
import tempfile
import unittest
from pathlib import Path
from types import SimpleNamespace

import block_runner
import check_statuses
import markdown_page
import named_things
import page_links
import site_pages

SITE = Path(__file__).resolve().parents[3] / "scripts/site"
# Writes a page into the output folder, then ends with the code of the variable END.
DOXYGEN = """#!/bin/sh
folder=$(sed -n 's/^OUTPUT_DIRECTORY = "\\(.*\\)"$/\\1/p')
echo page >"$folder/index.html"
exit "$END"
"""
PROGRAM = """#!/bin/sh
case "$*" in
"report --help") printf 'Options:\\n  -o,--output FILE   x\\n  --set NAME  x\\n' ;;
*) printf 'Options:\\n  -h,--help  x\\n\\nSubcommands:\\n  report    x\\n' ;;
esac
"""


def block(language, text, *marks):
    return "".join(f"<!-- {mark} -->\n" for mark in marks) + f"```{language}\n{text}\n```\n\n"


class DocumentCase(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.root = Path(temporary.name)

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        return path

    def expect(self, part, found):
        self.assertTrue(any(part in text for text in found), f"{part!r} is not in {found}")


class Blocks(DocumentCase):
    def run_page(self, text):
        page = markdown_page.read_page(self.write("page.md", text))
        folder = self.root / "page/work"
        folder.mkdir(parents=True)
        includes = [self.root / "include"]
        for name in ("strata_repgenlib/rgen.h", "guarded_calls.h"):
            self.write(f"include/{name}", "")
        surroundings = SimpleNamespace(environment={"PATH": os.environ["PATH"]}, includes=includes,
                                       bindings=None, build_folder=self.root / "include")
        return block_runner.PageRunner(page, folder, surroundings).problems()

    def test_what_is_right_passes(self):
        self.assertEqual([], self.run_page(
            block("json", '{"a": 1}', "file: a.json")
            + block("sh", "export WORD=yes\nmkdir in && cd in && cat ../a.json")
            + block("text", '{"a": ...}', "output")
            + block("sh", 'echo "$WORD"; echo 2; echo 3; pwd | grep -c in$; exit 3', "exit code: 3")
            + block("text", "yes\n...\n1", "output")
            + block("python", "print(6 * 7)") + block("text", "42", "output")
            + block("xsl", '<xsl:value-of select="."/>')
            + block("c", "int f(void);")
            + block("c", "f(number);", "inside: void (*f)(int), int number")
            + block("sh", "cd .. && ls build/linux/guarded_calls.h", "build folder: build/linux")
            + block("bat", "dir", "not run: needs Windows")))

    def test_what_is_wrong_fails(self):
        for part, text in {
                "ends with 1": block("sh", "false"),
                "No such file": block("sh", "cat build/linux/none", "build folder: build/linux"),
                "ends with 0": block("sh", "true", "exit code: 1"),
                "ends with 127": block("sh", "no-such-program"),
                "ends with 2": block("sh", "true") + block("python", "raise SystemExit(2)"),
                "another one": block("sh", "echo a") + block("text", "b", "output"),
                "another one:\na\nb": block("sh", "echo a; echo b") + block("text", "a", "output"),
                "no run": block("text", "b", "output"),
                "no language": block("", "ls"),
                "needs a reason": block("sh", "ls", "not run"),
                "no mark ignore": block("sh", "ls", "ignore: why"),
                "nobody runs": block("text", "ls"),
                "is no json": block("json", "{a: 1}"),
                "is no ndjson": block("ndjson", '{"a": 1}\n{"b": }'),
                "is no xml": block("xml", "<a><b></a>"),
                "is no xsl": block("xsl", "<xsl:if>", "file: a.xsl"),
                "does not compile": block("c", "int f(void) { return g(); }"),
                "'x' undeclared": block("c", "x = 1;", "inside: int y"),
                "was not declared": block("cpp", "x = 1;", "inside: int y"),
                "in backticks goes on": "a `b\nc` d\n",
                "has no end": "```sh\nls\n"}.items():
            with self.subTest(part):
                self.setUp()
                self.expect(part, self.run_page(text))

    def test_the_place_is_named(self):
        self.expect("page.md:7: ends with 1", self.run_page("# A\n\n" + block("sh", "true")
                                                            + block("sh", "false")))


class Links(DocumentCase):
    def setUp(self):
        super().setUp()
        self.write("README.md", "# Top\n\n[b](docs/b.md#a-heading-of-code) [top](#top)\n")
        self.write("docs/b.md", "# B\n\n## A *heading* of `code`\n")
        self.write("docs/README.md", "[t](../README.md) [b](b.md)\n")

    def test_what_is_right_passes(self):
        self.assertEqual([], page_links.problems(self.root))

    def test_what_is_wrong_fails(self):
        for part, text in {"README.md:1: there is no docs/c.md": "[c](docs/c.md)",
                           "no heading for docs/b.md#nothing": "[b](docs/b.md#nothing)",
                           "known addresses": "[x](https://example.org/)",
                           "there is no ../x": "[x](../x)"}.items():
            with self.subTest(part):
                self.write("README.md", text)
                self.expect(part, page_links.problems(self.root))

    def test_the_map_names_every_page(self):
        self.write("docs/new.md", "# New\n")
        self.expect("names no docs/new.md", page_links.problems(self.root))
        (self.root / "docs/README.md").unlink()
        self.expect("docs/README.md is missing", page_links.problems(self.root))

    def test_links_in_code_are_none(self):
        self.write("README.md", "`[c](docs/c.md)`\n")
        self.assertEqual([], page_links.problems(self.root))


class Names(DocumentCase):
    def setUp(self):
        super().setUp()
        self.write("include/rgen.h", "int rgen_newThing(void);\n#define RGEN_E_BAD 1\n")
        program = self.write("rgen", PROGRAM)
        program.chmod(0o755)
        self.program = named_things.ProgramOptions(str(program), "rgen")

    def found(self, text, name="README.md"):
        self.write(name, text)
        return named_things.problems(self.root, named_things.KnownNames(self.root, self.program))

    def test_what_is_right_passes(self):
        self.assertEqual([], self.found(
            "`rgen_newThing`, `rgen_new...`, RGEN_E_BAD, `include/*.h`, "
            "`rgen report --set a -o b`, `docs/<name>.md`\n"
            + block("sh", "rgen report \\\n  --output x | tail --bytes 1")))

    def test_what_is_wrong_fails(self):
        for part, text in {"named rgen_oldThing": "`rgen_oldThing`",
                           "named rgen_old": "`rgen_old...`",
                           "named RGEN_E_GOOD": "RGEN_E_GOOD",
                           "README.md:2: nothing is named rgen_other": block("c", "rgen_other();"),
                           "no include/none.h": "`include/none.h`",
                           "no include/{rgen,none}.h": "`include/{rgen,none}.h`",
                           "no command check": "`rgen check`",
                           "rgen report has no option --sett": "`rgen report --sett a`",
                           "README.md:3: rgen report has no option -x":
                               block("sh", "ls\nrgen report -x")}.items():
            with self.subTest(part):
                self.expect(part, self.found(text))

    def test_options_that_stand_alone_are_looked_at_in_the_programs_own_page(self):
        self.expect("no option --nothing", self.found("`--nothing FILE`", "docs/rgen.md"))


class Site(DocumentCase):
    def found(self, text):
        self.write("index.html", '<div class="title">Top </div><h2 class="memtitle"><span>x</span>'
                                 f'f()</h2><a id="here"></a>{text}')
        return site_pages.problems(self.root, {"f"}, ["Top"])

    def test_what_is_right_passes(self):
        self.assertEqual([], self.found('<a href="#here">x</a><a href="index.html#here">x</a>'))

    def test_what_is_wrong_fails(self):
        for part, text in {"there is no none.html": '<a href="none.html">x</a>',
                           "there is no anchor": '<a href="index.html#there">x</a>',
                           "there is no a.png": '<img src="a.png">',
                           "loads": '<script src="//example.org/x.js"></script>',
                           "known addresses": '<a href="https://example.org/">x</a>',
                           "shows @section": "<p>@section x</p>"}.items():
            with self.subTest(part):
                self.expect(part, self.found(text))

    def test_code_must_be_shown_letter_by_letter(self):
        path = self.write("page.html", "<code>&#160;--a|b</code><p><code>–c</code>")
        self.assertEqual(["page.html: does not show --c"], list(
            site_pages.code_problems(path, ["--a\\|b", "--c", "f"], {"f"})))

    def test_functions_and_pages_must_be_there(self):
        self.found("")
        found = site_pages.problems(self.root, {"f", "g"}, ["Top", "Other"])
        self.assertEqual(["the site does not describe g", "the site has no page Other"], found)


class SiteFolder(DocumentCase):
    """What becomes of the folder that scripts/site is given; a stand-in writes the pages."""

    def setUp(self):
        super().setUp()
        self.write("bin/doxygen", DOXYGEN).chmod(0o755)
        self.folder = self.root / "top/site"

    def make(self, code, end=0):
        done = subprocess.run([SITE, self.folder], capture_output=True, text=True, env={
            "PATH": f"{self.root}/bin:{os.environ['PATH']}", "END": str(end)})
        self.assertEqual(code, done.returncode, done.stderr)
        self.assertEqual([self.folder] if self.folder.exists() else [],
                         list((self.root / "top").iterdir()))
        return done.stderr

    def names(self):
        return {path.name for path in self.folder.iterdir()}

    def test_foreign_files_stay(self):
        for name in ("letter.txt", ".hidden", "docs/letter.txt"):
            with self.subTest(name):
                self.setUp()
                letter = self.write(f"top/site/{name}", "mine")
                self.assertRegex(self.make(1), r"^site: .* holds other files.*\n$")
                self.assertEqual("mine", letter.read_text())
                self.assertEqual(1, len(self.names()))

    def test_a_file_stays(self):
        self.write("top/site", "mine")
        self.assertRegex(self.make(1), r"^site: .* is a file.*\n$")
        self.assertEqual("mine", self.folder.read_text())

    def test_new_and_empty_folders_get_a_site_and_sites_are_replaced(self):
        self.make(0)
        self.assertLess({"index.html", ".strata-site"}, self.names())
        self.write("top/site/old.html", "old")
        self.make(0)
        self.assertNotIn("old.html", self.names())
        for path in self.folder.iterdir():
            path.unlink()
        self.make(0)
        self.assertIn("index.html", self.names())

    def test_a_site_stays_when_a_new_one_cannot_be_made(self):
        self.write("top/site/.strata-site", "")
        self.write("top/site/index.html", "old")
        self.make(1, end=1)
        self.assertEqual("old", (self.folder / "index.html").read_text())


class Statuses(unittest.TestCase):
    def test_elements_and_commands_are_code(self):
        text = check_statuses.page_text([{
            "status": "0x1", "name": "N", "text": "T", "causes": ['No <type guid="..."> in a/<b>'],
            "next": 'Run "rgen types".'}])
        self.assertIn('- No `<type guid="...">` in `a/<b>`.\n\nNext: Run `rgen types`.\n', text)


if __name__ == "__main__":
    unittest.main()
