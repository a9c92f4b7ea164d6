#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The peer "lxml": the input document is built from the values for each report."""

from lxml import etree

from peer_program import run_program


def compile_template(path):
    return etree.XSLT(etree.parse(str(path)))


def build_document(values):
    root = etree.Element("data")
    properties = etree.SubElement(root, "properties")
    for name, value in values:
        etree.SubElement(properties, "property", name=name).text = str(value)
    return etree.ElementTree(root)


def make_report_maker(arguments, values):
    kept = compile_template(arguments.template) if arguments.way == "once" else None
    output = str(arguments.output)

    def report():
        transform = kept or compile_template(arguments.template)
        transform(build_document(values)).write_output(output)

    return report


run_program(make_report_maker)
