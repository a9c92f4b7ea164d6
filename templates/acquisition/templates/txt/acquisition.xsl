<?xml version="1.0" encoding="UTF-8"?>
<!--
  SPDX-License-Identifier: MIT

  Disk-imaging acquisition report as plain text for a ticket or a mail: 78 columns, counted in
  characters. A line without a value and a section without list entries are omitted. The names of
  the values are listed in docs/template-guide.md.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:output method="text" encoding="UTF-8"/>
<xsl:key name="p" match="property" use="@name"/>
<!-- The properties of a list by the last part of their names: "Err.10.Address" under "Err*Address". -->
<xsl:key name="list" match="property[contains(substring-after(@name, '.'), '.')]"
  use="concat(substring-before(@name, '.'), '*', substring-after(substring-after(@name, '.'), '.'))"/>

<!-- Thousands and decimal separator, then the order of year, month and day: marked like any text. -->
<xsl:variable name="separators">QT_TRANSLATE_NOOP("QObject", ",.")</xsl:variable>
<xsl:variable name="dateOrder">QT_TRANSLATE_NOOP("QObject", "Y-M-D")</xsl:variable>
<xsl:variable name="duration" select="number(key('p', 'Acquisition.Duration'))"/>
<xsl:variable name="sectorSize" select="number(key('p', 'Device.SectorSize'))"/>
<xsl:variable name="badAreas" select="key('list', 'Err*Address')"/>
<xsl:variable name="badSectors" select="sum(key('list', 'Err*Sectors'))"/>
<xsl:variable name="differing" select="count(key('list', 'Hash*Source')[
  translate(., 'abcdef', 'ABCDEF') != translate(key('p', concat(
  substring-before(@name, 'Source'), 'Image')), 'abcdef', 'ABCDEF')])"/>

<xsl:variable name="columns" select="78"/>
<xsl:variable name="labelColumns" select="24"/>
<xsl:variable name="newLine"><xsl:text>&#10;</xsl:text></xsl:variable>
<xsl:variable name="dots">..............................................................................</xsl:variable>
<xsl:variable name="dashes" select="translate($dots, '.', '-')"/>
<xsl:variable name="blanks" select="translate($dots, '.', ' ')"/>

<xsl:template match="/">
  <xsl:value-of select="concat(translate($dots, '.', '='), $newLine)"/>
  <xsl:call-template name="ends">
    <xsl:with-param name="left">QT_TRANSLATE_NOOP("QObject", "Acquisition report")</xsl:with-param>
    <xsl:with-param name="right" select="key('p', 'Report.Number')"/>
  </xsl:call-template>
  <xsl:call-template name="ends">
    <xsl:with-param name="left" select="key('p', 'Lab.Name')"/>
    <xsl:with-param name="right"><xsl:call-template name="date"><xsl:with-param name="text" select="key('p', 'Report.Created')"/></xsl:call-template></xsl:with-param>
  </xsl:call-template>
  <xsl:value-of select="concat(translate($dots, '.', '='), $newLine, $newLine)"/>
  <xsl:call-template name="verdict"/>
  <xsl:call-template name="values"/>
  <xsl:if test="key('list', 'Speed*Value')"><xsl:call-template name="speeds"/></xsl:if>
  <xsl:if test="$badAreas"><xsl:call-template name="bad-areas"/></xsl:if>
  <xsl:if test="key('list', 'Hash*Source')"><xsl:call-template name="hashes"/></xsl:if>
  <xsl:if test="key('list', 'Note*Text')"><xsl:call-template name="notes"/></xsl:if>
  <xsl:value-of select="concat($newLine, $dashes, $newLine)"/>
  <xsl:call-template name="wrapped">
    <xsl:with-param name="text">QT_TRANSLATE_NOOP("QObject", "All times are local times of the imaging workstation. 1 GB is 1,000,000,000 bytes, 1 GiB is 1,073,741,824 bytes.")</xsl:with-param>
  </xsl:call-template>
</xsl:template>

<!-- ==== Sections ==== -->

