<?xml version="1.0" encoding="UTF-8"?>
<!--
  SPDX-License-Identifier: MIT

  A part for "rgen bundle": a bar for each entry of a list, as an SVG picture for html and pdf.

    <xsl:include href="parts/bar-chart.xsl"/>

    <xsl:call-template name="bar-chart">
      <xsl:with-param name="list" select="'Disk'"/>     Disk.1.Name, Disk.1.Used, Disk.2.Name, ...
      <xsl:with-param name="label" select="'Name'"/>    the value that names a bar
      <xsl:with-param name="value" select="'Used'"/>    the number that is its length
      <xsl:with-param name="title">Used space</xsl:with-param>
      <xsl:with-param name="unit" select="' GB'"/>      after each number; default: nothing
      <xsl:with-param name="divisor" select="1000000000"/>
      <xsl:with-param name="format" select="'#,##0.0'"/>
      <xsl:with-param name="colour" select="'#1f6f8b'"/>
    </xsl:call-template>

  Entries whose value is no number, or below zero, are left out; without any entry there is no
  picture. The label's width is limited by the picture: about 24 characters.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:key name="bar-chart-value" match="property" use="@name"/>
<xsl:key name="bar-chart-list" match="property[contains(substring-after(@name, '.'), '.')]"
  use="concat(substring-before(@name, '.'), '*', substring-after(substring-after(@name, '.'), '.'))"/>

<xsl:template name="bar-chart">
  <xsl:param name="list"/>
  <xsl:param name="label" select="'Name'"/>
  <xsl:param name="value" select="'Value'"/>
  <xsl:param name="title"/>
  <xsl:param name="unit"/>
  <xsl:param name="divisor" select="1"/>
  <xsl:param name="format" select="'#,##0'"/>
  <xsl:param name="colour" select="'#1f6f8b'"/>
  <xsl:variable name="bars" select="key('bar-chart-list', concat($list, '*', $value))[number(.) &gt;= 0]"/>
  <xsl:variable name="longest">
    <xsl:for-each select="$bars">
      <xsl:sort select="." data-type="number" order="descending"/>
      <xsl:if test="position() = 1"><xsl:value-of select="."/></xsl:if>
    </xsl:for-each>
  </xsl:variable>
  <xsl:if test="$bars">
    <svg class="bar-chart" viewBox="0 0 640 {24 * count($bars)}" role="img" width="100%">
      <title><xsl:value-of select="$title"/></title>
      <xsl:for-each select="$bars">
        <xsl:sort select="substring-before(substring-after(@name, '.'), '.')" data-type="number"/>
        <xsl:variable name="entry" select="substring(@name, 1, string-length(@name) - string-length($value))"/>
        <xsl:variable name="top" select="24 * (position() - 1)"/>
        <text x="160" y="{$top + 16}" font-size="13" text-anchor="end">
          <xsl:value-of select="key('bar-chart-value', concat($entry, $label))"/>
        </text>
        <xsl:variable name="length">
          <xsl:choose>
            <xsl:when test="$longest &gt; 0"><xsl:value-of select="format-number(380 * . div $longest, '0.0')"/></xsl:when>
            <xsl:otherwise>0</xsl:otherwise>
          </xsl:choose>
        </xsl:variable>
        <rect x="168" y="{$top + 4}" width="{$length}" height="16" fill="{$colour}"/>
        <text x="{$length + 174}" y="{$top + 16}" font-size="13">
          <xsl:value-of select="concat(format-number(. div $divisor, $format), $unit)"/>
        </text>
      </xsl:for-each>
    </svg>
  </xsl:if>
</xsl:template>
</xsl:stylesheet>
