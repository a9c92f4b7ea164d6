"""Names and texts of persistent data, whatever characters they hold: each is read back as it was set,
or as a note or an error says, and no other value is harmed by it.

SPDX-License-Identifier: MIT
"""

import random
import xml.etree.ElementTree as ElementTree

from cli_case import PersistCase, linux_only

STORE = "case/.rgen/acquisition_data.xml"
OTHERS = {"a": "x < y &amp; z > w", "b": "AT&T", "c": "]]> <b>&lt;</b>", "d": "&#8364;", "Ж": "Größe"}
BLANKS = " \t\n\v\f\r"
# The parts of random texts: everything that XML, the library or a shell treats specially.
PIECES = ["&", ";", "#", "x", "D800", "8364", "0", "1", "foo", "f oo", "&foo;", "&#xD800;", "&#0;",
          "&f oo;", "&amp;", "&amp;amp;", "&lt;", "&#38;", "&#x26;", "&#1;", "&#xFFFE;", "<", ">",
          "<b>", "</property>", "]]>", "<![CDATA[", "<!--", "-->", "<?x", "'", '"', "=", "%20", "@",
          "\\", "\n", "\r", "\r\n", "\t", " ", "a", "ß", "Ж", "速", "\u0085", "\u009b", "\u2028",
          "\ufffd", "\ufeff", "\ud7ff", "\ue000", "\U0001f600", "\U0010ffff", "\x01", "\x07", "\x08",
          "\v", "\f", "\x1b", "\x1f", "\x7f", "\ufffe", "\uffff"]


def is_fit(letter):
    """Whether XML allows the character."""
    return ord(letter) not in (0xFFFE, 0xFFFF) and (letter in "\t\n\r" or letter >= " ")


def kept(text):
    """The stored form of a text."""
    return "".join(letter if is_fit(letter) else "\ufffd" for letter in text)


def kept_name(name):
    return kept(name.strip(BLANKS))


class TextCase(PersistCase):

    def set_values(self, values, *args):
        self.write_json("data.json", {f"{name}:text": text for name, text in values.items()})
        return self.persist("set", "--data", "data.json", *args)

    def expect_whole(self, values):
        """The file is XML, and library and rgen read the same values."""
        ElementTree.parse(self.folder / STORE)
        self.assertEqual(values, self.stored())
        report = self.values("--set", "Z=1")
        del report["Z"]
        self.assertEqual({name: text.replace("\r\n", "\n").replace("\r", "\n")
                          for name, text in values.items()},
                         {name: text.replace("\r\n", "\n").replace("\r", "\n")
                          for name, text in report.items()})


class TextsByChance(TextCase):
    rounds = 6
    number = 40

    def test_texts(self):
        """A fixed seed: every run sees the same texts."""
        chance = random.Random(4711)
        for _ in range(self.rounds):
            texts = {f"N{number:02}": "".join(chance.choices(PIECES, k=chance.randint(1, 8)))
                     for number in range(self.number)}
            texts = {name: text for name, text in texts.items() if kept(text)}
            self.expect_done(self.set_values({**OTHERS, **texts}))
            self.assertEqual({**OTHERS, **{name: kept(text) for name, text in texts.items()}},
                             self.stored())
            self.expect_done(self.persist("set", "Last=AT&T"))
            values = {**OTHERS, **{name: kept(text) for name, text in texts.items()},
                      "Last": "AT&T"}
            ElementTree.parse(self.folder / STORE)
            self.assertEqual(values, self.stored())
            self.expect_done(self.persist("unset", *texts, "Last"))
            self.assertEqual(OTHERS, self.stored())

    def test_names(self):
        chance = random.Random(815)
        for _ in range(self.rounds):
            names = ["".join(chance.choices(PIECES, k=chance.randint(0, 6))) + "n" +
                     "".join(chance.choices(PIECES, k=chance.randint(0, 2)))
                     for _ in range(self.number)]
            values = {kept_name(name): name for name in names}
            self.expect_done(self.set_values({**OTHERS, **{name: f"{number}" for number, name
                                                           in enumerate(values.values())}}))
            expected = {**OTHERS, **{name: f"{number}" for number, name in enumerate(values)}}
            ElementTree.parse(self.folder / STORE)
            self.assertEqual(expected, self.stored())
            self.expect_done(self.persist("set", "Last=1"))
            self.assertEqual({**expected, "Last": "1"}, self.stored())
            (self.folder / STORE).unlink()


