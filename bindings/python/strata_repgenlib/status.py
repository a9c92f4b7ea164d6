"""The statuses of the library.

Written by bindings/generate_declarations.py from the public headers; do not edit.

SPDX-License-Identifier: MIT
"""

import enum


class Status(enum.IntEnum):
    """The outcomes of the library's operations, by their names in C; negative is failure."""

    # The operation did what was asked.
    RGEN_OK = 0x00000000
    # A required pointer argument is null.
    RGEN_E_BAD_PARAMETER = 0xC0000001 - (1 << 32)
    # Nothing exists at the path passed to rgen_setDataDirPath.
    RGEN_E_DIR_NOT_FOUND = 0xC0000002 - (1 << 32)
    # The data directory was missing, and somebody else has just created it; set the path again.
    RGEN_E_CREATE_DIR = 0xC0000003 - (1 << 32)
    # The default config.xml cannot be written.
    RGEN_E_CREATE_CONFIG = 0xC0000004 - (1 << 32)
    # config.xml cannot be opened, or no part of it can be parsed.
    RGEN_E_OPEN_CONFIG = 0xC0000005 - (1 << 32)
    # The persistent data file is missing, or no part of it can be parsed.
    RGEN_E_OPEN_PERSIST = 0xC0000006 - (1 << 32)
    # Values, pairs and persistent data together hold no property.
    RGEN_E_EMPTY_INPUT = 0xC0000007 - (1 << 32)
    # config.xml has no usable entry for the GUID.
    RGEN_E_GUID_NOT_IN_CONFIG = 0xC0000008 - (1 << 32)
    # There is no template file in the folder of the output format.
    RGEN_E_TEMPLATE_NOT_FOUND = 0xC0000009 - (1 << 32)
    # The output format is not "html", "pdf" or "txt".
    RGEN_E_UNKNOWN_FORMAT = 0xC000000A - (1 << 32)
    # The output path is a directory, or the old output file cannot be removed.
    RGEN_E_OVERWRITE_OUTPUT = 0xC000000B - (1 << 32)
    # The output file, or the temporary HTML file next to it, cannot be created.
    RGEN_E_CREATE_OUTPUT = 0xC000000C - (1 << 32)
    # Writing the delete-on-close file failed.
    RGEN_E_WRITE_OUTPUT = 0xC000000D - (1 << 32)
    # The output mode is not 0, 1 or 2.
    RGEN_E_UNKNOWN_OUTPUT_MODE = 0xC000000E - (1 << 32)
    # Only a part of the bytes could be written to the delete-on-close file.
    RGEN_E_WRITE_ALL_OUTPUT = 0xC000000F - (1 << 32)
    # The old persistent data file cannot be removed.
    RGEN_E_DELETE_PERSIST = 0xC0000010 - (1 << 32)
    # The persistent data file, or the dump file, cannot be written.
    RGEN_E_CREATE_PERSIST = 0xC0000011 - (1 << 32)
    # The converter "vellum" cannot be started.
    RGEN_E_RUN_EXTERNAL = 0xC0000012 - (1 << 32)
    # The exit code of the converter cannot be queried.
    RGEN_E_EXTERNAL_FAILED = 0xC0000013 - (1 << 32)
    # The simulation file is missing, or no part of it can be parsed (used internally only).
    RGEN_E_OPEN_SIMULATION = 0xC0000014 - (1 << 32)
    # The old dump file cannot be removed.
    RGEN_E_DELETE_DUMP = 0xC0000015 - (1 << 32)
    # Described, but returned by no operation.
    RGEN_E_XPATH_DOCUMENT = 0xC0010001 - (1 << 32)
    # libxml2 cannot create an XPath context (out of memory).
    RGEN_E_XPATH_CONTEXT = 0xC0010002 - (1 << 32)
    # libxml2 cannot evaluate an XPath expression (out of memory).
    RGEN_E_XPATH_SEARCH = 0xC0010003 - (1 << 32)
    # Described, but returned by no operation.
    RGEN_E_NO_PERSIST_IN_CONFIG = 0xC0010004 - (1 << 32)
    # Described, but returned by no operation.
    RGEN_E_XPATH_NOT_NODE = 0xC0010005 - (1 << 32)
    # A file name found in the configuration is empty (a safeguard that no file triggers).
    RGEN_E_XPATH_NODE_EMPTY = 0xC0010006 - (1 << 32)
    # config.xml has no "type" element with a "guid" attribute under /config/reportTypes.
    RGEN_E_NO_TYPE_MAP = 0xC0010007 - (1 << 32)
    # No "type" element of config.xml has a valid GUID and both file names.
    RGEN_E_NO_VALID_TYPE_MAP = 0xC0010008 - (1 << 32)
    # The persistent data file has no named "property" element.
    RGEN_E_NO_PERSIST_VALUES = 0xC0010009 - (1 << 32)
    # No "property" of the persistent data file has both a name and a text.
    RGEN_E_NO_VALID_PERSIST_VALUES = 0xC001000A - (1 << 32)
    # The template cannot be read, parsed or compiled.
    RGEN_E_XSLT_PARSE = 0xC0020001 - (1 << 32)
    # The template failed while it was applied to the data.
    RGEN_E_XSLT_APPLY = 0xC0020002 - (1 << 32)
    # The template produced no output.
    RGEN_E_XSLT_RESULT = 0xC0020003 - (1 << 32)
    # Catch-all for a failure without a status of its own; returned by no operation.
    RGEN_E_UNKNOWN = 0xC000FFFF - (1 << 32)
    # rgen_cancel reached the generation. Negative, so it counts as a failure.
    RGEN_CANCELED = 0x80000001 - (1 << 32)
