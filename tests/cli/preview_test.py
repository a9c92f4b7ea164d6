"""rgen preview: what its server answers and refuses, and that it follows the files.

SPDX-License-Identifier: MIT
"""

import http.client
import json
import os
import re
import socket
from pathlib import Path

from cli_case import LAUNCHER, ON_WINDOWS, linux_only, wait_for
from cli_converter import WHOLE_PDF, Conversion, ConversionCase
from cli_templates import stylesheet
from preview_case import PAGE, TEMPLATE, Answer, PreviewCase

MARK = re.compile(r' data-rgen-place="(\d+):(\d+)"')


def of_target(text):
    """The path of this system for one of the target. Wine has temporary files on its own drive."""
    if not ON_WINDOWS:
        return Path(text)
    inside = text[2:].replace("\\", "/")
    return Path(f"{LAUNCHER[-1]}/drive_c{inside}" if text.startswith("C:") else inside)


class Pages(PreviewCase):

    def test_the_page_of_the_preview(self):
        answer = self.preview().get()
        self.assertEqual((200, "text/html; charset=utf-8"),
                         (answer.code, answer.headers["content-type"]))
        self.assertIn('src="preview.js"', answer.text)

    def test_the_files_of_the_page_exist(self):
        preview = self.preview()
        for name in re.findall(r'(?:src|href)="([^"]+)"', preview.get().text):
            self.assertEqual(200, preview.get(name).code, name)
        for name in re.findall(r'from "./([^"]+)"', preview.get("preview.js").text):
            self.assertEqual(200, preview.get(name).code, name)

    def test_a_report(self):
        page = self.preview().page()
        self.assertIn("Health</h1>", page)
        self.assertIn("fine &lt;b&gt;</p>", page)

    def test_a_report_differs_from_that_of_rgen_report_by_the_marks_only(self):
        page = self.preview().page()
        self.assertEqual(0, self.report("--data", "case/health.json", output="r.html").code)
        self.assertEqual(self.text_of("r.html"), MARK.sub("", page))

    def test_the_marks_are_the_places_in_the_template(self):
        lines = self.text_of(TEMPLATE).splitlines()
        page = self.preview().page()
        found = re.findall(r'<(\w+) data-rgen-place="(\d+):(\d+)"', page)
        self.assertEqual(["html", "head", "title", "body", "h1", "p", "p"],
                         [name for name, _, _ in found])
        for name, line, column in found:
            self.assertTrue(lines[int(line) - 1][int(column) - 1:].startswith("<" + name))

    def test_a_text_report(self):
        preview = self.preview()
        view = preview.view(format="txt")
        answer = preview.get("files/", page=view["page"])
        self.assertEqual("text/plain; charset=utf-8", answer.headers["content-type"])
        self.assertEqual("State: fine <b>", answer.text)

    def test_what_can_be_chosen(self):
        view = self.preview().view()
        self.assertEqual(("health", ["html", "pdf", "txt"], ["de"]),
                         (view["type"], view["formats"], view["languages"]))
        self.assertEqual(["sample", "missing", "hostile"], [each["id"] for each in view["data"]])

    def test_a_language(self):
        self.assertIn("Zustand</h1>", self.preview().page(lang="de"))

    def test_an_unknown_language_is_a_mistake(self):
        view = self.preview().view(lang="fr")
        self.assertFalse(view["ok"])
        self.assertIn('there is no catalogue for "fr"', view["mistakes"][0]["what"])

    def test_missing_values(self):
        self.assertEqual(0, self.rgen("persist", "set", "-d", "case", "Owner=Marta").code)
        page = self.preview().page(data="missing")
        self.assertRegex(page, r'<p data-rgen-place="6:1" id="state"></p>')
        self.assertRegex(page, r'id="owner"></p>')

    def test_persistent_data(self):
        self.assertEqual(0, self.rgen("persist", "set", "-d", "case", "Owner=Marta").code)
        self.assertIn('id="owner">Marta</p>', self.preview().page())

    def test_hostile_values(self):
        self.assertEqual(0, self.rgen("persist", "set", "-d", "case", "Owner=Marta").code)
        page = self.preview().page(data="hostile")
        self.assertIn('id="state">&lt;script&gt;', page)
        self.assertIn('id="owner">&lt;script&gt;', page)
        self.assertNotIn("Marta", page)

    def test_a_data_file(self):
        self.write_json("other.json", {"State": "from the file"})
        preview = self.preview("--data", "other.json")
        self.assertEqual([{"id": "given", "title": "other.json"}], preview.view()["data"][:1])
        self.assertIn("from the file", preview.page())

    def test_an_unchanged_page_keeps_its_number(self):
        preview = self.preview()
        self.assertEqual(preview.view()["page"], preview.view()["page"])

    def test_the_place_of_an_element(self):
        place = self.preview().get("place", format="html", line=6, column=1).document
        self.assertEqual((6, 1), (place["line"], place["column"]))
        self.assertTrue(place["file"].endswith("templates/html/health.xsl"))
        self.assertTrue(place["source"].startswith('<p id="state">'))


