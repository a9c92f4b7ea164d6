"""Translators, threads and cancellation through the Python package.

SPDX-License-Identifier: MIT
"""

import asyncio
import contextvars
import gc
import sys
import threading
import unittest
import weakref
from concurrent.futures import ThreadPoolExecutor

from binding_case import LIBRARY, TYPE, BindingCase, descriptors, marked, value_of
from strata_repgenlib import Cancelled, Generator, ReenteredError, Request, TranslatorError


class Translators(BindingCase):
    def setUp(self):
        super().setUp()
        self.put_template(marked("a") + "|" + marked("b &lt; c"))

    def report(self):
        return self.report_of("x")

    def test_they_are_asked_for_each_marked_text(self):
        asked = []
        self.own.set_translator(lambda text: asked.append(text) or f"{text}\u00e4\U0001f600")
        self.assertEqual("a\u00e4\U0001f600|b < c\u00e4\U0001f600", self.report())
        self.assertEqual(["a", "b &lt; c"], asked)
        self.own.set_translator(None)
        self.assertEqual("a|b < c", self.report())

    def test_plain_translations_are_escaped_and_markup_is_not(self):
        self.own.set_translator({"a": "<&>", "b &lt; c": "&lt;&#65;"}.__getitem__)
        self.assertEqual("<&>|<A", self.report())
        self.own.set_translator(lambda text: "&#65;", markup=True)
        self.assertEqual("A|A", self.report())

    def test_no_translation_damages_what_follows_it(self):
        rows = (("a]]>b", "a]]>b"), ("a > b", "a > b"), ("\a\b\v\f", "\ufffd" * 4),
                ("\ufffe\uffff", "\ufffd\ufffd"), ("&foo; &#xD800; & x;", "&foo; &#xD800; & x;"),
                ("a\tb\r\nc\x7f", "a\tb\nc\x7f"))
        for translation, shown in rows:
            with self.subTest(translation=translation):
                self.put_template(marked("a") + "|&lt; &amp; &gt;")
                self.own.set_translator(lambda text: translation)
                self.assertEqual(f"{shown}|< & >", self.report())

    def test_what_the_original_has_is_markup_but_no_damage(self):
        rows = (("&amp; &lt;", "&lt; & &foo; &#1; &#65; &amp ;", "< & &foo; \ufffd A &amp ;"),
                ("<b>a</b>", "<b>]]></b>", "]]>"), ("a &gt; >", "&gt; ]]> >", "> ]]> >"),
                ("]]>", "\na]]>x", "\na]]>x"), ("<b>a</b>", "<![CDATA[<b>]]>", "<b>"))
        for original, translation, shown in rows:
            with self.subTest(original=original):
                self.put_template(marked(original) + "|&lt; &amp; &gt;")
                self.own.set_translator(lambda text: translation)
                self.assertEqual(f"{shown}|< & >", self.report())
        self.own.set_translator(lambda text: "\x01 &#xFFFE; &#65;<x/>", markup=True)
        self.assertEqual("\ufffd \ufffd A|< & >", self.report())
        for markup in ("&foo;", "a & b; c", "&nbsp;"):
            self.own.set_translator(lambda text: markup, markup=True)
            with self.assertRaisesRegex(TranslatorError, "a translation cannot be used"):
                self.report()

    def test_a_text_that_comes_back_unchanged_stays_as_it_is(self):
        self.put_template(marked("]]&gt; &lt; > &amp; it's"))
        for markup in (False, True):
            self.own.set_translator(lambda text: text, markup=markup)
            self.assertEqual("]]> < > & it's", self.report())
        self.put_template(marked("a&foo;b"))
        for translate in (None, lambda text: text):
            self.own.set_translator(translate)
            self.assertEqual("ab", self.report())

    def test_an_apostrophe_ends_no_attribute(self):
        original = "it's"
        self.put_template(f"<p title='{marked('a')}'>{marked(original)}</p>")
        path = self.folder / ".rgen/templates/html/report.xsl"
        path.write_text(path.read_text().replace('method="text"', 'method="html"'))
        self.own.set_translator(lambda text: "l'un' x='1")
        self.assertEqual("<p title=\"l'un' x='1\">l'un' x='1</p>\n", self.report())

    def test_one_of_the_constructor_is_used(self):
        with Generator(self.folder, translate=str.upper, library=LIBRARY) as generator:
            report = generator.generate_bytes(Request(TYPE, values={"v": 1}))
        self.assertEqual(b"A|B &LT; C".split(b"|")[0], report.split(b"|")[0])

    def test_what_they_raise_leaves_the_call_and_does_no_harm(self):
        calls = []

        def fail(text):
            calls.append(text)
            raise LookupError(text)

        path = self.folder / "report.html"
        request = Request(TYPE, values={"v": 1})
        self.own.set_translator(fail)
        for function, arguments in ((self.own.generate_bytes, ()),
                                    (self.own.generate_file, (path,)),
                                    (self.own.open_report, (self.folder / "other",))):
            before = descriptors()
            with self.assertRaisesRegex(LookupError, "a"):
                function(request, *arguments)
            self.assertEqual(before, descriptors())
        self.assertEqual(["a"] * 3, calls)
        self.assertEqual("a|b < c", path.read_text())
        for wrong, kind in ((None, TypeError), (b"x", TypeError), ("a\0b", ValueError),
                            ("\ud800", UnicodeEncodeError)):
            self.own.set_translator(lambda text, wrong=wrong: wrong)
            with self.assertRaises(kind):
                self.report()
        self.own.set_translator(None)
        self.assertEqual("a|b < c", self.report())

    def test_context_variables_are_those_of_the_caller(self):
        language = contextvars.ContextVar("language", default="en")
        self.own.set_translator(lambda text: language.get())
        language.set("de")
        self.assertEqual("de|de", self.report())

    def test_even_the_wish_to_end_the_process_waits_for_the_end(self):
        def leave(_text):
            sys.exit(3)

        self.own.set_translator(leave)
        with self.assertRaises(SystemExit):
            self.report()

    def test_one_that_calls_its_own_generator_gets_an_error(self):
        own, request = self.own, Request(TYPE, values={"v": 1})
        methods = (lambda: own.generate_bytes(request), own.close, own.cancel,
                   lambda: own.persistent_data(TYPE), lambda: own.set_translator(None),
                   lambda: own.set_folder(self.folder),
                   lambda: asyncio.run(own.generate_bytes_async(request)))
        for call in methods:
            own.set_translator(lambda text, call=call: str(call()))
            with self.assertRaises(ReenteredError) as raised:
                self.report()
            self.assertIsInstance(raised.exception, RuntimeError)
            with ThreadPoolExecutor(1) as pool, self.assertRaises(ReenteredError):
                pool.submit(own.generate_bytes, request).result()
            with self.assertRaises(ReenteredError):
                asyncio.run(own.generate_bytes_async(request))
        own.set_translator(None)
        self.assertEqual("a|b < c", self.report())

    def test_one_may_use_another_generator(self):
        with Generator(self.folder, translate=str.upper, library=LIBRARY) as other:
            self.own.set_translator(
                lambda text: other.generate_bytes(Request(TYPE, values={"v": 1})).decode())
            self.put_template(marked("a"))
            self.assertEqual("A", self.report())

    def test_they_live_until_the_next_is_set_and_no_longer(self):
        class Catalogue:
            def translate(self, text):
                return text * 2

        catalogue = Catalogue()
        watched = weakref.ref(catalogue)
        self.own.set_translator(catalogue.translate)
        del catalogue
        gc.collect()
        self.assertEqual("aa|b < cb < c", self.report())
        self.own.set_translator(None)
        gc.collect()
        self.assertIsNone(watched())

    def test_a_generator_that_nobody_has_ends(self):
        generator = Generator(self.folder, translate=str.upper, library=LIBRARY)
        generator.generate_bytes(Request(TYPE, values={"v": 1}))
        watched = weakref.ref(generator)
        del generator
        gc.collect()
        self.assertIsNone(watched())


