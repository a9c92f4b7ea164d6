"""The choice of an engine: by name, by path, by the page, by the order of the list.

The cases for Windows register engines in the Wine prefix of this build.

SPDX-License-Identifier: MIT
"""

import shutil

from program_case import ON_WINDOWS, linux_only, native, search_path, windows_only
from vellum_case import (FIRST_ENGINE, PAGE, PROGRAM_ENDING, STAND_IN, VELLUM, VellumCase,
                         engines_on, path_here)

NONE_FOUND = ("no PDF engine was found; install chromium-headless-shell, or name an engine with "
              "VELLUM_ENGINE")
LINUX_ORDER = ["chromium-headless-shell", "chromium", "google-chrome", "microsoft-edge",
               "weasyprint"]
WINDOWS_ORDER = ["chrome-headless-shell", "microsoft-edge", "google-chrome", "weasyprint"]
ORDER = WINDOWS_ORDER if ON_WINDOWS else LINUX_ORDER
APP_PATHS = "Software\\Microsoft\\Windows\\CurrentVersion\\App Paths"


def page_that_asks_for(name, tag="meta name=\"vellum:engine\" content"):
    return f'<!doctype html><html><head><{tag}="{name}"></head><p>x'


class EngineCase(VellumCase):
    """No engine is named. The engines that a case installs are found: on Windows the first one in a
    folder next to a copy of vellum, all others on the search path."""

    def setUp(self):
        super().setUp()
        self.programs = self.base_folder / "programs"
        self.found = self.base_folder / "found"
        self.found.mkdir()
        self.program = self.put_program(VELLUM, self.programs, "vellum")

    def install(self, *names):
        for name in names:
            beside = ON_WINDOWS and name == FIRST_ENGINE
            folder = self.programs / "chrome-headless-shell-win64" if beside else self.found
            self.put_program(STAND_IN, folder, name)

    def uninstall(self, name):
        for folder in (self.programs / "chrome-headless-shell-win64", self.found):
            (folder / (name + PROGRAM_ENDING)).unlink(missing_ok=True)

    def environment(self, changes=None):
        return super().environment({**engines_on(self.found), **(changes or {})})

    def run_with(self, *args, page=PAGE, **settings):
        """Converts a page; returns the name of the engine's program and the result."""
        self.log_path().unlink(missing_ok=True)
        result = self.convert(*args, page=page, program=self.program, **settings)
        return (self.log().program if self.engine_ran else None), result

    def expect_engine(self, name, *args, **settings):
        ran, result = self.run_with(*args, **settings)
        self.assertEqual(name, ran, result)
        self.expect_done(result)

    def list_engines(self, **settings):
        result = self.vellum("--list-engines", program=self.program, **settings)
        self.assertEqual("", result.err)
        return result.code, [line.split("\t") for line in result.text.splitlines()]

    def registry(self, *words):
        result = self.start(*words, program="reg").finish()
        self.assertEqual(0, result.code, result)

    def register(self, root, program, path):
        """Registers a browser until the end of the case."""
        key = f"{root}\\{APP_PATHS}\\{program}"
        self.registry("add", key, "/ve", "/d", native(path), "/f")
        self.addCleanup(self.start_and_finish, "delete", key, "/f")
        return key

    def start_and_finish(self, *words):
        self.start(*words, program="reg").finish()


