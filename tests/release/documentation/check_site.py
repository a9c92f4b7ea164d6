"""Makes the site and checks it.

SPDX-License-Identifier: MIT
"""

import subprocess
import sys
import tempfile
from pathlib import Path

import markdown_page
import site_pages

ROOT = Path(__file__).resolve().parents[3]
sys.path[:0] = [str(ROOT / "tests/structure"), str(ROOT / "scripts/lib")]

# In tests/structure and scripts/lib.
from project_files import finish, header_exports, problem
from site_filter import page_name


def page_titles():
    for path in markdown_page.project_pages(ROOT):
        page = markdown_page.read_page(path)
        yield page.headings[0][2].replace("`", "")


def code_problems(site):
    """Headings show code as plain text; they are left out."""
    for path in markdown_page.project_pages(ROOT):
        page = markdown_page.read_page(path)
        headings = {line for line, _, _ in page.headings}
        codes = {code for line, code in page.code() if line not in headings}
        name = "index" if path == ROOT / "README.md" else page_name(path)
        yield from site_pages.code_problems(site / f"{name}.html", codes, header_exports())


def main():
    with tempfile.TemporaryDirectory(prefix="rgen-site-") as folder:
        done = subprocess.run([ROOT / "scripts/site", folder], capture_output=True, text=True)
        if done.returncode != 0:
            problem(done.stdout + done.stderr)
            finish("site")
        site = Path(folder)
        for text in site_pages.problems(site, header_exports(), page_titles()):
            problem(text)
        for text in code_problems(site):
            problem(text)
    finish("site")


if __name__ == "__main__":
    main()
