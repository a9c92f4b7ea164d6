"""rgen bundle: a template and its parts as one file, and messages that name the parts.

SPDX-License-Identifier: MIT
"""

import shutil
from xml.etree import ElementTree

from cli_case import SOURCE_FOLDER, CliCase
from cli_templates import catalogue

XSLT = 'xmlns:xsl="http://www.w3.org/1999/XSL/Transform"'
OUTPUT = "case/.rgen/templates/txt/acquisition.xsl"
FIRST_OF_MARKS = "<?rgen-bundle "


def part(body, attributes=""):
    return (f'<?xml version="1.0"?>\n<xsl:stylesheet version="1.0" {XSLT}{attributes}>\n'
            f"{body}\n</xsl:stylesheet>\n")


def include(name):
    return f'<xsl:include href="{name}"/>'


def named(name, body="x"):
    return f'<xsl:template name="{name}">{body}</xsl:template>'


SOURCE = part('<xsl:output method="text"/>\n' + include("parts/a.xsl")
              + '\n<xsl:template match="/"><xsl:call-template name="a"/></xsl:template>')


class BundleCase(CliCase):

    def setUp(self):
        super().setUp()
        shutil.rmtree(self.folder / "case/.rgen/templates")
        (self.folder / "case/.rgen/templates/txt").mkdir(parents=True)
        self.write("src/main.xsl", SOURCE)
        self.write("src/parts/a.xsl", part(named("a", "from a part")))

    def bundle(self, *args, **settings):
        return self.rgen("bundle", *(args or ("src/main.xsl", "-o", OUTPUT)), **settings)

    def bundled(self):
        result = self.bundle()
        self.assertEqual(0, result.code, result)
        return self.text_of(OUTPUT)

    def made(self):
        """The text of a report of the bundle."""
        result = self.report("--set", "A=1")
        self.expect_done(result)
        return self.text_of("report.txt")

    def findings(self, *args):
        """The lines of the findings."""
        result = self.bundle(*args)
        self.assertEqual(3, result.code, result)
        return [line for line in result.text.splitlines() if ": error: " in line]


