"""The time zone that --timezone chooses for one run.

SPDX-License-Identifier: MIT
"""

from cli_case import CliCase, linux_only, windows_only

# 2026-07-01 12:00:00 UTC.
SUMMER = "1782907200"


class TimeZone(CliCase):

    def shown(self, zone, text=SUMMER):
        """The time in a report, as day and time of day."""
        values = self.values("--set", f"T:datetime={text}", "--timezone", zone)
        return values["T"].strip()

    def test_offsets(self):
        rows = {"UTC": "1.07.2026 12:00:00", "+00:00": "1.07.2026 12:00:00",
                "+02:00": "1.07.2026 14:00:00", "+0530": "1.07.2026 17:30:00",
                "-03:30": "1.07.2026 08:30:00", "-10:00": "1.07.2026 02:00:00",
                "+14:00": "2.07.2026 02:00:00"}
        for zone, text in rows.items():
            with self.subTest(zone=zone):
                self.assertEqual(text, self.shown(zone))

    def test_times_without_a_zone_are_read_in_it(self):
        for zone in ("UTC", "+02:00", "-03:30"):
            with self.subTest(zone=zone):
                self.assertEqual("1.07.2026 09:30:00", self.shown(zone, "2026-07-01T09:30:00"))
        self.assertEqual("1.07.2026 08:30:00", self.shown("+01:00", "2026-07-01T09:30:00+02:00"))

    def test_it_replaces_the_one_of_the_environment(self):
        values = self.values("--set", f"T:datetime={SUMMER}", "--timezone", "+02:00",
                             env={"TZ": "EST5EDT"})
        self.assertEqual("1.07.2026 14:00:00", values["T"].strip())

    def test_other_commands_take_it(self):
        given = ["--set", "T:datetime=2026-07-01T12:00:00", "--timezone", "+02:00", "-o", "-"]
        for command in ("dump", "simulate"):
            with self.subTest(command=command):
                self.assertEqual(0, self.rgen(command, *given).code)
        self.expect_done(self.rgen("persist", "set", "-d", "case", f"T:datetime={SUMMER}",
                                   "--timezone", "+02:00"))
        stored = self.rgen("persist", "get", "-d", "case", "T").text
        self.assertEqual("1.07.2026 14:00:00", stored.strip())

    def test_all_lines_of_a_batch_are_in_it(self):
        self.write_json("batch.ndjson", {"output": "a.txt", "set": {"T:datetime": int(SUMMER)}})
        self.expect_done(self.rgen("report", "-d", "case", "--batch", "batch.ndjson", "--timezone",
                                   "+02:00"))
        self.assertEqual(b"[T= 1.07.2026 14:00:00]\n", self.read("a.txt"))

    @linux_only
    def test_names(self):
        rows = {"Europe/Berlin": "14:00:00", "America/New_York": "08:00:00", "Asia/Tokyo": "21:00:00"}
        for zone, time in rows.items():
            with self.subTest(zone=zone):
                self.assertEqual(f"1.07.2026 {time}", self.shown(zone))
        self.assertEqual("1.01.2026 13:00:00", self.shown("Europe/Berlin", "2026-01-01T12:00:00Z"))

    def refusal(self, zone):
        result = self.report("--set", "A=1", "--timezone", zone)
        self.assertEqual((2, 1), (result.code, len(result.messages)), result)
        self.assertNotIn("report.txt", self.names())
        return result.messages[0]

    @linux_only
    def test_names_that_do_not_exist(self):
        self.assertEqual('rgen: there is no time zone "Europe/Berln"; did you mean "Europe/Berlin"?',
                         self.refusal("Europe/Berln"))
        for zone in ("CET-1CEST", "+25:00", "+1", "/etc/passwd", "../zoneinfo/UTC", "Europe",
                     "zone.tab", ":UTC"):
            with self.subTest(zone=zone):
                self.assertIn(f'there is no time zone "{zone}"; ', self.refusal(zone))

    @windows_only
    def test_names_on_windows(self):
        for zone in ("Europe/Berlin", "EST5EDT", "+25:00"):
            with self.subTest(zone=zone):
                self.assertEqual(f'rgen: "{zone}" cannot be the time zone of one program on Windows; '
                                 "write UTC, or an offset such as +01:00", self.refusal(zone))