class Changes(PreviewCase):

    def expect_change(self, change, shown, **wanted):
        preview = self.preview(*wanted.pop("options", ()))
        self.assertNotIn(shown, preview.page(**wanted))
        events = preview.events()
        count = next(events)
        change()
        while shown not in preview.page(**wanted):
            self.assertGreater(next(events), count)

    def test_of_a_template(self):
        self.expect_change(lambda: self.write(TEMPLATE, PAGE.replace("<h1>", "<h1>New ")), "New ")

    def test_of_a_template_that_replaces_the_old_one(self):
        def replace():
            self.write("case/.rgen/templates/html/.health.tmp", PAGE.replace("<h1>", "<h1>New "))
            os.replace(self.folder / "case/.rgen/templates/html/.health.tmp",
                       self.folder / TEMPLATE)
        self.expect_change(replace, "New ")

    def test_of_a_template_that_is_renamed_first(self):
        def replace():
            (self.folder / TEMPLATE).rename(self.folder / (TEMPLATE + "~"))
            self.write(TEMPLATE, PAGE.replace("<h1>", "<h1>New "))
        self.expect_change(replace, "New ")

    def test_of_the_data(self):
        self.expect_change(lambda: self.write_json("case/health.json", {"State": "worse"}), "worse")

    def test_of_a_given_data_file(self):
        self.write_json("elsewhere/data.json", {"State": "fine"})
        self.expect_change(lambda: self.write_json("elsewhere/data.json", {"State": "worse"}),
                           "worse", options=("--data", "elsewhere/data.json"))

    def test_of_a_catalogue(self):
        path = "case/.rgen/translations/health-de.po"
        new = self.text_of(path).replace("Zustand", "Befinden")
        self.expect_change(lambda: self.write(path, new), "Befinden", lang="de")

    def test_of_persistent_data(self):
        self.expect_change(
            lambda: self.rgen("persist", "set", "-d", "case", "Owner=Marta"), "Marta")

    def test_of_the_configuration(self):
        self.write("case/.rgen/templates/html/other.xsl", PAGE.replace("<h1>", "<h1>Other "))
        self.write_json("case/other.json", {"State": "fine"})
        path = "case/.rgen/config.xml"
        new = self.text_of(path).replace("health.xsl", "other.xsl")
        self.expect_change(lambda: self.write(path, new), "Other ")

    @linux_only
    def test_of_a_linked_file_in_another_folder(self):
        """The system does not say this; times and sizes are compared."""
        self.write("shared/page.xsl", PAGE)
        (self.folder / TEMPLATE).unlink()
        (self.folder / TEMPLATE).symlink_to(self.folder / "shared/page.xsl")
        self.expect_change(
            lambda: self.write("shared/page.xsl", PAGE.replace("<h1>", "<h1>New ")), "New ")

    def test_a_new_language(self):
        preview = self.preview()
        events = preview.events()
        next(events)
        self.write("case/.rgen/translations/health-fr.po",
                   self.text_of("case/.rgen/translations/health-de.po"))
        while preview.view()["languages"] != ["de", "fr"]:
            next(events)

    def test_a_folder_that_is_made_later(self):
        before = self.folder / "case/.rgen/translations"
        before.rename(self.folder / "kept")
        preview = self.preview()
        self.assertEqual([], preview.view()["languages"])
        events = preview.events()
        next(events)
        (self.folder / "kept").rename(before)
        while preview.view()["languages"] != ["de"]:
            next(events)