class Making(BundleCase):

    def test_the_file_is_a_template_that_names_its_parts(self):
        text = self.bundled()
        ElementTree.fromstring(text)
        lines = text.splitlines()
        self.assertEqual('<?xml version="1.0"?>', lines[0])
        self.assertRegex(lines[1], r'^<\?rgen-bundle source="\.\./\.\./\.\./\.\./src/main\.xsl" '
                                   r'sum="[0-9a-f]{16}"\?>$')
        where = lines.index('<?rgen-part file="../../../../src/parts/a.xsl" line="3"?>')
        self.assertEqual(named("a", "from a part"), lines[where + 1])
        self.assertNotIn("xsl:include", text)
        self.assertEqual("from a part", self.made())

    def test_the_same_files_make_the_same_bytes(self):
        before = self.bundled()
        (self.folder / OUTPUT).unlink()
        self.assertEqual(before, self.bundled())

    def test_what_is_said(self):
        result = self.bundle()
        self.assertEqual((0, b"", [f'rgen: "{OUTPUT}": 2 files']),
                         (result.code, result.out, result.messages))
        self.assertEqual([f'rgen: "{OUTPUT}" is up to date: 2 files'], self.bundle().messages)
        document = self.bundle("src/main.xsl", "-o", OUTPUT, "--json").document
        self.assertEqual([{"output": OUTPUT, "state": "unchanged", "findings": [],
                           "files": ["src/main.xsl", "src/parts/a.xsl"]}], document["bundles"])

    def test_standard_output(self):
        result = self.bundle("src/main.xsl", "-o", "-")
        self.assertEqual(0, result.code)
        self.assertIn('<?rgen-part file="src/parts/a.xsl" line="3"?>', result.text)

    def test_parts_of_parts_and_parts_that_several_files_include(self):
        self.write("src/parts/a.xsl", part(include("deep/b.xsl") + named("a", "a<xsl:call-template name='b'/>")
                                           + include("c.xsl")))
        self.write("src/parts/deep/b.xsl", part(include("../c.xsl") + named(
            "b", "b<xsl:call-template name='c'/>")))
        self.write("src/parts/c.xsl", part(named("c", "c")))
        self.assertEqual(1, self.bundled().count('name="c"'))
        self.assertEqual("abc", self.made())

    def test_other_folders_with_parts(self):
        (self.folder / "library").mkdir()
        (self.folder / "src/parts/a.xsl").rename(self.folder / "library/a.xsl")
        self.write("src/main.xsl", SOURCE.replace("parts/a.xsl", "a.xsl"))
        result = self.bundle("src/main.xsl", "-o", OUTPUT, "--parts", "nothing", "--parts", "library")
        self.expect_done(result)
        self.assertEqual("from a part", self.made())
        self.expect_done(self.bundle("-d", "case", "--check"))

    def test_prefixes_of_parts(self):
        self.write("src/parts/a.xsl", part(
            named("a", "<xsl:variable name='v'>x</xsl:variable>"
                       "<xsl:value-of select='count(l:node-set($v))'/>"),
            ' xmlns:l="http://xmlsoft.org/XSLT/namespace" exclude-result-prefixes="l"'))
        self.assertIn('exclude-result-prefixes="l"', self.bundled())
        self.assertEqual("1", self.made())

    def test_markers_stay(self):
        self.write("src/parts/a.xsl", part(named("a", 'QT_TRANSLATE_NOOP("QObject", "Größe")')))
        self.write("case/.rgen/translations/de.po", catalogue({"Größe": "Size"}))
        self.bundled()
        self.assertEqual("Größe", self.made())
        self.expect_done(self.report("--set", "A=1", "--lang", "de"))
        self.assertEqual("Size", self.text_of("report.txt"))
        places = self.rgen("messages", "-d", "case", "--json").document["texts"][0]["places"]
        self.assertEqual(["../../src/parts/a.xsl:3"], places)

    def test_windows_line_ends_and_a_byte_order_mark(self):
        self.write("src/main.xsl", ("\ufeff" + SOURCE).replace("\n", "\r\n"))
        self.bundled()
        self.assertEqual("from a part", self.made())
        self.expect_done(self.bundle("src/main.xsl", "-o", OUTPUT, "--check"))

    def test_names_with_blanks_and_letters_of_all_kinds(self):
        self.write("Größe & слово/теил 1.xsl", part(named("a", "x")))
        self.write("Größe & слово/main.xsl", SOURCE.replace("parts/a.xsl", "теил 1.xsl"))
        self.expect_done(self.bundle("Größe & слово/main.xsl", "-o", OUTPUT))
        self.expect_done(self.bundle("-d", "case", "--check"))
        self.assertEqual("x", self.made())


