"""Full disks and file size limits: a failure is reported, and an existing report stays unchanged.

A nearly full ext4 takes the first blocks of a report, a nearly full tmpfs as well; a limit of size
cuts at its own place. The converter must not get half a page.

SPDX-License-Identifier: MIT
"""

import json
import os

import small_disks
from cli_case import ON_WINDOWS, linux_only, with_small_files
from cli_converter import ConversionCase
from cli_templates import LISTING, PAGE

LARGE = "x" * 120_000
ROOM = 40_960
LIMIT = 65_536


class WithoutRoom(ConversionCase):

    def setUp(self):
        super().setUp()
        for format_name, template in (("txt", LISTING), ("html", PAGE), ("pdf", PAGE)):
            self.put_template(template, format_name)
        self.write_json("large.json", {"A": LARGE})

    def expect_no_report(self, place, *args, prefix=()):
        """Every format and delivery mode fails and leaves the existing file unchanged."""
        for name, *mode in (("o.txt",), ("o.html",), ("o.pdf",), ("o.txt", "--mode", "bytes"),
                            ("o.txt", "--mode", "delete-on-close"), ("o.pdf", "--no-convert")):
            with self.subTest(name=name, mode=mode):
                output = f"{place}/{name}"
                self.write(output, "older")
                before = self.contents()
                result = self.report("--data", "large.json", *mode, *args, output=output,
                                     prefix=prefix,
                                     env=self.converter_environment(("mark", "converter ran")))
                (self.folder / "converter.control").unlink()
                self.expect_error_like(
                    result, 4, f'^rgen: (cannot write "{output}"|{output}: Cannot write .+).*; .+$'
                    if "delete-on-close" in mode else f'^rgen: cannot write "{output}": .+; .+$')
                self.assertEqual(before, self.contents())

    def expect_no_other_file(self, place, prefix=()):
        for command in ("dump", "simulate"):
            with self.subTest(command=command):
                self.write(f"{place}/o.xml", "older")
                before = self.contents()
                result = self.rgen(command, "--data", "large.json", "-o", f"{place}/o.xml",
                                   prefix=prefix)
                self.assertEqual((4, b""), (result.code, result.out), result)
                self.assertEqual(1, len(result.messages), result)
                self.assertEqual(before, self.contents())

    def expect_no_data(self, place, prefix=()):
        """Persistent data stays unchanged."""
        before = self.contents()
        for command in ("set", "replace"):
            with self.subTest(command=command):
                result = self.rgen("persist", command, "-d", f"{place}/data", "--data", "large.json",
                                   prefix=prefix)
                self.assertEqual((4, b"", 1), (result.code, result.out, len(result.messages)), result)
                self.assertEqual(before, self.contents())

    def expect_no_line(self, place, prefix=()):
        """In a batch the small report is made and the large ones fail."""
        lines = [{"output": f"{place}/small.txt", "set": {"A": "1"}},
                 *({"output": f"{place}/{name}", "data": "large.json", "mode": mode}
                   for name, mode in (("a.txt", "file"), ("b.txt", "bytes"), ("c.html", "file"),
                                      ("d.pdf", "file")))]
        for line in lines:
            self.write(line["output"], "older")
        self.write("batch.ndjson", "".join(json.dumps(line) + "\n" for line in lines))
        result = self.rgen("report", "-d", "case", "--batch", "batch.ndjson", "--json",
                           prefix=prefix,
                           env=self.converter_environment(("mark", "converter ran")))
        document = result.document
        self.assertEqual((1, 1, 4), (result.code, document["done"], document["failed"]), result)
        self.assertEqual([4] * 4, [report["error"]["exitCode"]
                                   for report in document["reports"][1:]])
        self.assertEqual(b"[A=1]\n", self.read(lines[0]["output"]))
        for line in lines[1:]:
            self.assertEqual(b"older", self.read(line["output"]))
        self.assertNotIn("converter ran", self.names())

    def expect_cut_output_is_noticed(self, place, prefix=()):
        """Standard output is redirected to a file there."""
        for name in ("txt", "html"):
            with self.subTest(name=name):
                path = self.folder / place / "standard output"
                result = self.report("--data", "large.json", "-f", name, output="-", prefix=prefix,
                                     stdout=os.open(path, os.O_CREAT | os.O_WRONLY))
                path.unlink()
                self.expect_error_like(result, 4, "^rgen: cannot write standard output: .+; .+$")

    def expect_nothing(self, place, prefix=()):
        self.expect_no_report(place, prefix=prefix)
        self.expect_no_other_file(place, prefix)
        self.expect_no_data(place, prefix)
        self.expect_no_line(place, prefix)
        self.expect_cut_output_is_noticed(place, prefix)


