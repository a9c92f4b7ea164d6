<?xml version="1.0" encoding="UTF-8"?>
<!--
  SPDX-License-Identifier: MIT

  Disk-imaging acquisition report as one HTML page without scripts and external files, for screen
  and A4 paper. A row without a value and a section without list entries are omitted. The names of
  the values are listed in docs/template-guide.md.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:output method="html" encoding="UTF-8" indent="no" doctype-system="about:legacy-compat"/>
<xsl:key name="p" match="property" use="@name"/>
<!-- The properties of a list by the last part of their names: "Err.10.Address" under "Err*Address". -->
<xsl:key name="list" match="property[contains(substring-after(@name, '.'), '.')]"
  use="concat(substring-before(@name, '.'), '*', substring-after(substring-after(@name, '.'), '.'))"/>

<!-- Thousands and decimal separator, then the order of year, month and day: marked like any text. -->
<xsl:variable name="separators">QT_TRANSLATE_NOOP("QObject", ",.")</xsl:variable>
<xsl:variable name="dateOrder">QT_TRANSLATE_NOOP("QObject", "Y-M-D")</xsl:variable>
<xsl:variable name="capacity" select="number(key('p', 'Device.Capacity'))"/>
<xsl:variable name="sectors" select="number(key('p', 'Device.Sectors'))"/>
<xsl:variable name="sectorSize" select="number(key('p', 'Device.SectorSize'))"/>
<xsl:variable name="duration" select="number(key('p', 'Acquisition.Duration'))"/>
<xsl:variable name="speed" select="$capacity div $duration"/>
<xsl:variable name="badAreas" select="key('list', 'Err*Address')"/>
<xsl:variable name="badSectors" select="sum(key('list', 'Err*Sectors'))"/>
<xsl:variable name="differing" select="count(key('list', 'Hash*Source')[
  translate(., 'abcdef', 'ABCDEF') != translate(key('p', concat(
  substring-before(@name, 'Source'), 'Image')), 'abcdef', 'ABCDEF')])"/>
<xsl:variable name="dump" select="normalize-space(key('p', 'Sector.First'))"/>

<xsl:template match="/">
  <html lang='QT_TRANSLATE_NOOP("QObject", "en")'>
    <head>
      <meta name="viewport" content="width=device-width, initial-scale=1"/>
      <title>
        <xsl:text>QT_TRANSLATE_NOOP("QObject", "Acquisition report")</xsl:text>
        <xsl:value-of select="concat(' ', key('p', 'Report.Number'))"/>
      </title>
      <xsl:call-template name="style"/>
    </head>
    <body>
      <div class="sheet">
        <xsl:call-template name="header"/>
        <xsl:call-template name="verdict"/>
        <xsl:call-template name="figures"/>
        <xsl:call-template name="cards"/>
        <xsl:if test="count(key('list', 'Speed*Position')) &gt; 1 and sum(key('list', 'Speed*Value')) &gt; 0"><xsl:call-template name="chart"/></xsl:if>
        <xsl:if test="$badAreas"><xsl:call-template name="bad-areas"/></xsl:if>
        <xsl:if test="key('list', 'Hash*Source')"><xsl:call-template name="hashes"/></xsl:if>
        <xsl:if test="$dump != ''"><xsl:call-template name="first-sector"/></xsl:if>
        <xsl:if test="key('list', 'Note*Text')"><xsl:call-template name="notes"/></xsl:if>
        <xsl:call-template name="signatures"/>
        <div class="foot">
          <p>QT_TRANSLATE_NOOP("QObject", "All times are local times of the imaging workstation. 1 GB is 1,000,000,000 bytes, 1 GiB is 1,073,741,824 bytes.")</p>
          <p><xsl:value-of select="key('p', 'Lab.Name')"/>, <xsl:value-of select="key('p', 'Report.Number')"/></p>
        </div>
      </div>
    </body>
  </html>
</xsl:template>

<!-- ==== Style ==== -->

<xsl:template name="style">
  <style>