class Threads(BindingCase):
    def test_reports_on_one_generator_and_on_several(self):
        self.put_template(marked("a") + value_of("v"))
        self.own.set_translator(lambda text: text * 3)
        others = [Generator(self.folder, translate=str.upper, library=LIBRARY) for _ in range(2)]
        self.addCleanup(lambda: [generator.close() for generator in others])

        def make(number):
            generator = (self.own, *others)[number % 3]
            return generator.generate_bytes(Request(TYPE, values={"v": number}))

        with ThreadPoolExecutor(8) as pool:
            reports = list(pool.map(make, range(300)))
        self.assertEqual([("aaa" if number % 3 == 0 else "A") + str(number)
                          for number in range(300)], [report.decode() for report in reports])

    def test_each_thread_gets_what_its_own_translations_raised(self):
        self.put_template(marked("a"))

        def fail(_text):
            raise LookupError(threading.get_ident())

        def make(_number):
            try:
                self.own.generate_bytes(Request(TYPE, values={"v": 1}))
            except LookupError as error:
                return error.args[0] == threading.get_ident()

        self.own.set_translator(fail)
        with ThreadPoolExecutor(4) as pool:
            self.assertEqual([True] * 60, list(pool.map(make, range(60))))

    def test_other_threads_run_while_a_template_does(self):
        entered, left = threading.Event(), threading.Event()
        self.put_template(marked("a"))
        self.own.set_translator(lambda text: entered.set() or str(left.wait(60)))
        with ThreadPoolExecutor(1) as pool:
            report = pool.submit(self.own.generate_bytes, Request(TYPE, values={"v": 1}))
            self.assertTrue(entered.wait(60))
            self.assertEqual({}, self.own.simulated_input(self.folder / "missing"))
            left.set()
            self.assertEqual(b"True", report.result())

    def test_closing_waits_for_the_calls(self):
        entered, left = threading.Event(), threading.Event()
        self.put_template(marked("a"))
        self.own.set_translator(lambda text: entered.set() or str(left.wait(60)))
        with ThreadPoolExecutor(2) as pool:
            report = pool.submit(self.own.generate_bytes, Request(TYPE, values={"v": 1}))
            self.assertTrue(entered.wait(60))
            closing = pool.submit(self.own.close)
            left.set()
            closing.result()
            self.assertTrue(report.done() or report.result())
            self.assertEqual(b"True", report.result())