<xsl:template name="verdict">
  <xsl:variable name="complete" select="key('p', 'Acquisition.Result') = 'completed'"/>
  <xsl:call-template name="wrapped"><xsl:with-param name="text">
    <xsl:choose>
      <xsl:when test="not($complete)">QT_TRANSLATE_NOOP("QObject", "Acquisition stopped before the end of the device")</xsl:when>
      <xsl:when test="$differing &gt; 0">QT_TRANSLATE_NOOP("QObject", "The image differs from the data that was read")</xsl:when>
      <xsl:when test="$badAreas">QT_TRANSLATE_NOOP("QObject", "Acquisition complete, with unreadable areas")</xsl:when>
      <xsl:otherwise>QT_TRANSLATE_NOOP("QObject", "Acquisition complete, every sector was read")</xsl:otherwise>
    </xsl:choose>
  </xsl:with-param></xsl:call-template>
  <xsl:value-of select="$newLine"/>
  <xsl:call-template name="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Unreadable areas")</xsl:with-param>
    <xsl:with-param name="value" select="count($badAreas)"/>
  </xsl:call-template>
  <xsl:call-template name="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Sectors not read")</xsl:with-param>
    <xsl:with-param name="value"><xsl:call-template name="digits"><xsl:with-param name="text" select="format-number($badSectors, '0')"/></xsl:call-template></xsl:with-param>
  </xsl:call-template>
  <xsl:if test="key('list', 'Hash*Source')"><xsl:call-template name="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Hash values")</xsl:with-param>
    <xsl:with-param name="value"><xsl:choose>
      <xsl:when test="$differing &gt; 0">QT_TRANSLATE_NOOP("QObject", "different")</xsl:when>
      <xsl:otherwise>QT_TRANSLATE_NOOP("QObject", "identical")</xsl:otherwise>
    </xsl:choose></xsl:with-param>
  </xsl:call-template></xsl:if>
</xsl:template>

<xsl:template name="values">
  <xsl:call-template name="title"><xsl:with-param name="text">QT_TRANSLATE_NOOP("QObject", "Case")</xsl:with-param></xsl:call-template>
  <xsl:apply-templates select="key('p', 'Case.Number')" mode="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Case number")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Case.Title')" mode="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Subject")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Case.Client')" mode="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Client")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Case.Reference')" mode="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Client reference")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Examiner.Name')" mode="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Examiner")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Reviewer.Name')" mode="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Reviewer")</xsl:with-param></xsl:apply-templates>
  <xsl:call-template name="title"><xsl:with-param name="text">QT_TRANSLATE_NOOP("QObject", "Evidence item")</xsl:with-param></xsl:call-template>
  <xsl:apply-templates select="key('p', 'Evidence.Item')" mode="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Item number")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Evidence.Description')" mode="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Description")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Evidence.Seal')" mode="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Seal")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Evidence.Received')" mode="line"><xsl:with-param name="as" select="'date'"/>
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Received")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Evidence.Condition')" mode="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Condition")</xsl:with-param></xsl:apply-templates>
  <xsl:call-template name="title"><xsl:with-param name="text">QT_TRANSLATE_NOOP("QObject", "Device")</xsl:with-param></xsl:call-template>
  <xsl:apply-templates select="key('p', 'Device.Model')" mode="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Model")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Device.Serial')" mode="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Serial number")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Device.Firmware')" mode="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Firmware")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Device.Interface')" mode="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Interface")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Device.Sectors')" mode="line"><xsl:with-param name="as" select="'count'"/>
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Sectors")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Device.SectorSize')" mode="line"><xsl:with-param name="as" select="'bytes'"/>
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Sector size")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Device.Capacity')" mode="line"><xsl:with-param name="as" select="'size'"/>
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Capacity")</xsl:with-param></xsl:apply-templates>
  <xsl:call-template name="title"><xsl:with-param name="text">QT_TRANSLATE_NOOP("QObject", "Acquisition")</xsl:with-param></xsl:call-template>
  <xsl:apply-templates select="key('p', 'Acquisition.Start')" mode="line"><xsl:with-param name="as" select="'date'"/>
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Start")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Acquisition.End')" mode="line"><xsl:with-param name="as" select="'date'"/>
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "End")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Acquisition.Duration')" mode="line"><xsl:with-param name="as" select="'duration'"/>
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Duration")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Acquisition.Tool')" mode="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Tool")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Acquisition.WriteBlocker')" mode="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Write blocker")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Acquisition.Format')" mode="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Image format")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Acquisition.Path')" mode="line">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Image path")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Acquisition.SegmentSize')" mode="line"><xsl:with-param name="as" select="'size'"/>
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Segment size")</xsl:with-param></xsl:apply-templates>
  <xsl:apply-templates select="key('p', 'Acquisition.Segments')" mode="line"><xsl:with-param name="as" select="'count'"/>
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Segments")</xsl:with-param></xsl:apply-templates>
</xsl:template>