html{-webkit-text-size-adjust:100%}
body{margin:0;background:#e9edf2;color:#1c2733;font:15px/1.45 "DejaVu Sans","Segoe UI","Liberation Sans",Arial,sans-serif}
body,th,span,.fill{-webkit-print-color-adjust:exact;print-color-adjust:exact}
.sheet{max-width:980px;margin:28px auto;background:#fff;padding:44px 52px;border:1px solid #d5dde5;box-sizing:border-box}
table{border-collapse:collapse;width:100%}th,td{text-align:left;vertical-align:top}
p{margin:0}h1{font-size:27px;line-height:1.2;margin:0;color:#123f5a}
h2{font-size:17px;margin:34px 0 10px;color:#123f5a;border-bottom:2px solid #123f5a;padding-bottom:5px}
h3{font-size:15px;margin:0 0 8px;color:#123f5a}
.mono,.dump{font-family:"DejaVu Sans Mono",Consolas,"Liberation Mono","Courier New",monospace}
.soft,.hint{color:#52606f}.hint{font-size:13px;margin:0 0 10px}.right{text-align:right}.nowrap,.num{white-space:nowrap}
.head td{padding:0}.head .logo{width:58px}.head .lab{font-weight:bold;font-size:16px}.head .soft{font-size:13px}
.band{border-top:4px solid #123f5a;margin:20px 0 0;padding:18px 0 4px}
.fill{margin:18px 0 0;padding:14px 18px;border-left:6px solid;border-radius:3px}
.fill strong{font-size:17px}.fill p+p{margin-top:4px}.fill span{display:inline-block;margin-right:26px}
.good{background:#e6f4ec;border-color:#1b7a43;color:#0d4a27}.warn{background:#fff3d9;border-color:#c98a00;color:#553c00}
.bad{background:#fde9e7;border-color:#b3261e;color:#7a130d}
.figures{table-layout:fixed;margin:20px 0 0}.figures td{padding:0 12px 0 14px;border-left:2px solid #cbd6e0}
.figures b{display:block;font-size:22px;line-height:1.25;color:#123f5a;white-space:nowrap}.figures td{font-size:13px;color:#52606f}
.cards{display:table;table-layout:fixed;width:100%;margin-top:22px}
.card{display:table-cell;border:1px solid #d5dde5;padding:16px 18px;break-inside:avoid}
.card+.card{border-left:0}
.kv th{font-weight:normal;color:#52606f;width:41%;padding:3px 12px 3px 0;font-size:14px}
.kv td{padding:3px 0;font-size:14px;overflow-wrap:anywhere;word-wrap:break-word}
.list{font-size:14px}.list thead{display:table-header-group}.list tr{break-inside:avoid;page-break-inside:avoid}
.list thead th{background:#e9eff5;color:#123f5a;padding:7px 10px;border-bottom:1px solid #b9c7d4;vertical-align:bottom}
.list tbody th,.list tbody td{padding:6px 10px;border-bottom:1px solid #e1e7ed}.list tbody th{font-weight:normal}
.list tbody th,.list tbody td{vertical-align:baseline}.list .num{text-align:right}.list .mono{font-size:13px}
.hash i{font-style:normal;display:inline-block;margin-right:8px}
.mark{display:inline-block;padding:1px 9px;border-radius:9px;font-size:12.5px;white-space:nowrap;border:1px solid}
.dump{font-size:13.5px;line-height:1.3;width:auto;margin:0 auto}.dump thead{display:table-header-group}
.dump tr{break-inside:avoid;page-break-inside:avoid}.dump th{font-weight:normal;color:#52606f}
.dump th,.dump td{padding:1px 22px 1px 0;white-space:pre}.dump th:last-child,.dump td:last-child{padding-right:0}
.dump thead th{border-bottom:1px solid #b9c7d4;padding-bottom:4px}.dump tbody tr:first-child th,.dump tbody tr:first-child td{padding-top:4px}
.z{color:#667280}.t{background:#dcebf5;color:#0b4d6e}.e{background:#fbe3b0;color:#553c00}
.key{display:inline-block;width:12px;height:12px;margin:0 6px -1px 18px}
svg{display:block;width:100%;height:auto}svg text{font-family:"DejaVu Sans","Segoe UI","Liberation Sans",Arial,sans-serif;font-size:12px;fill:#3d4a58}
.note{margin:0 0 12px;padding:2px 0 2px 16px;border-left:3px solid #b9c7d4;white-space:pre-line;break-inside:avoid}
.sign{table-layout:fixed;margin-top:12px;break-inside:avoid;page-break-inside:avoid}.sign td{padding:0 44px 0 0}.sign td+td{padding:0 0 0 44px}
.rule{border-bottom:1px solid #1c2733;height:46px}.sign p{font-size:13px;color:#52606f;padding-top:3px}
.foot{margin-top:40px;border-top:1px solid #d5dde5;padding-top:10px;font-size:12px;color:#52606f}
@media screen and (max-width:760px){.sheet{margin:0;border:0;padding:22px 16px}.scroll{overflow-x:auto}
.cards,.card{display:block;width:auto;margin-top:14px}.card+.card{border-left:1px solid #d5dde5}.cards .card:first-child{margin-top:0}
.figures td{display:inline-block;width:44%;margin-bottom:12px;box-sizing:border-box}.hash i{margin-right:4px}}
@page{size:A4;margin:18mm 14mm;@top-left{content:"<xsl:call-template name="css-text">
      <xsl:with-param name="text" select="key('p', 'Lab.Name')"/></xsl:call-template>";font:8pt "DejaVu Sans",Arial,sans-serif;color:#52606f}
@top-right{content:"QT_TRANSLATE_NOOP("QObject", "Acquisition report")";font:8pt "DejaVu Sans",Arial,sans-serif;color:#52606f}
@bottom-left{content:"<xsl:call-template name="css-text">
      <xsl:with-param name="text" select="key('p', 'Report.Number')"/></xsl:call-template>";font:8pt "DejaVu Sans",Arial,sans-serif;color:#52606f}
@bottom-right{content:"QT_TRANSLATE_NOOP("QObject", "Page") " counter(page) " / " counter(pages);font:8pt "DejaVu Sans",Arial,sans-serif;color:#52606f}}
@page:first{margin-top:14mm;@top-left{content:none}@top-right{content:none}}
@media print{body{background:#fff;font-size:9pt}.sheet{max-width:none;margin:0;border:0;padding:0}
h1{font-size:17pt}h2{font-size:11.5pt;margin:5.5mm 0 2.5mm;padding-bottom:1mm;break-after:avoid;page-break-after:avoid}h3{font-size:9.5pt;margin-bottom:1.5mm}
.kv th,.kv td,.list,.fill,.note{font-size:8.5pt}.figures b{font-size:13pt}.figures td,.hint,.head .soft,.sign p{font-size:8pt}
.fill strong{font-size:10.5pt}.list tbody th,.list tbody td,.list thead th{padding:3.5px 7px}.band,.figures,.fill,.cards{margin-top:3.5mm}
.band{padding:3mm 0 0}.fill{padding:2.5mm 4mm}.card{padding:2.5mm 4mm}.hint{margin-bottom:2mm}.hint,h2{break-after:avoid;page-break-after:avoid}
.kv th,.kv td{padding-top:1px;padding-bottom:1px}.list .mono,.mark,.dump{font-size:8pt}.hash i{margin-right:4px}.foot{margin-top:7mm;font-size:7.5pt}
.chart,.fill,.figures,.sign-block{break-inside:avoid;page-break-inside:avoid}.chart svg{width:96%}.note{margin-bottom:2mm}.rule{height:11mm}}
  </style>
</xsl:template>

<!-- A value for a CSS string, without the characters that could end the string or the element. -->
<xsl:template name="css-text">
  <xsl:param name="text"/>
  <xsl:value-of select="normalize-space(translate($text, '\&lt;&quot;', ''))"/>
</xsl:template>

<!-- ==== Sections ==== -->

<xsl:template name="header">
  <table class="head" role="presentation"><tr>
    <td class="logo"><svg viewBox="0 0 48 48" style="width:44px" aria-hidden="true">
      <circle cx="24" cy="24" r="23" fill="#123f5a"/><circle cx="24" cy="24" r="15.5" fill="none" stroke="#7fb3cf" stroke-width="2"/>
      <circle cx="24" cy="24" r="10.5" fill="none" stroke="#7fb3cf" stroke-width="2"/><circle cx="24" cy="24" r="4.5" fill="#fff"/>
      <path d="M40 42 L27 26" stroke="#fff" stroke-width="3.5" stroke-linecap="round"/>
    </svg></td>
    <td>
      <p class="lab"><xsl:value-of select="key('p', 'Lab.Name')"/></p>
      <p class="soft"><xsl:value-of select="key('p', 'Lab.Address')"/></p>
    </td>
    <td class="right soft">
      <p><xsl:value-of select="key('p', 'Lab.Phone')"/></p>
      <p><xsl:value-of select="key('p', 'Lab.Mail')"/></p>
    </td>
  </tr></table>
  <div class="band"><table role="presentation"><tr>
    <td><h1>QT_TRANSLATE_NOOP("QObject", "Acquisition report")</h1>
      <p class="soft"><xsl:value-of select="key('p', 'Case.Title')"/></p></td>
    <td class="right nowrap">
      <p><strong><xsl:value-of select="key('p', 'Report.Number')"/></strong></p>
      <p class="soft"><xsl:call-template name="date"><xsl:with-param name="text" select="key('p', 'Report.Created')"/></xsl:call-template></p>
    </td>
  </tr></table></div>
</xsl:template>

<xsl:template name="verdict">
  <xsl:variable name="complete" select="key('p', 'Acquisition.Result') = 'completed'"/>
  <div>
    <xsl:attribute name="class">
      <xsl:choose>
        <xsl:when test="not($complete) or $differing &gt; 0">fill bad</xsl:when>
        <xsl:when test="$badAreas">fill warn</xsl:when>
        <xsl:otherwise>fill good</xsl:otherwise>
      </xsl:choose>
    </xsl:attribute>
    <p><strong>
      <xsl:choose>
        <xsl:when test="not($complete)">QT_TRANSLATE_NOOP("QObject", "Acquisition stopped before the end of the device")</xsl:when>
        <xsl:when test="$differing &gt; 0">QT_TRANSLATE_NOOP("QObject", "The image differs from the data that was read")</xsl:when>
        <xsl:when test="$badAreas">QT_TRANSLATE_NOOP("QObject", "Acquisition complete, with unreadable areas")</xsl:when>
        <xsl:otherwise>QT_TRANSLATE_NOOP("QObject", "Acquisition complete, every sector was read")</xsl:otherwise>
      </xsl:choose>
    </strong></p>
    <p>
      <span>QT_TRANSLATE_NOOP("QObject", "Unreadable areas"): <xsl:value-of select="count($badAreas)"/></span>
      <xsl:text> </xsl:text>
      <span>QT_TRANSLATE_NOOP("QObject", "Sectors not read"): <xsl:call-template name="digits">
        <xsl:with-param name="text" select="format-number($badSectors, '0')"/></xsl:call-template></span>
      <xsl:text> </xsl:text>
      <xsl:if test="key('list', 'Hash*Source')">
        <span>QT_TRANSLATE_NOOP("QObject", "Hash values"): <xsl:choose>
          <xsl:when test="$differing &gt; 0">QT_TRANSLATE_NOOP("QObject", "different")</xsl:when>
          <xsl:otherwise>QT_TRANSLATE_NOOP("QObject", "identical")</xsl:otherwise></xsl:choose></span>
      </xsl:if>
    </p>
  </div>
</xsl:template>

<xsl:template name="figures">
  <table class="figures" role="presentation"><tr>
    <xsl:if test="$capacity &gt; 0"><td><b><xsl:call-template name="size"><xsl:with-param name="bytes" select="$capacity"/></xsl:call-template></b>QT_TRANSLATE_NOOP("QObject", "Capacity")</td></xsl:if>
    <xsl:if test="$sectors &gt; 0"><td><b><xsl:call-template name="decimal">
      <xsl:with-param name="number" select="floor(1000000 * (1 - $badSectors div $sectors)) div 10000"/>
      <xsl:with-param name="format" select="'0.####'"/></xsl:call-template>&#160;%</b>QT_TRANSLATE_NOOP("QObject", "Sectors read")</td></xsl:if>
    <xsl:if test="$duration &gt; 0">
      <td><b><xsl:call-template name="duration"/></b>QT_TRANSLATE_NOOP("QObject", "Duration")</td>
      <xsl:if test="$capacity &gt; 0"><td><b><xsl:call-template name="size"><xsl:with-param name="bytes" select="$speed"/></xsl:call-template>
        <xsl:text>QT_TRANSLATE_NOOP("QObject", "/s")</xsl:text></b>QT_TRANSLATE_NOOP("QObject", "Average speed")</td></xsl:if>
    </xsl:if>
  </tr></table>
</xsl:template>

<xsl:template name="cards">
  <div class="cards">
    <div class="card"><h3>QT_TRANSLATE_NOOP("QObject", "Case")</h3><table class="kv"><tbody>
        <xsl:apply-templates select="key('p', 'Case.Number')" mode="row">
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Case number")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Case.Client')" mode="row">
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Client")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Case.Reference')" mode="row">
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Client reference")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Examiner.Name')" mode="row">
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Examiner")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Reviewer.Name')" mode="row">
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Reviewer")</xsl:with-param></xsl:apply-templates>
    </tbody></table></div>
    <div class="card"><h3>QT_TRANSLATE_NOOP("QObject", "Evidence item")</h3><table class="kv"><tbody>
        <xsl:apply-templates select="key('p', 'Evidence.Item')" mode="row">
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Item number")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Evidence.Description')" mode="row">
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Description")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Evidence.Seal')" mode="row">
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Seal")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Evidence.Received')" mode="row"><xsl:with-param name="as" select="'date'"/>
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Received")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Evidence.Condition')" mode="row">
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Condition")</xsl:with-param></xsl:apply-templates>
    </tbody></table></div>
  </div>
  <div class="cards">
    <div class="card"><h3>QT_TRANSLATE_NOOP("QObject", "Device")</h3><table class="kv"><tbody>
        <xsl:apply-templates select="key('p', 'Device.Model')" mode="row">
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Model")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Device.Serial')" mode="row">
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Serial number")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Device.Firmware')" mode="row">
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Firmware")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Device.Interface')" mode="row">
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Interface")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Device.Sectors')" mode="row"><xsl:with-param name="as" select="'count'"/>
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Sectors")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Device.SectorSize')" mode="row"><xsl:with-param name="as" select="'bytes'"/>
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Sector size")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Device.Capacity')" mode="row"><xsl:with-param name="as" select="'size'"/>
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Capacity")</xsl:with-param></xsl:apply-templates>
    </tbody></table></div>
    <div class="card"><h3>QT_TRANSLATE_NOOP("QObject", "Acquisition")</h3><table class="kv"><tbody>
        <xsl:apply-templates select="key('p', 'Acquisition.Start')" mode="row"><xsl:with-param name="as" select="'date'"/>
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Start")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Acquisition.End')" mode="row"><xsl:with-param name="as" select="'date'"/>
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "End")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Acquisition.Tool')" mode="row">
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Tool")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Acquisition.WriteBlocker')" mode="row">
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Write blocker")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Acquisition.Format')" mode="row">
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Image format")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Acquisition.Path')" mode="row"><xsl:with-param name="as" select="'mono'"/>
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Image path")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Acquisition.SegmentSize')" mode="row"><xsl:with-param name="as" select="'size'"/>
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Segment size")</xsl:with-param></xsl:apply-templates>
        <xsl:apply-templates select="key('p', 'Acquisition.Segments')" mode="row"><xsl:with-param name="as" select="'count'"/>
          <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Segments")</xsl:with-param></xsl:apply-templates>
    </tbody></table></div>
  </div>
</xsl:template>

<xsl:template match="property" mode="row">
  <xsl:param name="label"/>
  <xsl:param name="as"/>
  <tr><th scope="row"><xsl:value-of select="$label"/></th><td>
    <xsl:choose>
      <xsl:when test="$as = 'date'"><xsl:call-template name="date"><xsl:with-param name="text" select="."/></xsl:call-template></xsl:when>
      <xsl:when test="$as = 'mono'"><span class="mono"><xsl:value-of select="."/></span></xsl:when>
      <xsl:when test="$as = ''"><xsl:value-of select="."/></xsl:when>
      <xsl:otherwise>
        <xsl:call-template name="digits"><xsl:with-param name="text" select="string(.)"/></xsl:call-template>
        <xsl:if test="$as != 'count'">&#160;QT_TRANSLATE_NOOP("QObject", "bytes")</xsl:if>
      </xsl:otherwise>
    </xsl:choose>
    <xsl:if test="$as = 'size' and number(.) &gt;= 1000">
      <br/><span class="soft"><xsl:call-template name="size"><xsl:with-param name="bytes" select="number(.)"/></xsl:call-template>
      <xsl:text>, </xsl:text><xsl:call-template name="size"><xsl:with-param name="bytes" select="number(.)"/>
        <xsl:with-param name="base" select="1024"/></xsl:call-template></span>
    </xsl:if>
  </td></tr>
</xsl:template>

<!-- ==== Speed by position ==== -->

<!-- The plot area is x 56 to 944 and y 16 to 226 of the drawing. -->
<xsl:template name="chart">
  <xsl:variable name="span">
    <xsl:choose>
      <xsl:when test="$capacity &gt; 0"><xsl:value-of select="$capacity"/></xsl:when>
      <xsl:otherwise><xsl:for-each select="key('list', 'Speed*Position')">
        <xsl:sort select="substring-before(substring-after(@name, '.'), '.')" data-type="number"/>
        <xsl:if test="position() = last()"><xsl:call-template name="hex"><xsl:with-param name="text" select="."/></xsl:call-template></xsl:if>
      </xsl:for-each></xsl:otherwise>
    </xsl:choose>
  </xsl:variable>
  <xsl:variable name="peak"><xsl:for-each select="key('list', 'Speed*Value')">
    <xsl:sort select="." data-type="number" order="descending"/><xsl:if test="position() = 1"><xsl:value-of select="."/></xsl:if>
  </xsl:for-each></xsl:variable>
  <xsl:variable name="stepX"><xsl:call-template name="nice-step"><xsl:with-param name="max" select="$span"/>
    <xsl:with-param name="limit" select="11"/></xsl:call-template></xsl:variable>
  <xsl:variable name="stepY"><xsl:call-template name="nice-step"><xsl:with-param name="max" select="$peak"/>
    <xsl:with-param name="limit" select="5"/></xsl:call-template></xsl:variable>
  <xsl:variable name="top" select="ceiling($peak div $stepY) * $stepY"/>
  <xsl:variable name="points"><xsl:for-each select="key('list', 'Speed*Position')">
    <xsl:sort select="substring-before(substring-after(@name, '.'), '.')" data-type="number"/>
    <xsl:call-template name="x"><xsl:with-param name="address" select="."/><xsl:with-param name="span" select="$span"/></xsl:call-template>
    <xsl:value-of select="concat(',', format-number(226 - 210 * key('p', concat(substring-before(@name, 'Position'), 'Value')) div $top, '0.0'), ' ')"/>
  </xsl:for-each></xsl:variable>
  <xsl:variable name="unitX"><xsl:call-template name="power"><xsl:with-param name="value" select="$span"/></xsl:call-template></xsl:variable>
  <xsl:variable name="unitY"><xsl:call-template name="power"><xsl:with-param name="value" select="$top"/></xsl:call-template></xsl:variable>
  <h2>QT_TRANSLATE_NOOP("QObject", "Read speed by position")</h2>
  <div class="chart">
    <p class="hint">
      <span class="key" style="background:#1f7aa8;margin-left:0"></span>QT_TRANSLATE_NOOP("QObject", "Read speed")
      <xsl:if test="$speed &gt; 0 and $speed &lt;= $top"><span class="key" style="height:0;width:20px;border-top:2px dashed #52606f;margin-bottom:4px"></span>
        <xsl:text>QT_TRANSLATE_NOOP("QObject", "Average speed")</xsl:text></xsl:if>
      <xsl:if test="$badAreas"><span class="key" style="background:#c62f25;width:4px"></span>QT_TRANSLATE_NOOP("QObject", "Unreadable areas")</xsl:if>
    </p>
    <svg viewBox="0 -14 960 290" role="img">
      <title>QT_TRANSLATE_NOOP("QObject", "Read speed by position")</title>
      <xsl:call-template name="grid-y"><xsl:with-param name="step" select="$stepY"/><xsl:with-param name="top" select="$top"/>
        <xsl:with-param name="power" select="$unitY"/></xsl:call-template>
      <xsl:call-template name="grid-x"><xsl:with-param name="step" select="$stepX"/><xsl:with-param name="span" select="$span"/>
        <xsl:with-param name="power" select="$unitX"/></xsl:call-template>
      <xsl:for-each select="$badAreas">
        <xsl:sort select="substring-before(substring-after(@name, '.'), '.')" data-type="number"/>
        <xsl:variable name="x"><xsl:call-template name="x"><xsl:with-param name="address" select="."/><xsl:with-param name="span" select="$span"/></xsl:call-template></xsl:variable>
        <path d="M{$x} 16V226" stroke="#c62f25" stroke-width="2" stroke-opacity="0.45"/>
        <path d="M{$x} 16l-5 -9h10z" fill="#c62f25"><title><xsl:value-of select="."/></title></path>
      </xsl:for-each>
      <polygon fill="#1f7aa8" fill-opacity="0.13">
        <xsl:attribute name="points">
          <xsl:value-of select="concat(substring-before($points, ','), ',226 ', $points)"/>
          <xsl:for-each select="key('list', 'Speed*Position')">
            <xsl:sort select="substring-before(substring-after(@name, '.'), '.')" data-type="number"/>
            <xsl:if test="position() = last()"><xsl:call-template name="x"><xsl:with-param name="address" select="."/><xsl:with-param name="span" select="$span"/></xsl:call-template></xsl:if>
          </xsl:for-each>
          <xsl:text>,226</xsl:text>
        </xsl:attribute>
      </polygon>
      <polyline points="{normalize-space($points)}" fill="none" stroke="#1f7aa8" stroke-width="2.2" stroke-linejoin="round" stroke-linecap="round"/>
      <xsl:if test="$speed &gt; 0 and $speed &lt;= $top">
        <path d="M56 {format-number(226 - 210 * $speed div $top, '0.0')}H944" stroke="#52606f" stroke-width="1.4" stroke-dasharray="6 5"/>
      </xsl:if>
      <path d="M56 16V226H944" fill="none" stroke="#3d4a58" stroke-width="1.2"/>
      <text x="49" y="-1" text-anchor="end"><xsl:call-template name="unit"><xsl:with-param name="power" select="$unitY"/></xsl:call-template>QT_TRANSLATE_NOOP("QObject", "/s")</text>
      <text x="500" y="270" text-anchor="middle">QT_TRANSLATE_NOOP("QObject", "Position on the device")<xsl:text> (</xsl:text>
        <xsl:call-template name="unit"><xsl:with-param name="power" select="$unitX"/></xsl:call-template><xsl:text>)</xsl:text></text>
    </svg>
  </div>
</xsl:template>

<xsl:template name="grid-y">
  <xsl:param name="step"/><xsl:param name="top"/><xsl:param name="power"/>
  <xsl:param name="at" select="0"/>
  <xsl:variable name="y" select="format-number(226 - 210 * $at div $top, '0.0')"/>
  <path d="M56 {$y}H944" stroke="#d5dde5"/>
  <text x="49" y="{$y + 4}" text-anchor="end"><xsl:call-template name="scaled"><xsl:with-param name="value" select="$at"/>
    <xsl:with-param name="power" select="$power"/></xsl:call-template></text>
  <xsl:if test="$at + $step &lt;= $top">
    <xsl:call-template name="grid-y"><xsl:with-param name="step" select="$step"/><xsl:with-param name="top" select="$top"/>
      <xsl:with-param name="power" select="$power"/><xsl:with-param name="at" select="$at + $step"/></xsl:call-template>
  </xsl:if>
</xsl:template>

<xsl:template name="grid-x">
  <xsl:param name="step"/><xsl:param name="span"/><xsl:param name="power"/>
  <xsl:param name="at" select="0"/>
  <xsl:variable name="x" select="format-number(56 + 888 * $at div $span, '0.0')"/>
  <path d="M{$x} 16V231" stroke="#d5dde5"/>
  <text x="{$x}" y="246" text-anchor="middle"><xsl:call-template name="scaled"><xsl:with-param name="value" select="$at"/>
    <xsl:with-param name="power" select="$power"/></xsl:call-template></text>
  <xsl:if test="$at + $step &lt;= $span">
    <xsl:call-template name="grid-x"><xsl:with-param name="step" select="$step"/><xsl:with-param name="span" select="$span"/>
      <xsl:with-param name="power" select="$power"/><xsl:with-param name="at" select="$at + $step"/></xsl:call-template>
  </xsl:if>
</xsl:template>

<xsl:template name="x">
  <xsl:param name="address"/><xsl:param name="span"/>
  <xsl:variable name="position"><xsl:call-template name="hex"><xsl:with-param name="text" select="$address"/></xsl:call-template></xsl:variable>
  <xsl:value-of select="format-number(56 + 888 * $position div $span, '0.0')"/>
</xsl:template>

<!-- The smallest of 1, 2, 5, 10, 20, ... that needs at most limit steps. -->
<xsl:template name="nice-step">
  <xsl:param name="max"/><xsl:param name="limit"/>
  <xsl:param name="step" select="1"/><xsl:param name="digit" select="1"/>
  <xsl:choose>
    <xsl:when test="not($max div $step &gt; $limit)"><xsl:value-of select="$step"/></xsl:when>
    <xsl:when test="$digit = 2"><xsl:call-template name="nice-step"><xsl:with-param name="max" select="$max"/>
      <xsl:with-param name="limit" select="$limit"/><xsl:with-param name="step" select="$step * 2.5"/><xsl:with-param name="digit" select="5"/></xsl:call-template></xsl:when>
    <xsl:otherwise><xsl:call-template name="nice-step"><xsl:with-param name="max" select="$max"/>
      <xsl:with-param name="limit" select="$limit"/><xsl:with-param name="step" select="$step * 2"/>
      <xsl:with-param name="digit" select="($digit = 1) * 2 + ($digit = 5)"/></xsl:call-template></xsl:otherwise>
  </xsl:choose>
</xsl:template>

<!-- ==== Tables ==== -->

<xsl:template name="bad-areas">
  <h2>QT_TRANSLATE_NOOP("QObject", "Unreadable areas")</h2>
  <p class="hint">QT_TRANSLATE_NOOP("QObject", "Sectors that could not be read are filled with zero bytes in the image.")</p>
  <div class="scroll"><table class="list">
    <thead><tr>
      <th scope="col" class="num">QT_TRANSLATE_NOOP("QObject", "No.")</th><th scope="col" class="num">QT_TRANSLATE_NOOP("QObject", "First sector")</th>
      <th scope="col" class="num">QT_TRANSLATE_NOOP("QObject", "Byte address")</th><th scope="col" class="num">QT_TRANSLATE_NOOP("QObject", "Sectors")</th>
      <th scope="col" class="num">QT_TRANSLATE_NOOP("QObject", "Size")</th><th scope="col" class="num">QT_TRANSLATE_NOOP("QObject", "Attempts")</th><th scope="col">QT_TRANSLATE_NOOP("QObject", "Cause")</th>
    </tr></thead>
    <tbody><xsl:for-each select="$badAreas">
      <xsl:sort select="substring-before(substring-after(@name, '.'), '.')" data-type="number"/>
      <xsl:variable name="area" select="substring-before(@name, 'Address')"/>
      <tr>
        <th scope="row" class="num"><xsl:value-of select="position()"/></th>
        <td class="num"><xsl:call-template name="digits"><xsl:with-param name="text" select="string(key('p', concat($area, 'Sector')))"/></xsl:call-template></td>
        <td class="num mono"><xsl:value-of select="."/></td>
        <td class="num"><xsl:call-template name="digits"><xsl:with-param name="text" select="string(key('p', concat($area, 'Sectors')))"/></xsl:call-template></td>
        <td class="num"><xsl:call-template name="size"><xsl:with-param name="bytes" select="key('p', concat($area, 'Sectors')) * $sectorSize"/>
          <xsl:with-param name="base" select="1024"/></xsl:call-template></td>
        <td class="num"><xsl:value-of select="key('p', concat($area, 'Attempts'))"/></td>
        <td><xsl:call-template name="cause"><xsl:with-param name="code" select="key('p', concat($area, 'Cause'))"/></xsl:call-template></td>
      </tr>
    </xsl:for-each></tbody>
    <tbody><tr>
      <th scope="row" colspan="3"><strong>QT_TRANSLATE_NOOP("QObject", "Total")</strong></th>
      <td class="num"><strong><xsl:call-template name="digits"><xsl:with-param name="text" select="format-number($badSectors, '0')"/></xsl:call-template></strong></td>
      <td class="num"><strong><xsl:call-template name="size"><xsl:with-param name="bytes" select="$badSectors * $sectorSize"/>
        <xsl:with-param name="base" select="1024"/></xsl:call-template></strong></td><td colspan="2"></td>
    </tr></tbody>
  </table></div>
</xsl:template>

<xsl:template name="cause">
  <xsl:param name="code"/>
  <xsl:choose>
    <xsl:when test="$code = 'uncorrectable'">QT_TRANSLATE_NOOP("QObject", "Uncorrectable data")</xsl:when>
    <xsl:when test="$code = 'not-found'">QT_TRANSLATE_NOOP("QObject", "Sector not found")</xsl:when>
    <xsl:when test="$code = 'timeout'">QT_TRANSLATE_NOOP("QObject", "No answer in time")</xsl:when>
    <xsl:otherwise><xsl:value-of select="$code"/></xsl:otherwise>
  </xsl:choose>
</xsl:template>

<xsl:template name="hashes">
  <h2>QT_TRANSLATE_NOOP("QObject", "Hash values")</h2>
  <p class="hint">QT_TRANSLATE_NOOP("QObject", "Computed while the device was read, and again from the finished image.")</p>
  <div class="scroll"><table class="list">
    <thead><tr><th scope="col">QT_TRANSLATE_NOOP("QObject", "Method")</th><th scope="col">QT_TRANSLATE_NOOP("QObject", "Value")</th><th scope="col">QT_TRANSLATE_NOOP("QObject", "Image read back")</th></tr></thead>
    <tbody><xsl:for-each select="key('list', 'Hash*Source')">
      <xsl:sort select="substring-before(substring-after(@name, '.'), '.')" data-type="number"/>
      <xsl:variable name="hash" select="substring-before(@name, 'Source')"/>
      <xsl:variable name="image" select="key('p', concat($hash, 'Image'))"/>
      <xsl:variable name="same" select="translate(., 'abcdef', 'ABCDEF') = translate($image, 'abcdef', 'ABCDEF')"/>
      <tr>
        <th scope="row" class="nowrap"><xsl:value-of select="key('p', concat($hash, 'Name'))"/></th>
        <td class="mono hash"><xsl:call-template name="groups"><xsl:with-param name="text" select="."/></xsl:call-template>
          <xsl:if test="$image and not($same)"><br/><xsl:call-template name="groups"><xsl:with-param name="text" select="$image"/></xsl:call-template></xsl:if></td>
        <td><xsl:choose>
          <xsl:when test="not($image)">-</xsl:when>
          <xsl:when test="$same"><span class="mark good">QT_TRANSLATE_NOOP("QObject", "identical")</span></xsl:when>
          <xsl:otherwise><span class="mark bad">QT_TRANSLATE_NOOP("QObject", "different")</span></xsl:otherwise>
        </xsl:choose></td>
      </tr>
    </xsl:for-each></tbody>
  </table></div>
</xsl:template>

<xsl:template name="groups">
  <xsl:param name="text"/>
  <xsl:if test="$text != ''">
    <i><xsl:value-of select="substring($text, 1, 8)"/></i>
    <xsl:call-template name="groups"><xsl:with-param name="text" select="substring($text, 9)"/></xsl:call-template>
  </xsl:if>
</xsl:template>

<!-- ==== First sector ==== -->

<xsl:template name="first-sector">
  <xsl:variable name="size" select="(string-length($dump) + 1) div 3"/>
  <xsl:variable name="isMbr" select="$size = 512 and substring($dump, 1531) = '55 AA'"/>
  <h2>QT_TRANSLATE_NOOP("QObject", "First sector")</h2>
  <xsl:if test="$isMbr"><xsl:call-template name="partitions"/></xsl:if>
  <div class="scroll"><table class="dump">
    <thead><tr><th scope="col">QT_TRANSLATE_NOOP("QObject", "Offset")</th><th scope="col">QT_TRANSLATE_NOOP("QObject", "Bytes")</th><th scope="col">QT_TRANSLATE_NOOP("QObject", "Text")</th></tr></thead>
    <tbody><xsl:call-template name="dump-rows">
      <xsl:with-param name="text" select="$dump"/><xsl:with-param name="offset" select="0"/>
      <xsl:with-param name="rows" select="ceiling($size div 16)"/><xsl:with-param name="isMbr" select="$isMbr"/>
    </xsl:call-template></tbody>
  </table></div>
</xsl:template>

<!-- Halves the text until one row of 48 characters is left, which limits the recursion depth. -->
<xsl:template name="dump-rows">
  <xsl:param name="text"/><xsl:param name="offset"/><xsl:param name="rows"/><xsl:param name="isMbr"/>
  <xsl:variable name="half" select="floor($rows div 2)"/>
  <xsl:choose>
    <xsl:when test="$half &gt; 0">
      <xsl:call-template name="dump-rows"><xsl:with-param name="text" select="substring($text, 1, $half * 48)"/>
        <xsl:with-param name="offset" select="$offset"/><xsl:with-param name="rows" select="$half"/>
        <xsl:with-param name="isMbr" select="$isMbr"/></xsl:call-template>
      <xsl:call-template name="dump-rows"><xsl:with-param name="text" select="substring($text, $half * 48 + 1)"/>
        <xsl:with-param name="offset" select="$offset + $half * 16"/><xsl:with-param name="rows" select="$rows - $half"/>
        <xsl:with-param name="isMbr" select="$isMbr"/></xsl:call-template>
    </xsl:when>
    <xsl:otherwise><tr>
      <th scope="row"><xsl:call-template name="to-hex"><xsl:with-param name="number" select="$offset"/><xsl:with-param name="digits" select="8"/></xsl:call-template></th>
      <td><xsl:call-template name="bytes"><xsl:with-param name="text" select="$text"/><xsl:with-param name="offset" select="$offset"/>
        <xsl:with-param name="isMbr" select="$isMbr"/></xsl:call-template></td>
      <td><xsl:call-template name="characters"><xsl:with-param name="text" select="$text"/></xsl:call-template></td>
    </tr></xsl:otherwise>
  </xsl:choose>
</xsl:template>

<xsl:template name="bytes">
  <xsl:param name="text"/><xsl:param name="offset"/><xsl:param name="isMbr"/><xsl:param name="count" select="16"/>
  <xsl:variable name="byte" select="substring($text, 1, 2)"/>
  <xsl:choose>
    <xsl:when test="$byte = ''"/>
    <xsl:when test="$count &gt; 1">
      <xsl:call-template name="bytes"><xsl:with-param name="text" select="substring($text, 1, $count * 1.5)"/><xsl:with-param name="offset" select="$offset"/>
        <xsl:with-param name="isMbr" select="$isMbr"/><xsl:with-param name="count" select="$count div 2"/></xsl:call-template>
      <xsl:value-of select="substring('  ', 1, 1 + ($count = 16))"/>
      <xsl:call-template name="bytes"><xsl:with-param name="text" select="substring($text, $count * 1.5 + 1)"/><xsl:with-param name="offset" select="$offset + $count div 2"/>
        <xsl:with-param name="isMbr" select="$isMbr"/><xsl:with-param name="count" select="$count div 2"/></xsl:call-template>
    </xsl:when>
    <xsl:when test="$isMbr and $offset &gt;= 510"><span class="e"><xsl:value-of select="$byte"/></span></xsl:when>
    <xsl:when test="$isMbr and $offset &gt;= 446"><span class="t"><xsl:value-of select="$byte"/></span></xsl:when>
    <xsl:when test="$byte = '00'"><span class="z">00</span></xsl:when>
    <xsl:otherwise><xsl:value-of select="$byte"/></xsl:otherwise>
  </xsl:choose>
</xsl:template>

<xsl:template name="characters">
  <xsl:param name="text"/><xsl:param name="count" select="16"/>
  <xsl:choose>
    <xsl:when test="$text = ''"/>
    <xsl:when test="$count &gt; 1">
      <xsl:call-template name="characters"><xsl:with-param name="text" select="substring($text, 1, $count * 1.5)"/><xsl:with-param name="count" select="$count div 2"/></xsl:call-template>
      <xsl:call-template name="characters"><xsl:with-param name="text" select="substring($text, $count * 1.5 + 1)"/><xsl:with-param name="count" select="$count div 2"/></xsl:call-template>
    </xsl:when>
    <xsl:otherwise>
      <xsl:variable name="code"><xsl:call-template name="hex"><xsl:with-param name="text" select="substring($text, 1, 2)"/></xsl:call-template></xsl:variable>
      <xsl:choose>
        <xsl:when test="$code &gt;= 32 and $code &lt;= 126"><xsl:value-of select="substring($printable, $code - 31, 1)"/></xsl:when>
        <xsl:otherwise>.</xsl:otherwise>
      </xsl:choose>
    </xsl:otherwise>
  </xsl:choose>
</xsl:template>

<xsl:template name="partitions">
  <p class="hint">QT_TRANSLATE_NOOP("QObject", "Partition table and signature, decoded from the highlighted bytes below.")</p>
  <div class="scroll"><table class="list" style="margin-bottom:18px">
    <thead><tr><th scope="col" class="num">QT_TRANSLATE_NOOP("QObject", "No.")</th><th scope="col">QT_TRANSLATE_NOOP("QObject", "Type")</th><th scope="col">QT_TRANSLATE_NOOP("QObject", "Active")</th>
      <th scope="col" class="num">QT_TRANSLATE_NOOP("QObject", "First sector")</th><th scope="col" class="num">QT_TRANSLATE_NOOP("QObject", "Sectors")</th><th scope="col" class="num">QT_TRANSLATE_NOOP("QObject", "Size")</th></tr></thead>
    <tbody>
      <xsl:call-template name="partition"><xsl:with-param name="number" select="1"/></xsl:call-template>
      <xsl:call-template name="partition"><xsl:with-param name="number" select="2"/></xsl:call-template>
      <xsl:call-template name="partition"><xsl:with-param name="number" select="3"/></xsl:call-template>
      <xsl:call-template name="partition"><xsl:with-param name="number" select="4"/></xsl:call-template>
    </tbody>
  </table></div>
</xsl:template>

<xsl:template name="partition">
  <xsl:param name="number"/>
  <xsl:variable name="entry" select="substring($dump, 1339 + 48 * ($number - 1), 47)"/>
  <xsl:variable name="type" select="substring($entry, 13, 2)"/>
  <xsl:if test="$type != '00'">
    <xsl:variable name="first"><xsl:call-template name="little-endian"><xsl:with-param name="bytes" select="substring($entry, 25, 11)"/></xsl:call-template></xsl:variable>
    <xsl:variable name="count"><xsl:call-template name="little-endian"><xsl:with-param name="bytes" select="substring($entry, 37, 11)"/></xsl:call-template></xsl:variable>
    <tr>
      <th scope="row" class="num"><xsl:value-of select="$number"/></th>
      <td class="mono"><xsl:value-of select="concat('0x', $type)"/></td>
      <td><xsl:choose><xsl:when test="starts-with($entry, '80')">QT_TRANSLATE_NOOP("QObject", "yes")</xsl:when><xsl:otherwise>QT_TRANSLATE_NOOP("QObject", "no")</xsl:otherwise></xsl:choose></td>
      <td class="num"><xsl:call-template name="digits"><xsl:with-param name="text" select="$first"/></xsl:call-template></td>
      <td class="num"><xsl:call-template name="digits"><xsl:with-param name="text" select="$count"/></xsl:call-template></td>
      <td class="num"><xsl:call-template name="size"><xsl:with-param name="bytes" select="$count * $sectorSize"/></xsl:call-template></td>
    </tr>
  </xsl:if>
</xsl:template>

<!-- ==== Notes and signatures ==== -->

<xsl:template name="notes">
  <h2>QT_TRANSLATE_NOOP("QObject", "Notes")</h2>
  <xsl:for-each select="key('list', 'Note*Text')">
    <xsl:sort select="substring-before(substring-after(@name, '.'), '.')" data-type="number"/>
    <p class="note" lang="{key('p', concat(substring-before(@name, 'Text'), 'Lang'))}"><xsl:value-of select="."/></p>
  </xsl:for-each>
</xsl:template>

<xsl:template name="signatures">
  <div class="sign-block"><h2>QT_TRANSLATE_NOOP("QObject", "Signatures")</h2>
  <p class="hint">QT_TRANSLATE_NOOP("QObject", "I confirm that this report describes the acquisition as it was carried out.")</p>
  <table class="sign" role="presentation"><tr>
    <td><div class="rule"></div><p>QT_TRANSLATE_NOOP("QObject", "Place, date")</p><div class="rule"></div>
      <p>QT_TRANSLATE_NOOP("QObject", "Examiner"): <xsl:value-of select="key('p', 'Examiner.Name')"/></p></td>
    <td><div class="rule"></div><p>QT_TRANSLATE_NOOP("QObject", "Place, date")</p><div class="rule"></div>
      <p>QT_TRANSLATE_NOOP("QObject", "Reviewer"): <xsl:value-of select="key('p', 'Reviewer.Name')"/></p></td>
  </tr></table></div>
</xsl:template>

<!-- ==== Numbers, sizes and dates ==== -->

<xsl:variable name="printable"> !"#$%&amp;'()*+,-./0123456789:;&lt;=&gt;?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\]^_`abcdefghijklmnopqrstuvwxyz{|}~</xsl:variable>

<xsl:template name="decimal">
  <xsl:param name="number"/><xsl:param name="format"/>
  <xsl:value-of select="translate(format-number($number, $format), ',.', $separators)"/>
</xsl:template>

<!-- A whole number of any length with separators. It is processed as text to avoid rounding. -->
<xsl:template name="digits">
  <xsl:param name="text"/>
  <xsl:choose>
    <xsl:when test="string-length(translate($text, '-', '')) &lt;= 3"><xsl:value-of select="$text"/></xsl:when>
    <xsl:otherwise>
      <xsl:call-template name="digits"><xsl:with-param name="text" select="substring($text, 1, string-length($text) - 3)"/></xsl:call-template>
      <xsl:value-of select="concat(substring($separators, 1, 1), substring($text, string-length($text) - 2))"/>
    </xsl:otherwise>
  </xsl:choose>
</xsl:template>

<!-- A size with its unit, in powers of 1000 or 1024. -->
<xsl:template name="size">
  <xsl:param name="bytes"/><xsl:param name="base" select="1000"/>
  <xsl:variable name="power"><xsl:call-template name="power"><xsl:with-param name="value" select="$bytes"/>
    <xsl:with-param name="base" select="$base"/></xsl:call-template></xsl:variable>
  <xsl:call-template name="scaled"><xsl:with-param name="value" select="$bytes"/><xsl:with-param name="base" select="$base"/>
    <xsl:with-param name="power" select="$power"/><xsl:with-param name="format" select="substring('#,##0.0', 1, 5 + 2 * ($power &gt; 0))"/></xsl:call-template>
  <xsl:text>&#160;</xsl:text>
  <xsl:call-template name="unit"><xsl:with-param name="base" select="$base"/><xsl:with-param name="power" select="$power"/></xsl:call-template>
</xsl:template>

<xsl:template name="power">
  <xsl:param name="value"/><xsl:param name="base" select="1000"/><xsl:param name="power" select="0"/>
  <xsl:choose>
    <xsl:when test="$value &gt;= $base and $power &lt; 4"><xsl:call-template name="power"><xsl:with-param name="value" select="$value div $base"/>
      <xsl:with-param name="base" select="$base"/><xsl:with-param name="power" select="$power + 1"/></xsl:call-template></xsl:when>
    <xsl:otherwise><xsl:value-of select="$power"/></xsl:otherwise>
  </xsl:choose>
</xsl:template>

<xsl:template name="scaled">
  <xsl:param name="value"/><xsl:param name="base" select="1000"/><xsl:param name="power"/><xsl:param name="format" select="'#,##0.##'"/>
  <xsl:choose>
    <xsl:when test="$power &gt; 0"><xsl:call-template name="scaled"><xsl:with-param name="value" select="$value div $base"/><xsl:with-param name="base" select="$base"/>
      <xsl:with-param name="power" select="$power - 1"/><xsl:with-param name="format" select="$format"/></xsl:call-template></xsl:when>
    <xsl:otherwise><xsl:call-template name="decimal"><xsl:with-param name="number" select="$value"/><xsl:with-param name="format" select="$format"/></xsl:call-template></xsl:otherwise>
  </xsl:choose>
</xsl:template>

<xsl:template name="unit">
  <xsl:param name="base" select="1000"/><xsl:param name="power"/>
  <xsl:choose>
    <xsl:when test="$power = 0">QT_TRANSLATE_NOOP("QObject", "bytes")</xsl:when>
    <xsl:when test="$base = 1024 and $power = 1">QT_TRANSLATE_NOOP("QObject", "KiB")</xsl:when>
    <xsl:when test="$base = 1024 and $power = 2">QT_TRANSLATE_NOOP("QObject", "MiB")</xsl:when>
    <xsl:when test="$base = 1024 and $power = 3">QT_TRANSLATE_NOOP("QObject", "GiB")</xsl:when>
    <xsl:when test="$base = 1024">QT_TRANSLATE_NOOP("QObject", "TiB")</xsl:when>
    <xsl:when test="$power = 1">QT_TRANSLATE_NOOP("QObject", "kB")</xsl:when>
    <xsl:when test="$power = 2">QT_TRANSLATE_NOOP("QObject", "MB")</xsl:when>
    <xsl:when test="$power = 3">QT_TRANSLATE_NOOP("QObject", "GB")</xsl:when>
    <xsl:otherwise>QT_TRANSLATE_NOOP("QObject", "TB")</xsl:otherwise>
  </xsl:choose>
</xsl:template>

<!-- " 9.03.2026 08:14:07" in the order of the language; any other text is unchanged. -->
<xsl:template name="date">
  <xsl:param name="text"/>
  <xsl:variable name="date" select="normalize-space($text)"/>
  <xsl:variable name="day" select="format-number(substring-before($date, '.'), '00')"/>
  <xsl:variable name="month" select="substring-before(substring-after($date, '.'), '.')"/>
  <xsl:variable name="year" select="substring(substring-after(substring-after($date, '.'), '.'), 1, 4)"/>
  <xsl:variable name="time" select="substring-after($date, ' ')"/>
  <xsl:variable name="mark" select="substring($dateOrder, 2, 1)"/>
  <xsl:choose>
    <xsl:when test="$year = ''"><xsl:value-of select="$date"/></xsl:when>
    <xsl:when test="starts-with($dateOrder, 'Y')"><xsl:value-of select="concat($year, $mark, $month, $mark, $day, ' ', $time)"/></xsl:when>
    <xsl:otherwise><xsl:value-of select="concat($day, $mark, $month, $mark, $year, ' ', $time)"/></xsl:otherwise>
  </xsl:choose>
</xsl:template>

<xsl:template name="duration">
  <xsl:if test="$duration &gt;= 3600"><xsl:value-of select="floor($duration div 3600)"/>&#160;QT_TRANSLATE_NOOP("QObject", "h")<xsl:text> </xsl:text></xsl:if>
  <xsl:if test="$duration &gt;= 60"><xsl:value-of select="floor($duration div 60) mod 60"/>&#160;QT_TRANSLATE_NOOP("QObject", "min")<xsl:text> </xsl:text></xsl:if>
  <xsl:value-of select="$duration mod 60"/>&#160;QT_TRANSLATE_NOOP("QObject", "s")
</xsl:template>

<!-- The number for hexadecimal digits, with or without the prefix "0x"; exact up to 2^53. -->
<xsl:template name="hex">
  <xsl:param name="text"/><xsl:param name="number" select="0"/>
  <xsl:variable name="rest" select="substring-after(concat($text, '|'), '0x')"/>
  <xsl:choose>
    <xsl:when test="$rest != ''"><xsl:call-template name="hex"><xsl:with-param name="text" select="substring-before($rest, '|')"/></xsl:call-template></xsl:when>
    <xsl:when test="$text = ''"><xsl:value-of select="$number"/></xsl:when>
    <xsl:otherwise><xsl:call-template name="hex"><xsl:with-param name="text" select="substring($text, 2)"/><xsl:with-param name="number"
      select="$number * 16 + string-length(substring-before('0123456789ABCDEF', translate(substring($text, 1, 1), 'abcdef', 'ABCDEF')))"/></xsl:call-template></xsl:otherwise>
  </xsl:choose>
</xsl:template>

<xsl:template name="to-hex">
  <xsl:param name="number"/><xsl:param name="digits"/>
  <xsl:if test="$digits &gt; 1"><xsl:call-template name="to-hex"><xsl:with-param name="number" select="floor($number div 16)"/>
    <xsl:with-param name="digits" select="$digits - 1"/></xsl:call-template></xsl:if>
  <xsl:value-of select="substring('0123456789ABCDEF', $number mod 16 + 1, 1)"/>
</xsl:template>

<xsl:template name="little-endian">
  <xsl:param name="bytes"/>
  <xsl:call-template name="hex"><xsl:with-param name="text" select="concat(substring($bytes, 10, 2), substring($bytes, 7, 2),
    substring($bytes, 4, 2), substring($bytes, 1, 2))"/></xsl:call-template>
</xsl:template>

</xsl:stylesheet>
