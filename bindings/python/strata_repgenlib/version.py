"""The version of the package: that of the library's header, which a test compares.

SPDX-License-Identifier: MIT
"""

__version__ = "0.1.0"