<xsl:template match="property" mode="line">
  <xsl:param name="label"/>
  <xsl:param name="as"/>
  <xsl:call-template name="line">
    <xsl:with-param name="label" select="$label"/>
    <xsl:with-param name="value"><xsl:choose>
      <xsl:when test="$as = 'date'"><xsl:call-template name="date"><xsl:with-param name="text" select="."/></xsl:call-template></xsl:when>
      <xsl:when test="$as = ''"><xsl:value-of select="."/></xsl:when>
      <xsl:when test="$as = 'duration'"><xsl:call-template name="duration"/></xsl:when>
      <xsl:otherwise>
        <xsl:call-template name="digits"><xsl:with-param name="text" select="string(.)"/></xsl:call-template>
        <xsl:if test="$as != 'count'"> QT_TRANSLATE_NOOP("QObject", "bytes")</xsl:if>
        <xsl:if test="$as = 'size' and number(.) &gt;= 1000"> (<xsl:call-template name="size">
          <xsl:with-param name="bytes" select="number(.)"/></xsl:call-template>, <xsl:call-template name="size">
          <xsl:with-param name="bytes" select="number(.)"/><xsl:with-param name="base" select="1024"/></xsl:call-template>)</xsl:if>
      </xsl:otherwise>
    </xsl:choose></xsl:with-param>
  </xsl:call-template>
</xsl:template>

<xsl:template name="speeds">
  <xsl:call-template name="title"><xsl:with-param name="text">QT_TRANSLATE_NOOP("QObject", "Read speed")</xsl:with-param></xsl:call-template>
  <xsl:for-each select="key('list', 'Speed*Value')">
    <xsl:sort select="." data-type="number" order="descending"/>
    <xsl:if test="position() = 1"><xsl:call-template name="speed"><xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Highest")</xsl:with-param></xsl:call-template></xsl:if>
    <xsl:if test="position() = last()"><xsl:call-template name="speed"><xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Lowest")</xsl:with-param></xsl:call-template></xsl:if>
  </xsl:for-each>
  <xsl:if test="$duration &gt; 0 and key('p', 'Device.Capacity')"><xsl:call-template name="speed">
    <xsl:with-param name="label">QT_TRANSLATE_NOOP("QObject", "Average speed")</xsl:with-param><xsl:with-param name="speed" select="key('p', 'Device.Capacity') div $duration"/>
  </xsl:call-template></xsl:if>
</xsl:template>

<xsl:template name="speed">
  <xsl:param name="label"/><xsl:param name="speed" select="number(.)"/>
  <xsl:call-template name="line">
    <xsl:with-param name="label" select="$label"/>
    <xsl:with-param name="value"><xsl:call-template name="size"><xsl:with-param name="bytes" select="$speed"/></xsl:call-template>QT_TRANSLATE_NOOP("QObject", "/s")</xsl:with-param>
  </xsl:call-template>
</xsl:template>