class Mistakes(BundleCase):

    def expect_finding(self, finding):
        self.assertEqual([finding], self.findings())
        self.assertFalse((self.folder / OUTPUT).exists())

    def test_a_part_that_does_not_exist(self):
        self.write("src/main.xsl", SOURCE.replace("a.xsl", "aa.xsl"))
        self.expect_finding('src/main.xsl:4:20: error: there is no part "parts/aa.xsl"; '
                            'did you mean "a.xsl"?')

    def test_a_part_that_is_not_well_formed(self):
        self.write("src/parts/a.xsl", part("<xsl:template name='a'><b></xsl:template>"))
        self.expect_finding('src/parts/a.xsl:3:27: error: "b" (line 3) is not closed before '
                            '</xsl:template>; what follows was repaired or lost')

    def test_a_part_that_is_no_stylesheet(self):
        self.write("src/parts/a.xsl", "<p/>")
        self.expect_finding("src/parts/a.xsl:1:1: error: this is not a stylesheet; put the templates "
                            "into an xsl:stylesheet")

    def test_one_name_in_two_files(self):
        for body, name in ((named("a"), 'template "a"'),
                           ('<xsl:template match="/">x</xsl:template>', 'template for "/"'),
                           ('<xsl:variable name="v"/>', 'variable "v"'),
                           ('<xsl:key name="k" match="b" use="@c"/>', 'key "k"'),
                           ('<xsl:output method="html"/>', "xsl:output")):
            with self.subTest(name=name):
                self.write("src/main.xsl", part(
                    named("a") + '<xsl:variable name="v"/><xsl:key name="k" match="b" use="@b"/>'
                    '<xsl:output method="text"/><xsl:template match="/"/>\n' + include("parts/a.xsl")))
                self.write("src/parts/a.xsl", part(body))
                self.assertRegex(self.findings()[0],
                                 rf"^src/parts/a\.xsl:3:2: error: {name} exists in "
                                 r"src/main\.xsl:3:\d+, too; rename or remove one of them$")

    def test_keys_that_are_equal_may_be_repeated(self):
        key = '<xsl:key name="k" match="b" use="@c"/>'
        self.write("src/main.xsl", SOURCE.replace(include("parts/a.xsl"), key + include("parts/a.xsl")))
        self.write("src/parts/a.xsl", part(key + named("a", "x")))
        self.bundled()
        self.assertEqual("x", self.made())

    def test_parts_that_include_themselves(self):
        self.write("src/parts/a.xsl", part(include("b.xsl")))
        self.write("src/parts/b.xsl", part(include("a.xsl")))
        self.expect_finding('src/parts/b.xsl:3:2: error: "src/parts/a.xsl" includes itself: '
                            "a.xsl -> b.xsl -> a.xsl; remove one of these xsl:include elements")

    def test_import_and_misplaced_include(self):
        self.write("src/parts/a.xsl", part('<xsl:import href="b.xsl"/>'))
        self.expect_finding("src/parts/a.xsl:3:2: error: xsl:import cannot be bundled; write "
                            "xsl:include, and rename what both files have")
        self.write("src/parts/a.xsl", part(named("a", include("b.xsl"))))
        self.expect_finding("src/parts/a.xsl:3:25: error: xsl:include inside of a template; move it "
                            "to the children of the root element")

    def test_prefixes_with_two_meanings(self):
        self.write("src/main.xsl", part(include("parts/a.xsl"), ' xmlns:a="urn:1"'))
        self.write("src/parts/a.xsl", part(named("a"), ' xmlns:a="urn:2"'))
        self.assertIn('"xmlns:a" is another namespace than in the other files; use another prefix here',
                      self.findings()[0])

    def test_a_bundle_as_a_part(self):
        self.bundled()
        self.write("src/two.xsl", SOURCE.replace("parts/a.xsl", "../" + OUTPUT))
        self.assertEqual([f'{OUTPUT}:1:1: error: "rgen bundle" made this file; include the files that '
                          "it was made from"], self.findings("src/two.xsl", "-o", "two.xsl"))

    def test_a_file_that_was_not_bundled_is_not_replaced(self):
        self.write(OUTPUT, part(named("kept")))
        before = self.contents()
        self.expect_error(self.bundle(), 2,
                          f'rgen bundle: "{OUTPUT}" was not made by "rgen bundle"; remove it, or '
                          "choose another --output")
        self.assertEqual(before, self.contents())

    def test_arguments(self):
        for args in (["src/main.xsl"], ["-o", "x.xsl"], ["src/main.xsl", "-o", "-", "--json"],
                     ["src/main.xsl", "-o", "-", "--check"], ["-d", "case"]):
            with self.subTest(args=args):
                self.assertEqual(2, self.bundle(*args).code)


