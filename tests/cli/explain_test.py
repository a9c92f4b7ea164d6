"""rgen explain.

SPDX-License-Identifier: MIT
"""

import re

from cli_case import SOURCE_FOLDER, CliCase


def statuses_of_the_header():
    """Name to number, in the order of the header."""
    text = (SOURCE_FOLDER / "include/strata_repgenlib/rgen_status.h").read_text()
    return {name: int(number, 16) for name, number in
            re.findall(r"#define (RGEN_\w+) RGEN_STATUS\((0x[0-9A-F]{8})U\)", text)}


class Explain(CliCase):
    has_data_dir = False

    def test_every_way_to_write_a_status(self):
        expected = self.rgen("explain", "0xC0020002")
        self.assertEqual((0, ""), (expected.code, expected.err))
        for part in ("0xC0020002", "RGEN_E_XSLT_APPLY", "Cannot apply xslt template to xml"):
            self.assertIn(part, expected.text)
        for status in ("C0020002", "0xc0020002", "-1073610750", "3221356546",
                       "RGEN_E_XSLT_APPLY", "XSLT_APPLY"):
            with self.subTest(status=status):
                result = self.rgen("explain", status)
                self.assertEqual((0, expected.text), (result.code, result.text))

    def test_success_and_cancellation(self):
        for status, name in (("0", "RGEN_OK"), ("0x00000000", "RGEN_OK"), ("OK", "RGEN_OK"),
                             ("0x80000001", "RGEN_CANCELED"), ("CANCELED", "RGEN_CANCELED")):
            with self.subTest(status=status):
                self.assertIn(name, self.rgen("explain", status).text)

    def test_all_of_them(self):
        known = statuses_of_the_header()
        self.assertEqual(37, len(known))
        result = self.rgen("explain")
        self.assertEqual((0, ""), (result.code, result.err))
        for name, number in known.items():
            self.assertRegex(result.text, rf"(?m)^.*\b{name}\b")
            self.assertIn(f"0x{number:08X}", result.text)

    def test_the_document_of_one(self):
        document = self.rgen("explain", "XSLT_APPLY", "--json").document
        self.assertEqual((True, "0xC0020002", "RGEN_E_XSLT_APPLY",
                          "Cannot apply xslt template to xml"),
                         tuple(document[name] for name in ("ok", "status", "name", "text")))
        self.assertIsInstance(document["causes"], list)
        self.assertTrue(document["causes"] and all(document["causes"]))
        self.assertTrue(document["next"])
        self.assertEqual('"rgen dump -o -" shows the values.', document["withRgen"])

    def test_the_advice_for_all_hosts_names_no_option_of_rgen(self):
        for status in self.rgen("explain", "--json").document["statuses"]:
            for text in (status["next"], *status["causes"]):
                self.assertNotRegex(text, r"(^|\s)--?[a-z]", status["name"])

    def test_the_advice_about_rgen_is_a_line_of_its_own(self):
        self.assertIn("\nWith rgen: Give values with --data, --set or --pair, or store some with "
                      '"rgen persist set".\n', self.rgen("explain", "EMPTY_INPUT").text)
        self.assertNotIn("With rgen", self.rgen("explain", "GUID_NOT_IN_CONFIG").text)

    def test_the_document_of_all(self):
        document = self.rgen("explain", "--json").document
        self.assertTrue(document["ok"])
        self.assertEqual(
            {(name, f"0x{number:08X}") for name, number in statuses_of_the_header().items()},
            {(entry["name"], entry["status"]) for entry in document["statuses"]})

    def test_numbers_that_are_no_status(self):
        for number in ("0x12345678", "5", "0xC00100FF", "99999999999999999999"):
            with self.subTest(number=number):
                result = self.rgen("explain", number)
                self.assertEqual((2, b""), (result.code, result.out), result)
                self.assertEqual(1, len(result.messages), result)