<!-- Columns: number 4, first sector 20, byte address 20, sectors 12, then the cause. -->
<xsl:template name="bad-areas">
  <xsl:call-template name="title"><xsl:with-param name="text">QT_TRANSLATE_NOOP("QObject", "Unreadable areas")</xsl:with-param></xsl:call-template>
  <xsl:call-template name="area">
    <xsl:with-param name="number">QT_TRANSLATE_NOOP("QObject", "No.")</xsl:with-param><xsl:with-param name="first">QT_TRANSLATE_NOOP("QObject", "First sector")</xsl:with-param>
    <xsl:with-param name="address">QT_TRANSLATE_NOOP("QObject", "Byte address")</xsl:with-param><xsl:with-param name="count">QT_TRANSLATE_NOOP("QObject", "Sectors")</xsl:with-param>
    <xsl:with-param name="cause">QT_TRANSLATE_NOOP("QObject", "Cause")</xsl:with-param>
  </xsl:call-template>
  <xsl:for-each select="$badAreas">
    <xsl:sort select="substring-before(substring-after(@name, '.'), '.')" data-type="number"/>
    <xsl:variable name="area" select="substring-before(@name, 'Address')"/>
    <xsl:call-template name="area">
      <xsl:with-param name="number" select="position()"/>
      <xsl:with-param name="first"><xsl:call-template name="digits"><xsl:with-param name="text" select="string(key('p', concat($area, 'Sector')))"/></xsl:call-template></xsl:with-param>
      <xsl:with-param name="address" select="."/>
      <xsl:with-param name="count"><xsl:call-template name="digits"><xsl:with-param name="text" select="string(key('p', concat($area, 'Sectors')))"/></xsl:call-template></xsl:with-param>
      <xsl:with-param name="cause"><xsl:call-template name="cause"><xsl:with-param name="code" select="key('p', concat($area, 'Cause'))"/></xsl:call-template></xsl:with-param>
    </xsl:call-template>
  </xsl:for-each>
</xsl:template>

<xsl:template name="area">
  <xsl:param name="number"/><xsl:param name="first"/><xsl:param name="address"/><xsl:param name="count"/><xsl:param name="cause"/>
  <xsl:call-template name="padded"><xsl:with-param name="text" select="$number"/><xsl:with-param name="width" select="5"/></xsl:call-template>
  <xsl:call-template name="padded"><xsl:with-param name="text" select="$first"/><xsl:with-param name="width" select="16"/></xsl:call-template>
  <xsl:call-template name="padded"><xsl:with-param name="text" select="$address"/><xsl:with-param name="width" select="16"/></xsl:call-template>
  <xsl:call-template name="padded"><xsl:with-param name="text" select="$count"/><xsl:with-param name="width" select="11"/></xsl:call-template>
  <xsl:value-of select="concat('  ', substring($cause, 1, $columns - 50), $newLine)"/>
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
  <xsl:call-template name="title"><xsl:with-param name="text">QT_TRANSLATE_NOOP("QObject", "Hash values")</xsl:with-param></xsl:call-template>
  <xsl:for-each select="key('list', 'Hash*Source')">
    <xsl:sort select="substring-before(substring-after(@name, '.'), '.')" data-type="number"/>
    <xsl:variable name="hash" select="substring-before(@name, 'Source')"/>
    <xsl:variable name="image" select="key('p', concat($hash, 'Image'))"/>
    <xsl:variable name="name" select="substring(concat('  ', key('p', concat($hash, 'Name')), $blanks), 1, 12)"/>
    <xsl:value-of select="concat($name, ., $newLine)"/>
    <xsl:if test="$image and translate(., 'abcdef', 'ABCDEF') != translate($image, 'abcdef', 'ABCDEF')">
      <xsl:value-of select="concat(substring($blanks, 1, 12), $image, ' ')"/>QT_TRANSLATE_NOOP("QObject", "different")<xsl:value-of select="$newLine"/>
    </xsl:if>
  </xsl:for-each>
</xsl:template>

<xsl:template name="notes">
  <xsl:call-template name="title"><xsl:with-param name="text">QT_TRANSLATE_NOOP("QObject", "Notes")</xsl:with-param></xsl:call-template>
  <xsl:for-each select="key('list', 'Note*Text')">
    <xsl:sort select="substring-before(substring-after(@name, '.'), '.')" data-type="number"/>
    <xsl:if test="position() &gt; 1"><xsl:value-of select="$newLine"/></xsl:if>
    <xsl:call-template name="wrapped"><xsl:with-param name="text" select="."/><xsl:with-param name="indent" select="2"/></xsl:call-template>
  </xsl:for-each>
</xsl:template>

<!-- ==== Lines and columns ==== -->

<xsl:template name="title">
  <xsl:param name="text"/>
  <xsl:value-of select="concat($newLine, $text, $newLine, substring($dashes, 1, string-length($text)), $newLine)"/>
</xsl:template>

<xsl:template name="ends">
  <xsl:param name="left"/><xsl:param name="right"/>
  <xsl:variable name="room" select="$columns - string-length($right)"/>
  <xsl:value-of select="concat(substring(concat($left, $blanks), 1, $room - 1), ' ', $right, $newLine)"/>
