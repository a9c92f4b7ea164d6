"""Conversions with a real browser engine: the content of the PDF, and what a page cannot do.

SPDX-License-Identifier: MIT
"""

import base64
import http.server
import json
import re
import shutil
import struct
import subprocess
import threading
import unittest
import zlib
from pathlib import Path

from program_case import linux_only, native
from vellum_case import ENGINE, VellumCase, engines_on

PROGRAM = shutil.which(ENGINE)
TOOLS = ("pdfinfo", "pdftotext", "pdffonts", "pdfimages", "pdfdetach", "qpdf")
LACKING = [name for name in TOOLS if shutil.which(name) is None]
PAGE = ('<!doctype html><html lang="de"><head><meta charset="utf-8"><title>Prüfung № 7</title>'
        "<style>body{font-family:'DejaVu Sans',sans-serif}</style></head><body>")
REPORT = (PAGE + "<h1>Zusammenfassung</h1><p>Die Größe übertrifft jede Erwartung.</p>"
          "<h2>Сведения</h2><p lang=\"ru\">Съёмка завершена без ошибок.</p>"
          "<table><tr><th scope=col>Wert</th></tr><tr><td>42</td></tr></table>")
A4, A5_ACROSS = (595, 842), (595, 420)


def small_png():
    """An image of two by two red pixels."""
    def chunk(name, content):
        return (struct.pack(">I", len(content)) + name + content
                + struct.pack(">I", zlib.crc32(name + content)))
    rows = (b"\x00" + b"\xff\x00\x00" * 2) * 2
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", 2, 2, 8, 2, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


@linux_only
@unittest.skipIf(PROGRAM is None, f"{ENGINE} is not installed")
@unittest.skipIf(LACKING, f"not installed: {' '.join(LACKING)}")
class RealCase(VellumCase):

    def environment(self, changes=None):
        """Only the real engine is installed."""
        return super().environment({**engines_on(Path(PROGRAM or "/").parent),
                                    "STAND_IN_ENGINE_LOG": None, **(changes or {})})

    def made(self, page, *args, output="report.pdf", **settings):
        """The path of the PDF of this page, after a check of its structure."""
        self.expect_done(self.convert(*args, page=page, output=output, **settings))
        path = self.folder / output
        self.tool("qpdf", "--check", path)
        return path

    @staticmethod
    def tool(name, *args):
        return subprocess.run([name, *args], check=True, capture_output=True).stdout.decode()

    def words(self, path):
        return " ".join(self.tool("pdftotext", path, "-").split())

    def facts(self, path):
        rows = (line.split(":", 1) for line in self.tool("pdfinfo", path).splitlines())
        return {name: value.strip() for name, value in rows}

    def size(self, path):
        numbers = re.findall(r"[\d.]+", self.facts(path)["Page size"])
        return tuple(round(float(number)) for number in numbers[:2])


class Contents(RealCase):

    def test_words(self):
        words = self.words(self.made(REPORT))
        for word in ("Zusammenfassung", "Größe übertrifft", "Съёмка завершена", "42"):
            self.assertIn(word, words)

    def test_no_dates_and_addresses_at_the_edges(self):
        words = self.words(self.made(PAGE + "<p>x"))
        self.assertEqual("x", words)

    def test_what_readers_need(self):
        path = self.made(REPORT)
        facts = self.facts(path)
        self.assertEqual(("1", "Prüfung № 7", "yes"),
                         (facts["Pages"], facts["Title"], facts["Tagged"]))
        plain = subprocess.check_output(["qpdf", "--qdf", "--object-streams=disable", path, "-"])
        self.assertRegex(plain, rb"/Lang \(de\)")

    def test_headings_are_the_outline(self):
        path = self.made(REPORT)
        outline = json.loads(self.tool("qpdf", "--json", "--json-key=outlines", path))["outlines"]
        self.assertEqual(["Zusammenfassung"], [entry["title"] for entry in outline])
        self.assertEqual(["Сведения"], [entry["title"] for entry in outline[0]["kids"]])

    def test_every_font_is_embedded(self):
        rows = self.tool("pdffonts", self.made(REPORT)).splitlines()[2:]
        self.assertNotEqual([], rows)
        for row in rows:
            self.assertRegex(row, r" yes +(yes|no) +(yes|no) +\d+ +\d+$")

    def test_encodings(self):
        text = "<p>Съёмка завершена без ошибок"
        pages = [("<!doctype html><meta charset=windows-1251>" + text).encode("cp1251"),
                 ('<html><head><meta http-equiv="Content-Type" content="text/html; charset=KOI8-R">'
                  "</head>" + text).encode("koi8-r"),
                 ("<!doctype html>" + text).encode(), ("\ufeff" + text).encode("utf-16-le"),
                 ("\ufeff<!doctype html>" + text).encode("utf-16-be"), text.encode("utf-8-sig")]
        for page in pages:
            with self.subTest(page=page[:60]):
                self.assertEqual(text[3:], self.words(self.made(page)))

    def test_a_page_of_the_library(self):
        page = ('<html><head><META http-equiv="Content-Type" content="text/html; charset=UTF-8">'
                "\n</head><body><h1>Größe и слово</h1></body></html>")
        self.assertEqual("Größe и слово", self.words(self.made(page)))


