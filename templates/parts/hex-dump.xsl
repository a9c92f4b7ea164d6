<?xml version="1.0" encoding="UTF-8"?>
<!--
  SPDX-License-Identifier: MIT

  A part for "rgen bundle": bytes as an HTML table of offsets, bytes and characters, 16 in a row.

    <xsl:include href="parts/hex-dump.xsl"/>

    <xsl:call-template name="hex-dump">
      <xsl:with-param name="bytes" select="key('p', 'Sector.First')"/>     a value with the hint "bytes"
      <xsl:with-param name="caption">First sector</xsl:with-param>
    </xsl:call-template>

  Without bytes there is no table.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:variable name="hex-dump-digits">0123456789ABCDEF</xsl:variable>
<xsl:variable name="hex-dump-printable"> !"#$%&amp;'()*+,-./0123456789:;&lt;=&gt;?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\]^_`abcdefghijklmnopqrstuvwxyz{|}~</xsl:variable>

<xsl:template name="hex-dump">
  <xsl:param name="bytes"/>
  <xsl:param name="caption"/>
  <xsl:variable name="text" select="normalize-space($bytes)"/>
  <xsl:if test="$text != ''">
    <table class="hex-dump">
      <xsl:if test="$caption != ''"><caption><xsl:value-of select="$caption"/></caption></xsl:if>
      <tbody>
        <xsl:call-template name="hex-dump-rows">
          <xsl:with-param name="text" select="$text"/>
          <xsl:with-param name="rows" select="ceiling(string-length($text) div 48)"/>
        </xsl:call-template>
      </tbody>
    </table>
  </xsl:if>
</xsl:template>

<!-- Halves the text until one row of 48 characters is left, which limits the depth of the calls. -->
<xsl:template name="hex-dump-rows">
  <xsl:param name="text"/>
  <xsl:param name="rows"/>
  <xsl:param name="row" select="0"/>
  <xsl:variable name="half" select="floor($rows div 2)"/>
  <xsl:choose>
    <xsl:when test="$half &gt; 0">
      <xsl:call-template name="hex-dump-rows">
        <xsl:with-param name="text" select="substring($text, 1, $half * 48)"/>
        <xsl:with-param name="rows" select="$half"/>
        <xsl:with-param name="row" select="$row"/>
      </xsl:call-template>
      <xsl:call-template name="hex-dump-rows">
        <xsl:with-param name="text" select="substring($text, $half * 48 + 1)"/>
        <xsl:with-param name="rows" select="$rows - $half"/>
        <xsl:with-param name="row" select="$row + $half"/>
      </xsl:call-template>
    </xsl:when>
    <xsl:otherwise>
      <tr>
        <th scope="row"><xsl:call-template name="hex-dump-offset"><xsl:with-param name="number" select="$row"/></xsl:call-template>0</th>
        <td><xsl:value-of select="normalize-space($text)"/></td>
        <td><xsl:call-template name="hex-dump-characters"><xsl:with-param name="text" select="$text"/></xsl:call-template></td>
      </tr>
    </xsl:otherwise>
  </xsl:choose>
</xsl:template>

<!-- A number with seven hexadecimal digits. -->
<xsl:template name="hex-dump-offset">
  <xsl:param name="number"/>
  <xsl:param name="digits" select="7"/>
  <xsl:if test="$digits &gt; 1">
    <xsl:call-template name="hex-dump-offset">
      <xsl:with-param name="number" select="floor($number div 16)"/>
      <xsl:with-param name="digits" select="$digits - 1"/>
    </xsl:call-template>
  </xsl:if>
  <xsl:value-of select="substring($hex-dump-digits, $number mod 16 + 1, 1)"/>
</xsl:template>

<xsl:template name="hex-dump-characters">
  <xsl:param name="text"/>
  <xsl:variable name="code" select="16 * string-length(substring-before($hex-dump-digits, substring($text, 1, 1)))
    + string-length(substring-before($hex-dump-digits, substring($text, 2, 1)))"/>
  <xsl:choose>
    <xsl:when test="$code &gt;= 32 and $code &lt;= 126"><xsl:value-of select="substring($hex-dump-printable, $code - 31, 1)"/></xsl:when>
    <xsl:otherwise>.</xsl:otherwise>
  </xsl:choose>
  <xsl:if test="string-length($text) &gt; 3">
    <xsl:call-template name="hex-dump-characters"><xsl:with-param name="text" select="substring($text, 4)"/></xsl:call-template>
  </xsl:if>
</xsl:template>
</xsl:stylesheet>
