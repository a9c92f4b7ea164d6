<?xml version="1.0" encoding="UTF-8"?>
<!-- SPDX-License-Identifier: MIT
     A page with ten rows, each looked up by name, the three persistent values and translated texts. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" indent="yes" encoding="UTF-8"/>

  <xsl:template match="/">
    <html>
      <head>
        <title>QT_TRANSLATE_NOOP("QObject", "Report title")</title>
      </head>
      <body>
        <h1>QT_TRANSLATE_NOOP("QObject", "Measurement report")</h1>
        <p>
          <xsl:value-of select="/data/properties/property[@name='Company']"/>
          <xsl:text>, </xsl:text>
          <xsl:value-of select="/data/properties/property[@name='Department']"/>
          <xsl:text>, </xsl:text>
          <xsl:value-of select="/data/properties/property[@name='Room']"/>
        </p>
        <table>
          <tr>
            <th>QT_TRANSLATE_NOOP("QObject", "Name")</th>
            <th>QT_TRANSLATE_NOOP("QObject", "Value")</th>
          </tr>
          <tr>
            <td>Sample</td>
            <td><xsl:value-of select="/data/properties/property[@name='Sample']"/></td>
          </tr>
          <tr>
            <td>Operator</td>
            <td><xsl:value-of select="/data/properties/property[@name='Operator']"/></td>
          </tr>
          <tr>
            <td>Method</td>
            <td><xsl:value-of select="/data/properties/property[@name='Method']"/></td>
          </tr>
          <tr>
            <td>Series</td>
            <td><xsl:value-of select="/data/properties/property[@name='Series']"/></td>
          </tr>
          <tr>
            <td>Instrument</td>
            <td><xsl:value-of select="/data/properties/property[@name='Instrument']"/></td>
          </tr>
          <tr>
            <td>Range</td>
            <td><xsl:value-of select="/data/properties/property[@name='Range']"/></td>
          </tr>
          <tr>
            <td>Temperature</td>
            <td><xsl:value-of select="/data/properties/property[@name='Temperature']"/></td>
          </tr>
          <tr>
            <td>Humidity</td>
            <td><xsl:value-of select="/data/properties/property[@name='Humidity']"/></td>
          </tr>
          <tr>
            <td>Duration</td>
            <td><xsl:value-of select="/data/properties/property[@name='Duration']"/></td>
          </tr>
          <tr>
            <td>Remark</td>
            <td><xsl:value-of select="/data/properties/property[@name='Remark']"/></td>
          </tr>
        </table>
        <xsl:if test="/data/properties/property[@name='Remark'] != ''">
          <p>QT_TRANSLATE_NOOP("QObject", "There is a remark.")</p>
        </xsl:if>
      </body>
    </html>
  </xsl:template>
</xsl:stylesheet>