class OneBadText(TextCase):

    def test_references_are_texts(self):
        self.expect_notes(self.set_values(OTHERS))
        for text in ("&foo;", "&#xD800;", "&f oo;", "&#0;", "&<b>;", "&", "&;", "a&b;c", "&#1;"):
            with self.subTest(text=text):
                self.expect_notes(self.persist("set", f"bad={text}"))
                self.expect_whole({**OTHERS, "bad": text})

    def test_raw_texts_with_references_that_xml_does_not_know(self):
        self.expect_notes(self.set_values(OTHERS))
        before = self.contents()
        for text in ("&foo;", "&#xD800;", "&f oo;", "&#0;", "&<b>;", "&;", "a&b c;d", "&#1;", "&nbsp;",
                     "&#xFFFE;", "&#x110000;", "&#12x;", "&#x;", "&a&amp;", "x&amp;y&foo;",
                     "x &amp;foo; y", "&amp;#x1;", "&amp;#xD800;", "&#38;foo;", "&#0000;"):
            for command in ("set", "replace"):
                with self.subTest(text=text, command=command):
                    result = self.persist(command, "--raw", "more=1", f"bad={text}")
                    self.assertEqual((2, b""), (result.code, result.out), result)
                    self.assertRegex(result.messages[0], '^rgen: "bad": persistent data cannot hold '
                                     '"&.*;"; write "&amp;amp;" for a plain "&", or leave out --raw$')
                    self.assertEqual(before, self.contents())

    def test_raw_texts_with_references_that_it_knows(self):
        self.expect_notes(self.set_values(OTHERS))
        self.expect_done(self.persist("set", "--raw", "bad=&amp;amp;foo;&lt;&#8364;&#x41;&quot;&apos;"))
        self.assertEqual({**OTHERS, "bad": '&foo;<€A"\''}, self.stored())
        ElementTree.parse(self.folder / STORE)

    def test_zeros_before_the_number_of_a_reference(self):
        self.expect_notes(self.persist("set", "--raw", "A=&#0000000000065;", "B=&#x00000000000042;"))
        self.expect_whole({"A": "A", "B": "B"})

    def test_what_a_note_says_to_write_keeps_the_sign(self):
        note = '"A": with --raw a plain "&" is lost; write "&amp;amp;"'
        for text in ("AT&T", "AT&amp;T"):
            with self.subTest(text=text):
                result = self.persist("set", "--raw", "-q", f"A={text}")
                self.assertEqual(0, result.code, result)
                self.assertIn(note, self.persist("set", "--raw", f"A={text}").notes)
        self.expect_notes(self.persist("set", "--raw", "A=AT&amp;amp;T"))
        self.expect_whole({"A": "AT&T"})

    def test_names_that_become_one(self):
        result = self.persist("set", "k\x01=v1", "k\x02=v2")
        self.expect_notes(result, *('"k\\x0%d": the library stored it as "k\ufffd"' % number
                                    for number in (1, 2)),
                          '"k\ufffd" is given more than once; value counts')
        self.assertEqual({"k\ufffd": "v2"}, self.stored())

    def test_a_raw_text_with_a_plain_sign(self):
        self.expect_notes(self.set_values(OTHERS))
        self.expect_done(self.persist("set", "--raw", "bad=x & y"))
        values = self.stored()
        values.pop("bad", None)
        self.assertEqual(OTHERS, values)
        ElementTree.parse(self.folder / STORE)

    def test_control_characters_and_noncharacters(self):
        for letter in ("\x01", "\x07", "\x08", "\v", "\f", "\x1b", "\x1f", "\ufffe", "\uffff"):
            for raw in ((), ("--raw",)):
                with self.subTest(letter=letter, raw=raw):
                    self.expect_done(self.persist("replace", "a=x < y", "b=AT&T"))
                    result = self.set_values({"bad": f"x{letter}y"}, *raw)
                    self.expect_notes(result, f'"bad": the text contains U+{ord(letter):04X} at byte 1; '
                                      "such characters are stored as U+FFFD")
                    self.expect_whole({"a": "x < y", "b": "AT&T", "bad": "x\ufffdy"})

    def test_characters_that_look_dangerous_and_are_none(self):
        values = {"a": "x < y", "bad": "\u0085x\u009b\x7f\u2028\ud7ff\ue000\ufffd\U0010ffff"}
        self.expect_notes(self.set_values(values))
        self.expect_whole(values)

    def test_bytes_that_are_no_text(self):
        self.expect_done(self.persist("set", "a=1"))
        before = self.contents()
        for content in (b'{"bad": "\xff"}', b'{"b\xffad": "x"}', b'{"bad": "\xed\xa0\x80"}',
                        b'{"bad": "\\ud800"}', b'{"bad": "\xc3"}', b'{"bad": "a\\u0000b"}'):
            with self.subTest(content=content):
                self.write("data.json", content)
                self.assertEqual(2, self.persist("set", "--data", "data.json").code)
                self.assertEqual(2, self.persist("set", "--data", "-", stdin=content).code)
                self.write("data.json", b"")
        (self.folder / "data.json").unlink()
        self.assertEqual(before, self.contents())

    @linux_only
    def test_arguments_that_are_no_text(self):
        self.expect_done(self.persist("set", "a=1"))
        before = self.contents()
        for argument in (b"bad=\xff", b"b\xffad=x", b"bad=\xed\xa0\x80", b"bad=\xc3"):
            result = self.persist("set", argument.decode("utf-8", "surrogateescape"))
            self.assertEqual(2, result.code, result)
        self.assertEqual(before, self.contents())

    def test_bytes_of_a_file_are_a_dump(self):
        self.write("bytes", bytes(range(256)))
        self.expect_done(self.persist("set", "a=x < y", "bad:bytes=@bytes"))
        self.expect_whole({"a": "x < y", "bad": " ".join(f"{n:02X}" for n in range(256))})

    def test_simulated_input(self):
        """What the library reads from it is XML content that is escaped once."""
        self.expect_notes(self.set_values(OTHERS))
        self.write("sim.xml", '<data><properties><property name="bad" type="string" '
                              'hint="Generic">&amp;foo;x</property></properties></data>')
        result = self.persist("set", "--data", "sim.xml")
        self.assertEqual(0, result.code, result)
        self.assertEqual({**OTHERS, "bad": "&foo;x"}, self.stored())
        self.assertEqual(2, self.persist("set", "--raw", "--data", "sim.xml").code)
        ElementTree.parse(self.folder / STORE)