class WithoutEngine(EngineCase):

    def test_no_engine(self):
        ran, result = self.run_with()
        self.assertIsNone(ran)
        self.expect_error(result, 7, NONE_FOUND)
        self.assertEqual(f"vellum: {NONE_FOUND}\n", self.error_text())

    def test_the_list(self):
        self.assertEqual((7, [[name, "not found"] for name in ORDER]), self.list_engines())

    def test_the_check(self):
        self.expect_error(self.vellum("--check", program=self.program), 7, NONE_FOUND)

    def test_programs_that_are_no_engines(self):
        self.install("wkhtmltopdf", "firefox", "stand_in_engine")
        ran, result = self.run_with()
        self.assertIsNone(ran)
        self.expect_error(result, 7, NONE_FOUND)

    def test_the_page_asks_for_one(self):
        ran, result = self.run_with(page=page_that_asks_for("weasyprint"))
        self.assertIsNone(ran)
        self.assertEqual((7, [f"vellum: {NONE_FOUND}"]), (result.code, result.messages))

    @linux_only
    def test_a_folder_and_a_file_without_the_right_to_run(self):
        (self.found / "chromium-headless-shell").mkdir()
        (self.found / "chromium").write_bytes(b"")
        ran, result = self.run_with()
        self.assertIsNone(ran)
        self.expect_error(result, 7, NONE_FOUND)


class Named(EngineCase):

    def test_by_name(self):
        self.install(FIRST_ENGINE, "weasyprint", "wkhtmltopdf")
        for name in (FIRST_ENGINE, "weasyprint", "wkhtmltopdf"):
            self.expect_engine(name, "--engine", name)
            self.expect_engine(name, env={"VELLUM_ENGINE": name})

    def test_by_path(self):
        self.install(FIRST_ENGINE)
        self.put_program(STAND_IN, self.folder / "движок für 2026", "my engine")
        relative = "движок für 2026/my engine" + PROGRAM_ENDING
        for path in (relative, native(self.folder / relative)):
            self.expect_engine("my engine", "--engine", path)
            self.expect_engine("my engine", env={"VELLUM_ENGINE": path})

    def test_its_name_in_messages_is_that_of_the_file(self):
        path = self.put_program(STAND_IN, self.base_folder / "a.b", "my engine")
        _, result = self.run_with("--engine", native(path), does="nothing")
        self.expect_error(result, 5,
                          'my engine made no PDF: it said nothing; try "vellum --check"')

    def test_the_option_wins_over_the_variable(self):
        self.install(FIRST_ENGINE, "weasyprint")
        self.expect_engine("weasyprint", "--engine", "weasyprint",
                           env={"VELLUM_ENGINE": FIRST_ENGINE})

    def test_both_win_over_the_page(self):
        self.install(FIRST_ENGINE, "weasyprint")
        asking = page_that_asks_for(FIRST_ENGINE)
        self.expect_engine("weasyprint", "--engine", "weasyprint", page=asking)
        self.expect_engine("weasyprint", env={"VELLUM_ENGINE": "weasyprint"}, page=asking)

    def test_no_other_is_taken(self):
        self.install(FIRST_ENGINE)
        for name in ("nix", "wkhtmltopdf", "weasyprint", native(self.folder / "nix"), "no/nix"):
            with self.subTest(name=name):
                ran, result = self.run_with("--engine", name)
                self.assertIsNone(ran)
                self.expect_error(result, 7, f'the engine "{name}" was not found; '
                                  '"vellum --list-engines" shows those there are')

    def test_an_empty_variable_is_none(self):
        self.install(FIRST_ENGINE)
        self.expect_engine(FIRST_ENGINE, env={"VELLUM_ENGINE": ""})

    def test_one_that_cannot_be_started(self):
        path = self.found / ("broken" + PROGRAM_ENDING)
        path.write_bytes(b"this is no program")
        path.chmod(0o755)
        ran, result = self.run_with("--engine", native(path))
        self.assertIsNone(ran)
        self.expect_error_like(result, 5, ".*broken.*")
        self.assertEqual(result.err, self.error_text())


