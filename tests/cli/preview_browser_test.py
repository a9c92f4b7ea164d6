"""rgen preview in a real browser: what its user sees.

SPDX-License-Identifier: MIT
"""

import unittest

import chromium
from cli_case import linux_only, wait_for
from cli_templates import stylesheet
from preview_case import PAGE, TEMPLATE, PreviewCase

SHOWN = "document.querySelector('iframe.shown').contentDocument"
# Values as a careless template shows them: as markup.
CARELESS = stylesheet(
    '<html lang="en"><head><title>Careless</title></head><body>'
    "<script>document.documentElement.dataset.hostile = 9</script>"
    '<a id="out" href="javascript:document.documentElement.dataset.hostile=8">link</a>'
    '<xsl:for-each select="data/properties/property">'
    '<p><xsl:value-of select="." disable-output-escaping="yes"/></p></xsl:for-each>'
    "</body></html>", "html")
LONG = PAGE.replace("</body>", '<p style="height:5000px">tall</p><p id="end">end</p></body>')


@linux_only
@unittest.skipIf(chromium.PROGRAM is None, "chromium-headless-shell is not installed")
class BrowserCase(PreviewCase):

    @classmethod
    def setUpClass(cls):
        cls.browser = chromium.Chromium()
        cls.addClassCleanup(cls.browser.close)

    def open(self, *args):
        self.browser.events.clear()
        self.running = self.preview(*args)
        tab = self.browser.open(self.running.address)
        self.addCleanup(tab.close)
        tab.wait_until("document.body.dataset.shown")
        return tab

    def choose(self, tab, name, value):
        tab.run(f"(() => {{ const list = document.getElementById('{name}'); list.value = '{value}';"
                " list.dispatchEvent(new Event('change')); })()")

    def click(self, tab, selector):
        x, y = tab.run(
            "(() => { const frame = document.querySelector('iframe.shown'); "
            f"const inner = frame.contentDocument.querySelector('{selector}').getBoundingClientRect();"
            " const outer = frame.getBoundingClientRect();"
            " return [outer.x + inner.x + 3, outer.y + inner.y + 3]; })()")
        tab.click(x, y)


class Shows(BrowserCase):

    def test_the_report(self):
        tab = self.open()
        self.assertEqual("Health", tab.run(SHOWN + ".querySelector('h1').textContent"))
        self.assertEqual("health - rgen preview", tab.run("document.title"))
        self.assertEqual([], tab.problems())

    def test_a_saved_change(self):
        tab = self.open()
        self.write(TEMPLATE, PAGE.replace("<h1>", "<h1>New "))
        tab.wait_until(SHOWN + ".querySelector('h1').textContent === 'New Health'")

    def test_changes_one_after_the_other(self):
        tab = self.open()
        for number in range(5):
            self.write(TEMPLATE, PAGE.replace("<h1>", f"<h1>{number} "))
            tab.wait_until(SHOWN + f".querySelector('h1').textContent === '{number} Health'")

    def test_the_scroll_position_is_kept(self):
        self.write(TEMPLATE, LONG)
        tab = self.open()
        tab.run(SHOWN + ".defaultView.scrollTo(0, 1234)")
        self.write(TEMPLATE, LONG.replace("<h1>", "<h1>New "))
        tab.wait_until(SHOWN + ".querySelector('h1').textContent === 'New Health'")
        self.assertEqual(1234, tab.run(SHOWN + ".defaultView.scrollY"))

    def test_another_language(self):
        tab = self.open()
        self.choose(tab, "lang", "de")
        tab.wait_until(SHOWN + ".querySelector('h1').textContent === 'Zustand'")

    def test_another_format(self):
        tab = self.open()
        tab.run("document.querySelector('[data-format=txt]').click()")
        tab.wait_until(SHOWN + ".body.textContent.includes('State: fine <b>')")

    def test_the_pdf_has_its_page_and_a_link(self):
        tab = self.open()
        self.assertTrue(tab.run("document.getElementById('pdf').hidden"))
        tab.run("document.querySelector('[data-format=pdf]').click()")
        tab.wait_until("!document.getElementById('pdf').hidden")
        self.assertIn("/pdf?format=pdf", tab.run("document.getElementById('pdf').href"))

    def test_the_width(self):
        tab = self.open()
        for name, width in (("phone", 390), ("paper", 794)):
            self.choose(tab, "width", name)
            tab.wait_until(f"document.querySelector('iframe.shown').clientWidth === {width}")

    def test_a_reload_shows_the_same(self):
        tab = self.open()
        self.choose(tab, "lang", "de")
        tab.wait_until(SHOWN + ".querySelector('h1').textContent === 'Zustand'")
        tab.send("Page.reload")
        tab.wait_until(SHOWN + ".querySelector('h1').textContent === 'Zustand'")

    def test_that_rgen_has_ended(self):
        tab = self.open()
        self.end(self.running)
        tab.wait_until("document.getElementById('status').dataset.state === 'lost'")

    def test_it_asks_nothing_but_rgen(self):
        tab = self.open()
        self.choose(tab, "data", "hostile")
        tab.wait_until(SHOWN + ".body.textContent.includes('<script>')")
        for address in tab.requested():
            self.assertTrue(address.startswith((self.running.address, "about:")), address)