class Mistakes(PreviewCase):

    def test_the_last_good_page_stays(self):
        preview = self.preview()
        good = preview.view()
        self.write(TEMPLATE, PAGE.replace("</h1>", ""))
        bad = preview.view()
        self.assertEqual((False, good["page"]), (bad["ok"], bad["page"]))
        mistake = bad["mistakes"][0]
        self.assertEqual(("error", 8), (mistake["severity"], mistake["line"]))
        self.assertIn('"h1"', mistake["what"])
        self.assertTrue(mistake["file"].endswith("templates/html/health.xsl"))

    def test_after_the_correction_the_new_page_is_shown(self):
        preview = self.preview()
        preview.view()
        self.write(TEMPLATE, PAGE.replace("</h1>", ""))
        preview.view()
        self.write(TEMPLATE, PAGE.replace("<h1>", "<h1>New "))
        self.assertIn("New ", preview.page())
        self.assertEqual([], preview.view()["mistakes"])

    def test_a_template_that_is_missing(self):
        (self.folder / TEMPLATE).unlink()
        view = self.preview().view()
        self.assertEqual((False, 0), (view["ok"], view["page"]))
        self.assertEqual(["pdf", "txt"], view["formats"])

    def test_a_mistake_in_the_data(self):
        self.write("case/health.json", '{"State": }')
        view = self.preview().view()
        self.assertFalse(view["ok"])
        self.assertIn("health.json:1:", view["mistakes"][0]["what"])

    def test_a_mistake_in_the_catalogue(self):
        self.write("case/.rgen/translations/health-de.po", 'msgid "Health\n')
        view = self.preview().view(lang="de")
        self.assertFalse(view["ok"])
        self.assertIn("health-de.po:1", view["mistakes"][0]["what"])

    def test_a_mistake_in_the_configuration(self):
        preview = self.preview()
        good = preview.view()
        self.write("case/.rgen/config.xml", "<config>")
        bad = preview.view()
        self.assertEqual((False, good["page"]), (bad["ok"], bad["page"]))

    def test_a_runtime_failure(self):
        self.write(TEMPLATE, stylesheet('<xsl:message terminate="yes">stop</xsl:message>', "html"))
        view = self.preview().view()
        self.assertFalse(view["ok"])
        self.assertIn('stopped by the template: "stop"', view["mistakes"][0]["what"])


class Arguments(PreviewCase):

    def refused(self, *args):
        result = self.rgen("preview", "-d", "case", *args)
        self.assertEqual((2, b""), (result.code, result.out), result)
        return result.messages[0]

    def test_a_port_that_is_none(self):
        for port in ("x", "0", "70000", "-1"):
            self.assertIn(f'"{port}" is not a port', self.refused("--port", port))

    def test_a_given_port(self):
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            port = probe.getsockname()[1]
        self.assertIn(f":{port}/", self.preview("--port", str(port)).address)

    def test_a_port_in_use(self):
        port = self.preview().host.split(":")[1]
        result = self.rgen("preview", "-d", "case", "--port", port)
        self.expect_error(result, 5, f"rgen: cannot listen on port {port} of 127.0.0.1; another "
                                     "program may use it; leave --port out")

    def test_standard_input_as_data(self):
        self.assertIn("--data - can be read once only", self.refused("--data", "-"))

    def test_an_editor_command_with_an_open_quote(self):
        self.assertIn("close the quote", self.refused("--editor", "code 'a"))

    def test_a_folder_without_data_directory(self):
        result = self.rgen("preview", "-d", "nowhere")
        self.assertEqual(5, result.code, result)

    def test_the_document(self):
        preview = self.preview("--json", "-q")
        document = json.loads(preview.said)
        self.assertEqual({"ok": True, "address": preview.address}, document)
        self.assertRegex(preview.address, r"^http://127\.0\.0\.1:\d+/[0-9a-f]{32}/$")

    def test_two_previews_have_two_tokens(self):
        self.assertNotEqual(self.preview().path, self.preview().path)