class AskedByThePage(EngineCase):
    """On Windows a page can ask for registered browsers."""

    # The name in the list, and the name of the program.
    BROWSER, BROWSER_PROGRAM = ("google-chrome", "chrome") if ON_WINDOWS else ("chromium", "chromium")

    def install_browser(self):
        """An engine that is not the first of the list."""
        if ON_WINDOWS:
            path = self.put_program(STAND_IN, self.base_folder / "browsers", self.BROWSER_PROGRAM)
            self.register("HKCU", path.name, path)
        else:
            self.install(self.BROWSER)

    def test_it_gets_it(self):
        self.install(FIRST_ENGINE)
        self.install_browser()
        for tag in ('meta name="vellum:engine" content',
                    f'META CONTENT="{self.BROWSER}" NAME="Vellum:Engine" x',
                    "meta name=vellum:engine content"):
            self.expect_engine(self.BROWSER_PROGRAM, page=page_that_asks_for(self.BROWSER, tag))

    def test_not_one_without_a_policy(self):
        """A page cannot choose an engine that ignores the policy."""
        self.install(FIRST_ENGINE, "weasyprint")
        ran, result = self.run_with(page=page_that_asks_for("weasyprint"))
        self.assertEqual(FIRST_ENGINE, ran)
        self.expect_done(result, 'the page asks for the engine "weasyprint", which knows no policy for '
                                 "pages; name it with --engine or VELLUM_ENGINE to use it")

    def test_one_without_a_policy_that_comes_first_anyway(self):
        self.install("weasyprint")
        self.expect_engine("weasyprint", page=page_that_asks_for("weasyprint"))

    def test_one_without_a_policy_that_the_caller_names(self):
        self.install(FIRST_ENGINE, "weasyprint")
        asking = page_that_asks_for("weasyprint")
        self.expect_engine("weasyprint", "--engine", "weasyprint", page=asking)
        self.expect_engine("weasyprint", env={"VELLUM_ENGINE": "weasyprint"}, page=asking)

    def test_it_is_not_there(self):
        self.install(FIRST_ENGINE)
        for name in ("nix", "weasyprint", "слово"):
            ran, result = self.run_with(page=page_that_asks_for(name))
            self.assertEqual(FIRST_ENGINE, ran)
            self.expect_done(result, f'the page asks for the engine "{name}", which was not found')

    def test_in_a_comment_it_asks_for_nothing(self):
        self.install(FIRST_ENGINE, "weasyprint")
        page = "<!-- " + page_that_asks_for("weasyprint") + " --><p>x"
        self.expect_engine(FIRST_ENGINE, page=page)

    def test_a_page_starts_no_other_program(self):
        self.install(FIRST_ENGINE, "other program")
        path = self.put_program(STAND_IN, self.folder, "other program")
        for name in ("other program", native(path), "./" + path.name):
            ran, result = self.run_with(page=page_that_asks_for(name))
            self.assertEqual(FIRST_ENGINE, ran, result)
            self.assertEqual((0, 1), (result.code, len(result.warnings)), result)


class Order(EngineCase):
    """On Windows without registered browsers, which have cases below."""

    def test_the_first_there_is(self):
        names = [FIRST_ENGINE, "weasyprint"] if ON_WINDOWS else ORDER
        self.install(*names)
        for name in names:
            self.expect_engine(name)
            self.uninstall(name)
        self.expect_error(self.run_with()[1], 7, NONE_FOUND)

    def test_the_list(self):
        self.install("weasyprint")
        code, rows = self.list_engines()
        self.assertEqual((0, ORDER), (code, [row[0] for row in rows]))
        self.assertEqual(["not found"] * (len(ORDER) - 1), [row[1] for row in rows[:-1]])
        self.assertEqual(self.found / ("weasyprint" + PROGRAM_ENDING),
                         path_here(rows[-1][1]))

    def test_the_list_has_each_program(self):
        self.install(FIRST_ENGINE, "weasyprint")
        rows = self.list_engines()[1]
        self.assertTrue(path_here(rows[0][1]).is_file(), rows)
        self.assertTrue(path_here(rows[-1][1]).is_file(), rows)

    @windows_only
    def test_of_several_folders_beside_vellum_the_last(self):
        for folder in ("chrome-headless-shell-1", "chrome-headless-shell-2", "chrome-headless"):
            self.put_program(STAND_IN, self.programs / folder, FIRST_ENGINE)
        rows = self.list_engines()[1]
        self.assertEqual("chrome-headless-shell-2", path_here(rows[0][1]).parent.name)

    @linux_only
    def test_several_folders_on_the_search_path(self):
        other = self.base_folder / "first"
        for folder in (other, self.found):
            self.put_program(STAND_IN, folder, "chromium")
        code, rows = self.list_engines(env=search_path(self.folder / "no", other, self.found))
        self.assertEqual((0, str(other / "chromium")), (code, rows[1][1]))