class Mistakes(BrowserCase):

    def test_lie_over_the_last_good_report_until_they_are_corrected(self):
        tab = self.open()
        self.write(TEMPLATE, PAGE.replace("</h1>", ""))
        tab.wait_until("!document.getElementById('mistakes').hidden")
        self.assertRegex(tab.run("document.getElementById('mistakes').textContent"),
                         r'health\.xsl:8:\d+: error: "h1" \(line 5\) is not closed')
        self.assertEqual("Health", tab.run(SHOWN + ".querySelector('h1').textContent"))
        self.write(TEMPLATE, PAGE.replace("<h1>", "<h1>New "))
        tab.wait_until("document.getElementById('mistakes').hidden")
        tab.wait_until(SHOWN + ".querySelector('h1').textContent === 'New Health'")

    def test_are_no_markup(self):
        tab = self.open()
        self.write(TEMPLATE, PAGE.replace("</h1>", "<img src='x' onerror='alert(1)'/>"))
        tab.wait_until("!document.getElementById('mistakes').hidden")
        self.assertEqual(0, tab.run("document.querySelectorAll('#mistakes img').length"))


class Places(BrowserCase):

    def test_a_click_shows_the_line(self):
        tab = self.open()
        self.click(tab, "#state")
        tab.wait_until("document.getElementById('place').textContent.endsWith('health.xsl:6:1')")
        self.assertTrue(tab.run("document.getElementById('source').textContent")
                        .startswith('<p id="state">'))

    def test_a_click_opens_the_editor(self):
        self.write("editor", "#!/bin/sh\necho \"$@\" > opened.part\n/bin/mv opened.part opened\n"
                   ).chmod(0o755)
        tab = self.open("--editor", "./editor -g {file}:{line}")
        self.click(tab, "h1")
        wait_for(self.folder / "opened")
        self.assertEqual(f"-g {self.folder / TEMPLATE}:5\n", self.text_of("opened"))


class HostileValues(BrowserCase):

    def expect_nothing_runs(self, tab):
        self.assertIsNone(tab.run(SHOWN + ".documentElement.dataset.hostile ?? null"))
        self.assertIsNone(tab.run("document.documentElement.dataset.hostile ?? null"))

    def test_are_texts_in_a_careful_template(self):
        tab = self.open()
        self.choose(tab, "data", "hostile")
        tab.wait_until(SHOWN + ".getElementById('state').textContent.includes('<script>')")
        self.expect_nothing_runs(tab)

    def test_do_not_run_in_a_careless_template(self):
        self.write_json("case/health.json", {f"Name {number}": "x" for number in range(20)})
        self.write(TEMPLATE, CARELESS)
        tab = self.open()
        self.choose(tab, "data", "hostile")
        tab.wait_until(SHOWN + ".querySelector('img') !== null")
        self.click(tab, "#out")
        tab.run(SHOWN + ".querySelector('#out').click()")
        self.expect_nothing_runs(tab)