class Renewal(BundleCase):

    def test_all_bundles_of_a_data_directory(self):
        self.bundled()
        self.write("src/parts/a.xsl", part(named("a", "new")))
        result = self.bundle("-d", "case")
        self.assertEqual([f'rgen: "{OUTPUT}": 2 files'], result.messages)
        self.assertEqual("new", self.made())

    def test_the_check_of_bundles(self):
        check = ["-d", "case", "--check"]
        self.bundled()
        self.expect_done(self.bundle(*check))
        self.write("src/parts/a.xsl", part(named("a", "new")))
        before = self.contents()
        result = self.bundle(*check)
        self.assertEqual((3, [f'rgen: "{OUTPUT}" is older than "src/main.xsl" or a part of it; run '
                              '"rgen bundle" without --check']), (result.code, result.messages))
        self.assertEqual(before, self.contents())
        (self.folder / OUTPUT).unlink()
        self.assertEqual(3, self.bundle("src/main.xsl", "-o", OUTPUT, "--check").code)

    def test_a_file_that_was_edited_by_hand(self):
        self.write(OUTPUT, self.bundled().replace("from a part", "by hand"))
        before = self.contents()
        for args in ([], ["-d", "case"], ["-d", "case", "--check"]):
            result = self.bundle(*args)
            self.assertEqual((3, [f'rgen: "{OUTPUT}" was edited by hand after it was bundled; move the '
                                  'changes to "src/main.xsl" or its parts and remove the file']),
                             (result.code, result.messages))
        self.assertEqual(before, self.contents())

    def test_other_line_ends_are_no_edit(self):
        self.write(OUTPUT, self.bundled().replace("\n", "\r\n"))
        self.expect_done(self.bundle("-d", "case", "--check"))
        self.write("src/parts/a.xsl", part(named("a", "new")))
        self.expect_done(self.bundle("-d", "case"))
        self.assertEqual("new", self.made())


class PlacesInMessages(BundleCase):
    """"rgen check" names the file and the line that an author edits."""

    def checked(self):
        document = self.rgen("check", "-d", "case", "--json").document
        return [(row["file"], row["line"], row["column"]) for row in document["findings"]
                if row["severity"] == "error"]

    def test_a_mistake_in_a_part(self):
        self.write("src/parts/a.xsl", part("<!-- 1\n2 -->" + named("a", "\n  <xsl:value-off/>")))
        self.bundled()
        self.assertEqual([("src/parts/a.xsl", 5, 3)], self.checked())
        lines = self.rgen("check", "-d", "case").text.splitlines()
        self.assertEqual("      <xsl:value-off/></xsl:template>", lines[1])

    def test_mistakes_around_the_parts_in_one_line(self):
        self.write("src/main.xsl", part(
            '<xsl:output method="text"/><xsl:foo/>' + include("parts/a.xsl")
            + "<xsl:bar/><xsl:template match='/'>x</xsl:template>"))
        self.bundled()
        self.assertEqual([("src/main.xsl", 3, 28), ("src/main.xsl", 3, 38 + len(include("parts/a.xsl")))],
                         self.checked())

    def test_a_part_that_changed_since_then(self):
        """The line of the part would be another one."""
        self.write("src/parts/a.xsl", part(named("a", "<xsl:value-off/>")))
        self.bundled()
        self.write("src/parts/a.xsl", part(named("a", "x")))
        self.assertEqual(OUTPUT, self.checked()[0][0])

    def test_a_data_directory_without_the_sources(self):
        self.write("src/parts/a.xsl", part(named("a", "<xsl:value-off/>")))
        self.bundled()
        shutil.rmtree(self.folder / "src")
        self.assertEqual(OUTPUT, self.checked()[0][0])


