"""The version of the package; a test compares it with that of the library's header.

SPDX-License-Identifier: MIT
"""

__version__ = "0.1.0"
