"""Lines of generated text.

SPDX-License-Identifier: MIT
"""

import textwrap

WIDTH = 100


def wrapped(text: str, first: str, later: str = "") -> list[str]:
    """The words of a text in lines that begin with `first`, later ones with `later` if given."""
    return textwrap.wrap(text, WIDTH, initial_indent=first, subsequent_indent=later or first,
                         break_long_words=False, break_on_hyphens=False)
