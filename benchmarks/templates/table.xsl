<?xml version="1.0" encoding="UTF-8"?>
<!-- SPDX-License-Identifier: MIT
     A page with one table over all properties. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" indent="yes" encoding="UTF-8"/>

  <xsl:template match="/">
    <html>
      <head>
        <title>QT_TRANSLATE_NOOP("QObject", "Report title")</title>
      </head>
      <body>
        <h1>QT_TRANSLATE_NOOP("QObject", "All measurements")</h1>
        <table>
          <tr>
            <th>Name</th>
            <th>Value</th>
          </tr>
          <xsl:for-each select="/data/properties/property">
            <tr>
              <td>
                <xsl:value-of select="@name"/>
              </td>
              <td>
                <xsl:value-of select="."/>
              </td>
            </tr>
          </xsl:for-each>
        </table>
        <p>
          <xsl:text>Rows: </xsl:text>
          <xsl:value-of select="count(/data/properties/property)"/>
        </p>
      </body>
    </html>
  </xsl:template>
</xsl:stylesheet>