</xsl:template>

<!-- "  Label ............. value"; a long value continues in the same column of the next lines. -->
<xsl:template name="line">
  <xsl:param name="label"/><xsl:param name="value"/>
  <xsl:value-of select="concat('  ', substring(concat($label, ' ', $dots), 1, $labelColumns), ' ')"/>
  <xsl:call-template name="wrapped">
    <xsl:with-param name="text" select="$value"/>
    <xsl:with-param name="indent" select="$labelColumns + 3"/>
    <xsl:with-param name="isBegun" select="true()"/>
  </xsl:call-template>
</xsl:template>

<xsl:template name="padded">
  <xsl:param name="text"/><xsl:param name="width"/>
  <xsl:value-of select="concat(substring($blanks, 1, $width - string-length($text)), $text)"/>
</xsl:template>

<!-- A text in indented lines of at most 78 characters; recurses once for each line. -->
<xsl:template name="wrapped">
  <xsl:param name="text"/><xsl:param name="indent" select="0"/><xsl:param name="isBegun" select="false()"/>
  <xsl:variable name="rest" select="normalize-space($text)"/>
  <xsl:variable name="width" select="$columns - $indent"/>
  <xsl:variable name="length">
    <xsl:choose>
      <xsl:when test="string-length($rest) &lt;= $width"><xsl:value-of select="$width"/></xsl:when>
      <xsl:otherwise><xsl:call-template name="break"><xsl:with-param name="text" select="$rest"/><xsl:with-param name="at" select="$width + 1"/>
        <xsl:with-param name="width" select="$width"/></xsl:call-template></xsl:otherwise>
    </xsl:choose>
  </xsl:variable>
  <xsl:if test="not($isBegun)"><xsl:value-of select="substring($blanks, 1, $indent)"/></xsl:if>
  <xsl:value-of select="concat(substring($rest, 1, $length), $newLine)"/>
  <xsl:if test="string-length($rest) &gt; $length">
    <xsl:call-template name="wrapped"><xsl:with-param name="text" select="substring($rest, $length + 1)"/><xsl:with-param name="indent" select="$indent"/></xsl:call-template>
  </xsl:if>
</xsl:template>

<!-- Number of characters that fit: up to the last space, or the full width for a long word. -->
<xsl:template name="break">
  <xsl:param name="text"/><xsl:param name="at"/><xsl:param name="width"/>
  <xsl:choose>
    <xsl:when test="$at &lt;= 1"><xsl:value-of select="$width"/></xsl:when>
    <xsl:when test="substring($text, $at, 1) = ' '"><xsl:value-of select="$at - 1"/></xsl:when>
    <xsl:otherwise><xsl:call-template name="break"><xsl:with-param name="text" select="$text"/><xsl:with-param name="at" select="$at - 1"/>
      <xsl:with-param name="width" select="$width"/></xsl:call-template></xsl:otherwise>
  </xsl:choose>
</xsl:template>

<!-- ==== Numbers, sizes and dates ==== -->

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
  <xsl:text> </xsl:text>
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
  <xsl:param name="value"/><xsl:param name="base" select="1000"/><xsl:param name="power"/><xsl:param name="format"/>
  <xsl:choose>
    <xsl:when test="$power &gt; 0"><xsl:call-template name="scaled"><xsl:with-param name="value" select="$value div $base"/><xsl:with-param name="base" select="$base"/>
      <xsl:with-param name="power" select="$power - 1"/><xsl:with-param name="format" select="$format"/></xsl:call-template></xsl:when>
    <xsl:otherwise><xsl:value-of select="translate(format-number($value, $format), ',.', $separators)"/></xsl:otherwise>
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
  <xsl:if test="$duration &gt;= 3600"><xsl:value-of select="floor($duration div 3600)"/> QT_TRANSLATE_NOOP("QObject", "h")<xsl:text> </xsl:text></xsl:if>
  <xsl:if test="$duration &gt;= 60"><xsl:value-of select="floor($duration div 60) mod 60"/> QT_TRANSLATE_NOOP("QObject", "min")<xsl:text> </xsl:text></xsl:if>
  <xsl:value-of select="$duration mod 60"/> QT_TRANSLATE_NOOP("QObject", "s")
</xsl:template>

</xsl:stylesheet>
