<?xml version="1.0" encoding="UTF-8"?>
<!--
  SPDX-License-Identifier: MIT

  Inventory of files as one HTML page: name, size, date and first bytes of each. The values are a
  list: "File.0001.Path", ".Size", ".Changed" and ".Start"; "Inventory.Folder" and
  "Inventory.Created" are shown above it. scripts/inventory-data prints such values for a folder.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:output method="html" encoding="UTF-8" indent="no" doctype-system="about:legacy-compat"/>
<xsl:key name="p" match="property" use="@name"/>
<xsl:key name="list" match="property[contains(substring-after(@name, '.'), '.')]"
  use="concat(substring-before(@name, '.'), '*', substring-after(substring-after(@name, '.'), '.'))"/>
<xsl:decimal-format name="grouped" decimal-separator="." grouping-separator=","/>

<xsl:template match="/">
  <html lang="en">
    <head>
      <meta name="viewport" content="width=device-width, initial-scale=1"/>
      <title>Inventory of <xsl:value-of select="key('p', 'Inventory.Folder')"/></title>
      <style>
body{margin:24px auto;padding:0 16px;max-width:1100px;color:#1c2733;font:14px/1.45 "DejaVu Sans","Segoe UI","Liberation Sans",Arial,sans-serif}
h1{font-size:24px;color:#123f5a;margin:0 0 4px}.soft{color:#52606f;margin:0 0 18px}
table{border-collapse:collapse;width:100%}thead{display:table-header-group}tr{break-inside:avoid;page-break-inside:avoid}
th,td{text-align:left;vertical-align:baseline;padding:4px 8px;border-bottom:1px solid #e1e7ed}
thead th{background:#e9eff5;color:#123f5a;border-bottom:1px solid #b9c7d4}
tbody th{font-weight:normal;word-wrap:break-word;overflow-wrap:anywhere}
.num{text-align:right;white-space:nowrap}.date{white-space:nowrap}
.dump{font-family:"DejaVu Sans Mono",Consolas,"Liberation Mono","Courier New",monospace;font-size:11px;white-space:nowrap}
@page{size:A4 landscape;margin:12mm;@bottom-right{content:counter(page) " / " counter(pages);font:8pt "DejaVu Sans",Arial,sans-serif}}
@media print{body{margin:0;padding:0;max-width:none;font-size:8pt}.dump{font-size:6pt}}
      </style>
    </head>
    <body>
      <h1>Inventory of <xsl:value-of select="key('p', 'Inventory.Folder')"/></h1>
      <p class="soft">
        <xsl:value-of select="normalize-space(key('p', 'Inventory.Created'))"/>
        <xsl:text>, </xsl:text>
        <xsl:value-of select="format-number(count(key('list', 'File*Path')), '#,##0', 'grouped')"/>
        <xsl:text> files, </xsl:text>
        <xsl:value-of select="format-number(sum(key('list', 'File*Size')), '#,##0', 'grouped')"/>
        <xsl:text> bytes</xsl:text>
      </p>
      <table>
        <thead><tr>
          <th scope="col">File</th><th scope="col" class="num">Bytes</th>
          <th scope="col">Changed</th><th scope="col">First 32 bytes</th>
        </tr></thead>
        <tbody>
          <xsl:for-each select="key('list', 'File*Path')">
            <xsl:sort select="substring-before(substring-after(@name, '.'), '.')" data-type="number"/>
            <xsl:variable name="file" select="substring-before(@name, 'Path')"/>
            <xsl:variable name="start" select="normalize-space(key('p', concat($file, 'Start')))"/>
            <tr>
              <th scope="row"><xsl:value-of select="."/></th>
              <td class="num"><xsl:value-of select="format-number(key('p', concat($file, 'Size')), '#,##0', 'grouped')"/></td>
              <td class="date"><xsl:value-of select="normalize-space(key('p', concat($file, 'Changed')))"/></td>
              <td class="dump"><xsl:value-of select="substring($start, 1, 47)"/><br/><xsl:value-of select="substring($start, 49)"/></td>
            </tr>
          </xsl:for-each>
        </tbody>
      </table>
    </body>
  </html>
</xsl:template>
</xsl:stylesheet>