class Paper(RealCase):

    def test_a4_is_the_default(self):
        self.assertEqual(A4, self.size(self.made(REPORT)))

    def test_the_page_s_own_wins(self):
        for style in ("@page{size:A5 landscape}", "@page{size:210mm 148mm}",
                      "@page{margin:1cm}@page{size:A5 landscape;margin:0}",
                      "@media print{@page{size:A5 landscape}}"):
            page = f"<!doctype html><html><head><style>{style}</style></head><p>x"
            self.assertEqual(A5_ACROSS, self.size(self.made(page)), style)

    def test_fifty_pages(self):
        sections = "".join(f"<section style='break-after:page'><h2>Abschnitt {n}</h2><p>Größe {n}"
                           "</section>" for n in range(1, 50))
        path = self.made(f"{PAGE}{sections}<h2>Abschnitt 50</h2>")
        self.assertEqual("50", self.facts(path)["Pages"])
        words = self.words(path)
        self.assertIn("Abschnitt 1 ", words)
        self.assertTrue(words.endswith("Abschnitt 50"))
        outline = json.loads(self.tool("qpdf", "--json", "--json-key=outlines", path))["outlines"]
        self.assertEqual(50, len(outline))


class Files(RealCase):

    def images(self, path):
        return len(self.tool("pdfimages", "-list", path).splitlines()) - 2

    def test_an_image_of_the_base(self):
        self.write("Bilder für alle/ein bild ß.png", small_png())
        page = PAGE + '<img src="ein%20bild%20ß.png" alt="Bild">'
        for base in ("Bilder für alle", native(self.folder / "Bilder für alle") + "/"):
            self.assertEqual(1, self.images(self.made(page, base=base)))

    def test_an_image_beside_the_page(self):
        self.write("bild.png", small_png())
        self.assertEqual(1, self.images(self.made(PAGE + '<img src="bild.png">')))

    def test_an_image_in_the_page(self):
        text = base64.b64encode(small_png()).decode()
        self.assertEqual(1, self.images(self.made(
            f'{PAGE}<img src="data:image/png;base64,{text}">')))

    def test_a_style_of_the_base(self):
        self.write("style.css", 'p::after{content:" with style"}')
        page = PAGE.replace("</head>", '<link rel="stylesheet" href="style.css"></head>')
        self.assertEqual("words with style", self.words(self.made(page + "<p>words")))

    def test_paths_with_blanks_and_letters(self):
        (self.folder / "Отчёты für 2026").mkdir()
        output = 'Отчёты für 2026/Größe "1" #2 100%.pdf'
        self.assertIn("Größe", self.words(self.made(REPORT, output=output)))

    def test_several_at_once(self):
        self.write("page.html", REPORT)
        running = [self.start_conversion(page=None, output=f"report {number}.pdf")
                   for number in range(4)]
        for each in running:
            self.expect_done(each.finish())
        for number in range(4):
            self.assertIn("Größe", self.words(self.folder / f"report {number}.pdf"))