class Check(EngineCase):

    def test_it_says_with_what(self):
        self.install(FIRST_ENGINE)
        result = self.vellum("--check", program=self.program)
        self.assertEqual((0, ""), (result.code, result.err))
        first, second = result.text.splitlines()
        self.assertRegex(first, rf"\Aengine: {FIRST_ENGINE} \(.+\)\Z")
        self.assertTrue(path_here(first.split("(", 1)[1][:-1]).is_file(), first)
        self.assertRegex(second, r"\Apage: [1-9]\d* bytes, \d+ ms\Z")
        self.assertEqual([], self.names())

    def test_another_engine(self):
        self.install(FIRST_ENGINE, "weasyprint")
        result = self.vellum("--check", "--engine", "weasyprint", program=self.program)
        self.assertRegex(result.text, r"\Aengine: weasyprint \(")

    def test_one_that_fails(self):
        self.install(FIRST_ENGINE)
        result = self.vellum("--check", program=self.program,
                             env={"STAND_IN_ENGINE": "fail:no ink"})
        self.assertEqual(5, result.code, result)
        self.assertRegex(result.err, rf"\Avellum: {FIRST_ENGINE} made no PDF: no ink")
        self.assertEqual([], self.names())


@windows_only
class Registered(EngineCase):

    def put_into_program_files(self, *names):
        """Puts a browser into the folder that its installer uses, until the end of the case."""
        top = path_here("C:\\") / names[0]
        self.addCleanup(shutil.rmtree, top / names[1])
        return self.put_program(STAND_IN, top.joinpath(*names[1:-1]), names[-1])

    def expect_found(self, name, path):
        code, rows = self.list_engines()
        self.assertEqual(0, code)
        self.assertEqual(path, path_here(dict(rows)[name]), rows)

    def test_for_the_user_and_for_the_machine(self):
        for program, name in (("msedge", "microsoft-edge"), ("chrome", "google-chrome")):
            own = self.put_program(STAND_IN, self.base_folder / "für mich", program)
            shared = self.put_program(STAND_IN, self.base_folder / "for all", program)
            self.register("HKLM", program + ".exe", shared)
            self.expect_found(name, shared)
            key = self.register("HKCU", program + ".exe", own)
            self.expect_found(name, own)
            self.expect_engine(program, "--engine", name)
            self.registry("delete", key, "/f")
            self.expect_found(name, shared)

    def test_the_order(self):
        self.install("weasyprint", FIRST_ENGINE)
        for program in ("chrome", "msedge"):
            path = self.put_program(STAND_IN, self.base_folder / "browsers", program)
            self.register("HKCU", program + ".exe", path)
        self.expect_engine(FIRST_ENGINE)
        self.uninstall(FIRST_ENGINE)
        self.expect_engine("msedge")
        (self.base_folder / "browsers/msedge.exe").unlink()
        self.expect_engine("chrome")
        (self.base_folder / "browsers/chrome.exe").unlink()
        self.expect_engine("weasyprint")

    def test_the_program_folders(self):
        edge = self.put_into_program_files("Program Files (x86)", "Microsoft", "Edge",
                                           "Application", "msedge")
        chrome = self.put_into_program_files("Program Files", "Google", "Chrome", "Application",
                                             "chrome")
        self.expect_found("microsoft-edge", edge)
        self.expect_found("google-chrome", chrome)
        registered = self.put_program(STAND_IN, self.base_folder / "browsers", "msedge")
        self.register("HKCU", "msedge.exe", registered)
        self.expect_found("microsoft-edge", registered)