class Cancellation(BindingCase):
    def test_another_type_does_not_concern_it(self):
        output = self.folder / "report.pdf"
        started = self.park_converter(("write", output, "%PDF-1.7 %%EOF"))
        with ThreadPoolExecutor(1) as pool:
            report = pool.submit(self.own.generate_file, Request(TYPE, "pdf", {"v": 1}), output)
            self.wait_for(started)
            self.own.cancel("ffffffff-0000-0000-0000-000000000000")
            self.release_converter()
            self.assertEqual(output, report.result())

    def test_another_thread_cancels(self):
        started = self.park_converter()
        with ThreadPoolExecutor(1) as pool:
            report = pool.submit(self.own.generate_file, Request(TYPE, "pdf", {"v": 1}),
                                 self.folder / "report.pdf")
            self.wait_for(started)
            self.own.cancel(TYPE)
            with self.assertRaises(Cancelled) as raised:
                report.result()
        self.assertEqual("RGEN_CANCELED", raised.exception.name)

    def test_another_thread_cancels_the_main_thread(self):
        started = self.park_converter()
        for report_type in (TYPE, None):
            with ThreadPoolExecutor(1) as pool:
                pool.submit(lambda: (self.wait_for(started), self.own.cancel(report_type)))
                with self.assertRaises(Cancelled):
                    self.own.generate_file(Request(TYPE, "pdf", {"v": 1}), self.folder / "r.pdf")
            started.unlink()


if __name__ == "__main__":
    unittest.main()