class FullDisks(WithoutRoom):

    def mounted(self, kind, free=ROOM):
        """A folder on its own nearly full file system."""
        self.addCleanup(small_disks.mount(kind, self.folder / "disk", 2 * 1024 * 1024))
        for name in ("o.txt", "o.html", "o.pdf", "o.xml", "small.txt", "a.txt", "b.txt", "c.html",
                     "d.pdf"):
            self.write(f"disk/{name}", "older")
        self.make_data_dir("disk/data")
        small_disks.fill(self.folder / "disk", free)

    def names(self):
        return [name for name in super().names() if "lost+found" not in name]

    def contents(self):
        return {name: content for name, content in super().contents().items()
                if name not in ("disk/filler", "disk.img")}

    def test_a_nearly_full_ext4(self):
        self.mounted("ext4")
        self.expect_nothing("disk")

    def test_a_nearly_full_tmpfs(self):
        self.mounted("tmpfs")
        self.expect_nothing("disk")

    def test_not_even_room_for_a_folder(self):
        self.mounted("ext4", free=0)
        self.expect_no_report("disk")
        result = self.rgen("init", "disk/new")
        self.assertEqual((4, b""), (result.code, result.out), result)

    def test_what_has_room_is_delivered(self):
        self.mounted("ext4", free=400_000)
        for name in ("o.txt", "o.html"):
            self.expect_done(self.report("--data", "large.json", output=f"disk/{name}"))
            self.assertIn(LARGE.encode(), self.read(f"disk/{name}"))


class LimitedFiles(WithoutRoom):

    def setUp(self):
        super().setUp()
        self.make_data_dir("out/data")

    def test_the_signal_is_ignored(self):
        self.expect_nothing("out", with_small_files(LIMIT))

    @linux_only
    def test_the_signal_would_end_the_program(self):
        """rgen ignores it; under Wine the default action ends Wine itself."""
        self.expect_nothing("out", with_small_files(LIMIT, "default"))

    @linux_only
    def test_persistent_data_and_a_limit_at_every_place(self):
        """No failure leaves anything that disturbs the next run."""
        before = self.contents()
        for limit in (0, 1, 100, 150, 200, 400, 1000, 5000):
            with self.subTest(limit=limit):
                result = self.rgen("persist", "set", "-d", "case", "--data", "large.json",
                                   prefix=with_small_files(limit))
                self.assertIn(result.code, (4, 5) if limit == 0 else (4,), result)
                self.assertEqual(before, self.contents())
        self.expect_done(self.rgen("persist", "set", "-d", "case", "A=1"))

    def test_a_data_directory_without_room(self):
        before = self.contents()
        result = self.rgen("init", "new", prefix=with_small_files(100))
        # Wine reports the limit as a general failure.
        code = 5 if ON_WINDOWS else 4
        self.assertEqual((code, b""), (result.code, result.out), result)
        self.assertEqual(before, {name: content for name, content in self.contents().items()
                                  if content is not None or name in before})

    def test_a_limit_at_every_place_of_the_report(self):
        """Including a limit that cuts only the last byte, and one that cuts nothing."""
        self.write_json("large.json", {"A": "x" * 5000})
        whole = len("[A=" + "x" * 5000 + "]\n")
        for limit in (1, 4096, whole - 1):
            with self.subTest(limit=limit):
                self.write("out/o.txt", "older")
                result = self.report("--data", "large.json", output="out/o.txt",
                                     prefix=with_small_files(limit))
                self.assertEqual(4, result.code, result)
                self.assertEqual(b"older", self.read("out/o.txt"))
        self.expect_done(self.report("--data", "large.json", output="out/o.txt",
                                     prefix=with_small_files(whole)))
        self.assertEqual(whole, len(self.read("out/o.txt")))
