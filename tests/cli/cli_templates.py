"""Data directories and templates that the cases make for themselves.

SPDX-License-Identifier: MIT
"""

GUID = "11111111-2222-3333-4444-555555555555"
OTHER_GUID = "66666666-7777-8888-9999-aaaaaaaaaaaa"


def stylesheet(body, method="text", top_level=""):
    """A whole stylesheet with one template for the root."""
    return ('<?xml version="1.0" encoding="UTF-8"?>\n'
            '<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">\n'
            f'<xsl:output method="{method}" encoding="UTF-8"/>\n{top_level}'
            f'<xsl:template match="/">{body}</xsl:template>\n</xsl:stylesheet>\n')


def each_property(body):
    """Instructions for every property, in the order of the names."""
    return ('<xsl:for-each select="data/properties/property"><xsl:sort select="@name"/>'
            f'{body}</xsl:for-each>')


# Lines "[NAME=TEXT]", one for each value of the report.
LISTING = stylesheet(
    each_property("<xsl:value-of select=\"concat('[', @name, '=', ., ']&#10;')\"/>"))
PAGE = stylesheet("<html><body>" + each_property('<p><xsl:value-of select="."/></p>')
                  + "</body></html>", "html")
BROKEN = "<xsl:stylesheet"
FAILING = stylesheet('<xsl:value-of select="no-such-function()"/>')


def marked(*texts):
    """A template of lines that are marked for translation."""
    lines = "".join(f'QT_TRANSLATE_NOOP("QObject", "{text}")&#10;' for text in texts)
    return stylesheet(lines)


def configuration(types):
    """config.xml for rows of template file, GUID and persistent data file."""
    rows = "".join(f'    <type guid="{guid}">\n      <persistDataFile>{data}</persistDataFile>\n'
                   f"      <reportTypeFile>{template}</reportTypeFile>\n    </type>\n"
                   for template, guid, data in types)
    return ('<?xml version="1.0" encoding="UTF-8"?>\n<config>\n  <reportTypes>\n'
            f"{rows}  </reportTypes>\n</config>\n")


def catalogue(texts, language="de"):
    """A catalogue with a header for a dictionary of texts."""
    entries = "".join(f'\nmsgid "{text}"\nmsgstr "{translation}"\n'
                      for text, translation in texts.items())
    return ('msgid ""\nmsgstr ""\n"Content-Type: text/plain; charset=UTF-8\\n"\n'
            f'"Language: {language}\\n"\n{entries}')


def simulated_input(*properties):
    """A file of simulated input for rows of name, type, hint and text."""
    rows = "".join(f'    <property name="{name}" type="{kind}" hint="{hint}">{text}</property>\n'
                   for name, kind, hint, text in properties)
    return f'<?xml version="1.0"?>\n<data>\n  <properties>\n{rows}  </properties>\n</data>\n'
