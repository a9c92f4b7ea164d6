<?xml version="1.0" encoding="UTF-8"?>
<!--
  SPDX-License-Identifier: MIT

  A part for "rgen bundle": a list as an HTML table with one row for each entry.

    <xsl:include href="parts/list-table.xsl"/>

    <xsl:call-template name="list-table">
      <xsl:with-param name="list" select="'Disk'"/>     Disk.1.Name, Disk.1.Used, Disk.2.Name, ...
      <xsl:with-param name="columns" select="'Name=Disk|Used=Used space'"/>
      <xsl:with-param name="caption">Disks</xsl:with-param>
    </xsl:call-template>

  Each column is the last part of the values' names, "=" and its head. The first column is the head
  of its row. A value that an entry lacks is an empty cell; without any entry there is no table.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:key name="list-table-value" match="property" use="@name"/>
<xsl:key name="list-table-list" match="property[contains(substring-after(@name, '.'), '.')]"
  use="substring-before(@name, '.')"/>
<xsl:key name="list-table-entry" match="property[contains(substring-after(@name, '.'), '.')]"
  use="concat(substring-before(@name, '.'), '.', substring-before(substring-after(@name, '.'), '.'))"/>

<xsl:template name="list-table">
  <xsl:param name="list"/>
  <xsl:param name="columns"/>
  <xsl:param name="caption"/>
  <xsl:variable name="entries" select="key('list-table-list', $list)[generate-id() = generate-id(key('list-table-entry',
    concat($list, '.', substring-before(substring-after(@name, '.'), '.')))[1])]"/>
  <xsl:if test="$entries">
    <table class="list-table">
      <xsl:if test="$caption != ''"><caption><xsl:value-of select="$caption"/></caption></xsl:if>
      <thead><tr>
        <xsl:call-template name="list-table-cells">
          <xsl:with-param name="columns" select="$columns"/>
          <xsl:with-param name="isHead" select="true()"/>
        </xsl:call-template>
      </tr></thead>
      <tbody>
        <xsl:for-each select="$entries">
          <xsl:sort select="substring-before(substring-after(@name, '.'), '.')" data-type="number"/>
          <tr>
            <xsl:call-template name="list-table-cells">
              <xsl:with-param name="columns" select="$columns"/>
              <xsl:with-param name="entry" select="concat($list, '.', substring-before(substring-after(@name, '.'), '.'), '.')"/>
            </xsl:call-template>
          </tr>
        </xsl:for-each>
      </tbody>
    </table>
  </xsl:if>
</xsl:template>

<!-- One cell for each column: heads without an entry. -->
<xsl:template name="list-table-cells">
  <xsl:param name="columns"/>
  <xsl:param name="entry"/>
  <xsl:param name="isHead" select="false()"/>
  <xsl:param name="isFirst" select="true()"/>
  <xsl:variable name="column" select="substring-before(concat($columns, '|'), '|')"/>
  <xsl:variable name="value" select="key('list-table-value', concat($entry, substring-before($column, '=')))"/>
  <xsl:choose>
    <xsl:when test="$isHead"><th scope="col"><xsl:value-of select="substring-after($column, '=')"/></th></xsl:when>
    <xsl:when test="$isFirst"><th scope="row"><xsl:value-of select="$value"/></th></xsl:when>
    <xsl:otherwise><td><xsl:value-of select="$value"/></td></xsl:otherwise>
  </xsl:choose>
  <xsl:if test="contains($columns, '|')">
    <xsl:call-template name="list-table-cells">
      <xsl:with-param name="columns" select="substring-after($columns, '|')"/>
      <xsl:with-param name="entry" select="$entry"/>
      <xsl:with-param name="isHead" select="$isHead"/>
      <xsl:with-param name="isFirst" select="false()"/>
    </xsl:call-template>
  </xsl:if>
</xsl:template>
</xsl:stylesheet>
