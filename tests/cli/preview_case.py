"""What the suites of "rgen preview" share: a started preview and requests to it.

SPDX-License-Identifier: MIT
"""

import http.client
import json
import os
import re
import time
import urllib.parse

from cli_case import CliCase
from cli_templates import GUID, configuration, stylesheet
from program_case import LONGEST_WAIT

PAGE = stylesheet(
    '<html lang="en"><head><title>QT_TRANSLATE_NOOP("QObject", "Health")</title></head>\n'
    '<body><h1>QT_TRANSLATE_NOOP("QObject", "Health")</h1>\n'
    '<p id="state"><xsl:value-of select="data/properties/property[@name=\'State\']"/></p>\n'
    '<p id="owner"><xsl:value-of select="data/properties/property[@name=\'Owner\']"/></p>\n'
    "</body></html>", "html")
TEXT = stylesheet("State: <xsl:value-of select=\"data/properties/property[@name='State']\"/>\n")
TEMPLATE = "case/.rgen/templates/html/health.xsl"


class Answer:
    def __init__(self, response):
        self.code = response.status
        self.headers = {name.lower(): value for name, value in response.getheaders()}
        self.body = response.read()

    @property
    def document(self):
        return json.loads(self.body)

    @property
    def text(self):
        return self.body.decode("utf-8")


class Preview:
    """A running preview."""

    def __init__(self, running):
        self.running = running
        self.said = self.read_what_is_said()
        self.address = re.search(r"http://[^\s\"]+", self.said).group(0)
        self.host = urllib.parse.urlsplit(self.address).netloc
        self.path = urllib.parse.urlsplit(self.address).path

    def read_what_is_said(self):
        limit = time.monotonic() + LONGEST_WAIT
        while time.monotonic() < limit:
            # The program writes through the same descriptor, so its place must stay as it is.
            said = os.pread(self.running.out.fileno(), 65536, 0)
            if said.endswith((b"/\n", b"}\n")):
                return said.decode("utf-8")
            if self.running.process.poll() is not None:
                raise AssertionError(f"ended: {self.running.finish()}")
            time.sleep(0.002)
        raise AssertionError("the preview says nothing")

    def connect(self):
        return http.client.HTTPConnection(self.host, timeout=LONGEST_WAIT)

    def ask(self, method, path, headers=None, body=None):
        connection = self.connect()
        try:
            connection.request(method, path, body=body, headers=headers or {})
            return Answer(connection.getresponse())
        finally:
            connection.close()

    def get(self, path="", **query):
        text = f"?{urllib.parse.urlencode(query)}" if query else ""
        return self.ask("GET", self.path + path + text)

    def view(self, **wanted):
        return self.get("view", **{"format": "html", **wanted}).document

    def page(self, **wanted):
        """The text of the report that is shown for a view."""
        return self.get("files/", page=self.view(**wanted)["page"]).text

    def events(self):
        """The numbers of changes, as they come in."""
        connection = self.connect()
        connection.request("GET", self.path + "events")
        response = connection.getresponse()
        for line in response:
            if line.startswith(b"data:"):
                yield int(line[5:])
        connection.close()


class PreviewCase(CliCase):
    """The data directory holds one report type, "health", with a sample and a German catalogue."""

    def make_data_dir(self, name="case", types=None, templates=None):
        self.write(f"{name}/.rgen/config.xml",
                   configuration([("health.xsl", GUID, "health_data.xml")]))
        for format_name, text in (("html", PAGE), ("pdf", PAGE), ("txt", TEXT)):
            self.write(f"{name}/.rgen/templates/{format_name}/health.xsl", text)
        self.write(f"{name}/.rgen/translations/health-de.po", 'msgid ""\nmsgstr ""\n'
                   '"Content-Type: text/plain; charset=UTF-8\\n"\n\n'
                   'msgid "Health"\nmsgstr "Zustand"\n')
        self.write_json(f"{name}/health.json", {"State": "fine <b>"})

    def preview(self, *args, **settings):
        running = self.start("preview", "-d", "case", *args, **settings)
        self.addCleanup(self.interrupt, running)
        return Preview(running)

    @staticmethod
    def interrupt(running):
        """Lets it remove its temporary folder."""
        if running.process.poll() is None:
            running.interrupt()
            running.process.wait(LONGEST_WAIT)

    def end(self, preview):
        """Ctrl-C; the preview ends at once and leaves nothing."""
        preview.running.interrupt()
        result = preview.running.finish()
        self.assertEqual((130, ["rgen: preview at this address; Ctrl-C ends it",
                                "rgen: interrupted"]), (result.code, result.messages), result)
