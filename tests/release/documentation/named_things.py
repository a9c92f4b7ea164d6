"""Checks names in the pages: files of the repository, names of C, CMake and the shell, and the
commands and options of the two programs.

SPDX-License-Identifier: MIT
"""

import re
import shlex
import subprocess

from markdown_page import project_pages, read_page

FOLDERS = ("docs", "src", "tests", "tools", "scripts", "examples", "templates", "include", "cmake",
           "bindings", "packaging", "fuzz", "benchmarks", ".ci")
PATH = re.compile(r"(?:%s)/[\w./*{},<>\[\]+-]*" % "|".join(re.escape(name) for name in FOLDERS))
# Placeholders, names that show a pattern, and names that scripts compose.
VARIABLE_PART = re.compile(r"[<>]|\.\.\.|/x/")
FORMS = {"rgen_lowerCamel", "RGEN_UPPER", "RGEN_LIBXSLT_", "RGEN_BOOST_"}
NAME = re.compile(r"(?<![\w./-])((?:rgen|RGEN|vellum|VELLUM)_\w+)(\.\.\.|\*)?")
SEARCHED_ENDINGS = {".h", ".hpp", ".c", ".cpp", ".txt", ".cmake", ".json", ".py", ".sh", ".env", "",
                    ".in", ".cs", ".rs", ".toml"}
OPTION = re.compile(r"(?<![\w-])(--?[A-Za-z][\w-]*)(?![\w.-])")


class ProgramOptions:
    """The commands of a program with their options, from its help."""

    def __init__(self, program, name):
        self.name = name
        self.commands = {}
        self.read(program, ())

    def read(self, program, words):
        text = subprocess.run([program, *words, "--help"], capture_output=True, text=True,
                              check=True).stdout
        listed = [line for line in text.splitlines() if line.startswith("  -")]
        self.commands[words] = set(OPTION.findall("\n".join(listed)))
        _, _, commands = text.partition("\nSubcommands:\n")
        for line in commands.splitlines():
            if re.match(r"  [a-z]+ ", line):
                self.read(program, (*words, line.split()[0]))

    def all_options(self):
        return set().union(*self.commands.values())

    def problem(self, words):
        """What is wrong with the words after the program's name, or an empty text."""
        command = ()
        while len(command) < len(words) and (*command, words[len(command)]) in self.commands:
            command = words[:len(command) + 1]
        follows = words[len(command):len(command) + 1]
        has_commands = any(len(known) > len(command) and known[:len(command)] == command
                           for known in self.commands)
        if has_commands and follows and re.fullmatch(r"[a-z]+", follows[0]):
            return f"{self.name} has no command {' '.join((*command, *follows))}"
        for word in words[len(command):]:
            option = OPTION.match(word)
            if option and option.group(1) not in self.commands[command]:
                return f"{' '.join((self.name, *command))} has no option {option.group(1)}"
        return ""


class KnownNames:
    def __init__(self, root, *programs):
        self.root = root
        self.programs = programs
        self.words = set()
        for path in self.searched_files():
            try:
                text = path.read_text(encoding="utf-8")
            except UnicodeDecodeError:
                continue
            self.words.update(re.findall(r"\b(?:rgen|RGEN|vellum|VELLUM)_\w+", text))
            self.words.add(path.stem)

    def searched_files(self):
        for folder in (*FOLDERS, "CMakeLists.txt", "CMakePresets.json"):
            top = self.root / folder
            for path in top.rglob("*") if top.is_dir() else [top]:
                if path.is_file() and path.suffix in SEARCHED_ENDINGS:
                    if "tests/release/documentation" not in path.as_posix():
                        yield path

    def has_word(self, word, is_beginning):
        if is_beginning:
            return any(known.startswith(word) for known in self.words)
        return word in self.words

    def has_path(self, text, page_folder):
        """True if the path exists in the repository, in the page's folder, or in the sample's data
        directory."""
        name = text.rstrip("/.,")
        if VARIABLE_PART.search(name):
            return True
        folders = (self.root, page_folder, self.root / "templates/acquisition")
        return all(any(found for folder in folders for found in folder.glob(plain))
                   for plain in without_braces(name))


def without_braces(pattern):
    """ "a{b,c}d" as "abd" and "acd"."""
    match = re.search(r"\{([^{}]*)\}", pattern)
    if not match:
        return [pattern]
    parts = [pattern[:match.start()] + part + pattern[match.end():]
             for part in match.group(1).split(",")]
    return [plain for part in parts for plain in without_braces(part)]


def command_words(text):
    """The words of a command up to the first operator of the shell."""
    try:
        words = shlex.split(text, comments=True)
    except ValueError:
        return ()
    end = next((i for i, word in enumerate(words) if re.fullmatch(r"[|&;<>]+.*", word)), len(words))
    return tuple(words[:end])


def commands_in(page):
    """Line and words of possible commands: lines of shell blocks, texts in backticks."""
    for line, text in page.code():
        yield line, command_words(text)
    for block in page.blocks:
        if block.language != "sh":
            continue
        joined = block.text.replace("\\\n", "  ")
        for offset, text in enumerate(joined.splitlines(), 1):
            yield block.line + offset, command_words(text)


def command_problems(page, known):
    for line, words in commands_in(page):
        for program in known.programs:
            # Alternatives such as get|set|unset are a pattern, not a command.
            if words and words[0] == program.name and not any("|" in word for word in words[:3]):
                text = program.problem(words[1:])
                if text:
                    yield line, text


def option_problems(page, known):
    """Options without a command, in the programs' own pages."""
    for program in known.programs:
        if page.path.name != f"{program.name}.md":
            continue
        every = set().union(*(one.all_options() for one in known.programs))
        for line, text in page.code():
            for option in OPTION.findall(text) if text.startswith("-") else []:
                if option not in every:
                    yield line, f"{program.name} has no option {option}"


def word_problems(page, known):
    texts = list(page.prose)
    for block in page.blocks:
        texts += [(block.line + i, text) for i, text in enumerate(block.text.splitlines(), 1)]
    for line, text in texts:
        for word, rest in NAME.findall(text):
            if word not in FORMS and not known.has_word(word, bool(rest)):
                yield line, f"nothing is named {word}"


def path_problems(page, known):
    for line, text in page.code():
        first = text.split()[0]
        if PATH.fullmatch(first) and not known.has_path(first, page.path.parent):
            yield line, f"there is no {first}"


def problems(root, known):
    found = []
    for path in project_pages(root):
        page = read_page(path)
        for check in (command_problems, option_problems, word_problems, path_problems):
            for line, text in check(page, known):
                found.append(f"{path.relative_to(root)}:{line}: {text}")
    return found