class Harm(RealCase):
    """What a page tries to do in vain."""

    def test_scripts_do_not_run(self):
        page = (PAGE + "<p id=a>plain</p><script>document.getElementById('a').textContent = 'ran'"
                "</script><img src=x onerror=\"document.body.textContent = 'ran'\">"
                "<svg onload=\"document.body.textContent = 'ran'\"></svg>"
                "<a href=\"javascript:document.body.textContent = 'ran'\">link</a>")
        result = self.convert(page=page)
        self.assertEqual(0, result.code, result)
        self.assertEqual("plain link", self.words(self.folder / "report.pdf"))

    def test_a_script_in_front_of_everything(self):
        self.assertEqual("plain", self.words(self.made(
            "<!--><script>document.title = 'ran'; for (;;) {}</script><!doctype html>"
            "<script>for (;;) {}</script><p>plain")))

    def test_a_start_that_shifts_letters(self):
        for start in ("<!doctype html \x1b$B>\x1b(B>", "<!-- \x1b$B --><!doctype html>\x1b(B -->"):
            # If no font has the letters, there is a warning.
            result = self.convert(
                page=f'{start}<meta charset="iso-2022-jp"><script>document.write("ran")</script>'
                '<iframe src="file:///etc/passwd"></iframe><p>plain')
            self.assertEqual((0, []), (result.code, result.messages), result)
            words = self.words(self.folder / "report.pdf")
            self.assertNotIn("ran", words)
            self.assertNotIn("root", words)
            self.assertIn("plain", words)

    def test_words_that_are_put_together_by_decoding(self):
        """With both engines, also for tags inside attribute values of other tags."""
        secret = self.write("secret.html", "<p>secret").as_uri()
        refresh = f"content='0;url={secret}'"
        pages = [f"<meta http-\x1b(Bequiv=refresh {refresh}>", f"<link re\x1b(Bl=attachment href={secret}>",
                 f"<a re\x1b(Bl=attachment href={secret}>link</a>",
                 f"<meta x=\"<a rel=attachment y='\"'>\" http-equiv=refresh {refresh}>"]
        weasyprint = shutil.which("weasyprint")
        self.assertIsNotNone(weasyprint, "weasyprint is not installed")
        for page in pages:
            for engine in (PROGRAM, weasyprint):
                with self.subTest(page=page, engine=engine):
                    path = self.made(f"<!doctype html><meta charset=iso-2022-jp>{page}<p>plain",
                                     "--engine", engine)
                    self.assertNotIn("secret", self.words(path).replace("/secret.html", ""))
                    self.assertIn("plain", self.words(path))
                    self.assertIn("0 embedded files", self.tool("pdfdetach", "-list", path))

    def test_frames_do_not_show(self):
        secret = self.write("secret.html", "<p>secret").as_uri()
        leading = f"&lt;meta &#104;ttp-equiv=refresh content='0;url={secret}'&gt;"
        words = self.words(self.made(
            f'{PAGE}<p>plain</p><iframe src="{secret}"></iframe><embed src="{secret}">'
            f'<object data="{secret}"></object><iframe srcdoc="{leading}"></iframe>'))
        self.assertEqual("plain", words)

    def test_redirections_lead_nowhere(self):
        secret = self.write("secret.html", "<p>secret").as_uri()
        for tag in (f'<meta http-equiv="refresh" content="0;url={secret}">',
                    f'<svg><title><meta http-equiv=refresh content="0;url={secret}">'):
            self.assertNotIn("secret", self.words(self.made(f"{PAGE}{tag}<p>plain")))

    def test_nothing_is_attached(self):
        self.write("secret.txt", "secret")
        path = self.made(PAGE + '<link rel="attachment" href="secret.txt"><p>plain')
        self.assertIn("0 embedded files", self.tool("pdfdetach", "-list", path))

    def test_no_network(self):
        asked = []

        class Server(http.server.BaseHTTPRequestHandler):
            def do_GET(self):  # The name that http.server requires.
                asked.append(self.path)
                self.send_error(404)

            def log_message(self, *_):
                pass

        with http.server.ThreadingHTTPServer(("127.0.0.1", 0), Server) as server:
            threading.Thread(target=server.serve_forever, daemon=True).start()
            address = f"http://127.0.0.1:{server.server_port}"
            page = (f'{PAGE}<link rel="stylesheet" href="{address}/a.css">'
                    f'<link rel="preconnect" href="{address}">'
                    f'<link rel="prefetch" href="{address}">'
                    f'<img src="{address}/a.png"><iframe src="{address}/a.html"></iframe>'
                    f'<style>@import "{address}/b.css";p{{background:url({address}/b.png)}}</style>'
                    f'<form action="{address}/f"></form><p>plain')
            self.assertEqual("plain", self.words(self.made(page)))
            self.made(PAGE + '<img src="a.png"><a href="b">x</a>', base=address + "/")
            server.shutdown()
        self.assertEqual([], asked)

    def test_an_unprivileged_user(self):
        """In containers without a sandbox the message must name the reason."""
        self.write("page.html", REPORT)
        prefix = self.as_nobody()
        self.addCleanup(shutil.rmtree, self.folder / "home", True)
        result = self.vellum("-i", "page.html", "-o", "report.pdf", prefix=prefix,
                             program=self.program, env={"HOME": str(self.folder)})
        if result.code == 0:
            self.assertIn("Größe", self.words(self.folder / "report.pdf"))
        else:
            self.expect_error_like(result, 5, f"{ENGINE} made no PDF: .*[Ss]andbox.*")


class Check(RealCase):

    def test_it_says_with_what(self):
        result = self.vellum("--check")
        self.assertEqual((0, ""), (result.code, result.err), result)
        self.assertRegex(result.text, rf"\Aengine: {ENGINE} \({re.escape(PROGRAM)}\)\n"
                         r"page: \d+ bytes, \d+ ms\n\Z")