class LibraryOfParts(BundleCase):
    """templates/parts."""

    body = ('<xsl:output method="xml" omit-xml-declaration="yes"/><xsl:include href="bar-chart.xsl"/>'
            '<xsl:include href="list-table.xsl"/><xsl:include href="hex-dump.xsl"/>'
            '<xsl:template match="/"><r>%s</r></xsl:template>')
    values = ["--set", "Disk.1.Name=Alpha & Ω", "--set", "Disk.1.Used=50", "--set", "Disk.10.Name=C",
              "--set", "Disk.2.Name=Beta", "--set", "Disk.2.Used=200", "--set", "Other.1.Used=900"]

    def page(self, call, *values):
        self.write("src/main.xsl", part(self.body % call))
        result = self.bundle("src/main.xsl", "-o", OUTPUT, "--parts",
                             SOURCE_FOLDER / "templates/parts")
        self.expect_done(result)
        result = self.report(*values)
        self.expect_done(result)
        return ElementTree.fromstring(self.text_of("report.txt"))

    @staticmethod
    def call(name, *params):
        return f'<xsl:call-template name="{name}">' + "".join(
            f'<xsl:with-param name="{key}" select="{value}"/>' for key, value in params) \
            + "</xsl:call-template>"

    def test_the_parts_have_no_mistakes(self):
        self.page(self.call("bar-chart", ("list", "'Disk'"))
                  + self.call("list-table", ("list", "'Disk'"), ("columns", "'Name=Disk'"))
                  + self.call("hex-dump", ("bytes", "'01'")), *self.values)
        result = self.rgen("check", "-d", "case", "--strict")
        self.assertEqual((0, b""), (result.code, result.out), result)

    def test_a_bar_chart(self):
        call = self.call("bar-chart", ("list", "'Disk'"), ("value", "'Used'"), ("unit", "' GB'"),
                         ("title", "'Used space'"))
        picture = self.page(call, *self.values).find("svg")
        self.assertEqual("Used space", picture.find("title").text)
        self.assertEqual(["95.0", "380.0"], [bar.get("width") for bar in picture.iter("rect")])
        self.assertEqual(["Alpha & Ω", "50 GB", "Beta", "200 GB"],
                         [text.text for text in picture.iter("text")])
        self.assertIsNone(self.page(call, "--set", "A=1").find("svg"))

    def test_bars_of_no_length(self):
        picture = self.page(self.call("bar-chart", ("list", "'A'"), ("value", "'V'")),
                            "--set", "A.1.V=0", "--set", "A.2.V=x", "--set", "A.3.V=-1").find("svg")
        self.assertEqual(["0"], [bar.get("width") for bar in picture.iter("rect")])

    def test_a_table_of_a_list(self):
        call = self.call("list-table", ("list", "'Disk'"), ("columns", "'Name=Disk|Used=Used space'"))
        table = self.page(call, *self.values).find("table")
        self.assertEqual([["Disk", "Used space"], ["Alpha & Ω", "50"], ["Beta", "200"], ["C", None]],
                         [[cell.text for cell in row] for row in table.iter("tr")])
        self.assertEqual(["col", "col", "row", "row", "row"],
                         [cell.get("scope") for cell in table.iter("th")])
        self.assertIsNone(self.page(call, "--set", "A=1").find("table"))

    def test_a_hex_dump(self):
        call = self.call("hex-dump", ("bytes", "//property[@name = 'B']"))
        text = bytes(range(0x1C, 0x30)) + b"AZaz~\x7f\xff"
        table = self.page(call, "--set", "B:bytes=" + text.hex()).find("table")
        self.assertEqual([["00000000", text[:16].hex(" ").upper(), '.... !"#$%&\'()*+'],
                          ["00000010", text[16:].hex(" ").upper(), ",-./AZaz~.."]],
                         [[cell.text for cell in row] for row in table.iter("tr")])
        self.assertIsNone(self.page(call, "--set", "A=1").find("table"))

    def test_a_long_hex_dump(self):
        call = self.call("hex-dump", ("bytes", "//property[@name = 'B']"))
        self.write("dump.bin", bytes(65536))
        rows = list(self.page(call, "--set", "B:bytes=@dump.bin").iter("tr"))
        self.assertEqual((4096, "0000FFF0"), (len(rows), rows[-1].find("th").text))