class Ends(PreviewCase):

    def test_ctrl_c_ends_it_at_once(self):
        before = self.contents()
        preview = self.preview()
        preview.page()
        events = preview.events()
        next(events)
        self.end(preview)
        with self.assertRaises((StopIteration, http.client.HTTPException, OSError)):
            next(events)
        self.assertEqual(before, self.contents())

    def test_the_data_directory_is_not_written_to(self):
        before = self.contents()
        preview = self.preview()
        for format_name in ("html", "pdf", "txt"):
            preview.view(format=format_name, data="hostile")
        self.assertEqual(before, self.contents())


class Pdf(PreviewCase, ConversionCase):

    def test_the_converted_report(self):
        preview = self.preview(env=self.waiting_converter(1))
        connection = preview.connect()
        connection.request("GET", preview.path + "pdf")
        conversion = Conversion(self, preview.running, 1)
        of_target(conversion.option("-o")).write_bytes(WHOLE_PDF)
        conversion.release()
        answer = Answer(connection.getresponse())
        connection.close()
        self.assertEqual((200, "application/pdf"), (answer.code, answer.headers["content-type"]))
        self.assertEqual(WHOLE_PDF, answer.body)

    def test_ctrl_c_ends_a_conversion(self):
        preview = self.preview(env=self.waiting_converter(1))
        connection = preview.connect()
        connection.request("GET", preview.path + "pdf")
        conversion = Conversion(self, preview.running, 1)
        page = of_target(conversion.option("-i"))
        preview.running.interrupt()
        wait_for(page, is_gone=True)
        conversion.release()
        result = preview.running.finish()
        connection.close()
        self.assertEqual(130, result.code, result)

    def test_without_a_converter_the_reason_is_said(self):
        answer = self.preview().get("pdf")
        self.assertEqual(500, answer.code)
        self.assertIn('the program "vellum" was not found', answer.text)


class Editor(PreviewCase):
    """The editor is a program that writes its arguments."""

    def start_editor(self, preview, headers, open_it="1"):
        return preview.ask("GET", f"{preview.path}place?format=html&line=7&column=1&open={open_it}",
                           headers=headers)

    @linux_only
    def test_it_is_started_with_the_place(self):
        self.write("editor", "#!/bin/sh\nprintf '%s\\n' \"$@\" > opened.part\n/bin/mv opened.part opened\n"
                   ).chmod(0o755)
        preview = self.preview("--editor", "./editor -g '{file}:{line}:{column}' {line}")
        answer = self.start_editor(preview, {"X-Rgen-Preview": "script"})
        self.assertTrue(answer.document["ok"])
        wait_for(self.folder / "opened")
        self.assertEqual(f"-g\n{self.folder / TEMPLATE}:7:1\n7\n", self.text_of("opened"))

    @linux_only
    def test_an_image_in_a_report_cannot_start_it(self):
        self.write("editor", "#!/bin/sh\n/bin/touch opened\n").chmod(0o755)
        preview = self.preview("--editor", "./editor")
        self.assertTrue(self.start_editor(preview, {}).document["ok"])
        self.end(preview)
        self.assertNotIn("opened", self.names())

    def test_a_missing_program_is_reported(self):
        preview = self.preview("--editor", "no-such-editor {file}")
        answer = self.start_editor(preview, {"X-Rgen-Preview": "script"}).document
        self.assertFalse(answer["ok"])
        self.assertIn('"no-such-editor" cannot be started', answer["message"])

    @linux_only
    def test_open_starts_the_browser(self):
        self.write("bin/xdg-open", "#!/bin/sh\necho \"$1\" > opened.part\n/bin/mv opened.part opened\n"
                   ).chmod(0o755)
        preview = self.preview("--open", env={"PATH": str(self.folder / "bin")})
        wait_for(self.folder / "opened")
        self.assertEqual(preview.address, self.text_of("opened").strip())
