#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Creates the workloads of the benchmarks: a folder for each, with a data directory and values.

Usage: make_workloads.py FOLDER [--short]

    S M L XL   reports of 10, 1,000, 10,000 and 100,000 properties
    T          a template of 1 MB with 200 marked texts
    C          a configuration with 10,000 report types
    K0 K1      100 look-ups among 10,000 properties, by scan and by key

--short creates S, M and T only. The files are the same each time; existing ones are kept. A
workload FOLDER/W has a data directory data/.rgen, which also contains the template with its markers
replaced (templates/html/translated.xsl), and a file values.tsv with name, type and text in each
line.
"""

import argparse
import hashlib
import random
import re
import shutil
import uuid
from pathlib import Path

TEMPLATES = Path(__file__).resolve().parent / "templates"
WANTED_GUID = "7c9e6679-7425-40de-944b-e07fc1f90ae7"
OTHER_GUIDS = uuid.UUID("4f1d6b0a-93c2-4c57-8d2e-5a60b7e1f934")
SHORT = ["S", "M", "T"]

# For each workload its template and its numbers of properties and report types.
WORKLOADS = {
    "S": ("small", 10, 1),
    "M": ("table", 1_000, 1),
    "L": ("table", 10_000, 1),
    "XL": ("table", 100_000, 1),
    "T": ("large", 10, 1),
    "C": ("small", 10, 10_000),
    "K0": ("scan", 10_000, 1),
    "K1": ("key", 10_000, 1),
}
FIRST_NAMES = ["Sample", "Operator", "Method", "Series", "Instrument", "Range", "Temperature",
               "Humidity", "Duration", "Remark"]
PERSISTENT = {"Company": "Nordlicht Labor GmbH", "Department": "Materials testing",
              "Room": "B 2.17 (Süd)"}
WORDS = ["steel", "probe", "Größe", "surface", "load", "mesure", "cycle", "température", "rail",
         "bolt", "Prüfung", "grade", "sealed", "образец", "second", "layer", "north", "batch",
         "weld", "filter", "µm", "reference", "copper", "stable", "after", "été", "cold", "run"]
LINES_OF_LARGE = 6_100
MARKERS_OF_LARGE = 200
LOOKUPS = 100

MARKER = re.compile(r'QT_TRANSLATE_NOOP\s*\(\s*"QObject"\s*, "([^"]*)\s*"\)')
SCAN = re.compile(r"/data/properties/property\[@name=('[^']*')\]")


# ---- Texts --------------------------------------------------------------------------------------

def words(source, length):
    """A text of exactly so many characters that neither starts nor ends with a space."""
    text = source.choice(WORDS)
    while len(text) < length:
        text += " " + source.choice(WORDS)
    text = text[:length]
    return text[:-1] + "s" if text.endswith(" ") else text


def property_name(index):
    return FIRST_NAMES[index] if index < len(FIRST_NAMES) else f"Measurement.Value.{index + 1:06d}"


def values(count):
    """The lines of values.tsv. Every fourth value is a number."""
    source = random.Random(f"values {count}")
    lines = []
    for index in range(count):
        if index % 4 == 3:
            kind, text = "int64", str(source.randrange(-10_000, 10_000_000))
        else:
            kind, text = "text", words(source, source.randint(8, 40))
        lines.append(f"{property_name(index)}\t{kind}\t{text}\n")
    return "".join(lines)


# ---- Templates ----------------------------------------------------------------------------------

def read_template(name):
    return (TEMPLATES / f"{name}.xsl").read_text(encoding="utf-8")


def with_content(template, content):
    """The template with more content at the end of the page."""
    place = template.index("      </body>")
    return template[:place] + content + template[place:]


def large_template():
    source = random.Random("large")
    lines = []
    for number in range(LINES_OF_LARGE):
        note = words(source, 24)
        marked = (number + 1) * MARKERS_OF_LARGE // LINES_OF_LARGE
        if marked > number * MARKERS_OF_LARGE // LINES_OF_LARGE:
            note = f'QT_TRANSLATE_NOOP("QObject", "{note}")'
        lines.append(f'<p class="line">{number + 1}. {words(source, 56)} <b>{note}</b> '
                     f"{words(source, 50)}</p>\n")
    return with_content(read_template("small"), "".join(lines))


def scan_template():
    names = [property_name(10_000 * number // LOOKUPS + 57) for number in range(LOOKUPS)]
    return with_content(read_template("small"), "".join(
        f"        <p><xsl:value-of select=\"/data/properties/property[@name='{name}']\"/></p>\n"
        for name in names))


def key_template():
    """The template that scans, with each look-up replaced by one through a key."""
    template = SCAN.sub(r"key('property', \1)", scan_template())
    declaration = '  <xsl:key name="property" match="property" use="@name"/>\n'
    return template.replace("\n\n  <xsl:template", f"\n{declaration}\n  <xsl:template", 1)


def make_template(name):
    made = {"large": large_template, "scan": scan_template, "key": key_template}
    return made[name]() if name in made else read_template(name)


# ---- Files of the data directory ----------------------------------------------------------------

def report_type(guid, persist_data_file, report_type_file):
    return (f'    <type guid="{guid}">\n'
            f"      <persistDataFile>{persist_data_file}</persistDataFile>\n"
            f"      <reportTypeFile>{report_type_file}</reportTypeFile>\n"
            "    </type>\n")


def configuration(types):
    """The configuration file; the wanted report type is the last one."""
    entries = [report_type(uuid.uuid5(OTHER_GUIDS, str(number)), f"persist_{number}.xml",
                           f"report_{number}.xsl") for number in range(1, types)]
    entries.append(report_type(WANTED_GUID, "persist_data.xml", "report.xsl"))
    return ('<?xml version="1.0" encoding="UTF-8"?>\n<config>\n  <reportTypes>\n'
            + "".join(entries) + "  </reportTypes>\n</config>\n")


def persistent_data():
    properties = "".join(f'    <property name="{name}">{text}</property>\n'
                         for name, text in PERSISTENT.items())
    return ('<?xml version="1.0" encoding="UTF-8"?>\n<data>\n  <properties>\n'
            + properties + "  </properties>\n</data>\n")


def write(path, text):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text, encoding="utf-8", newline="\n")


def make_workload(folder, workload):
    template_name, properties, types = WORKLOADS[workload]
    template = make_template(template_name)
    data = folder / "data/.rgen"
    write(data / "config.xml", configuration(types))
    write(data / "persist_data.xml", persistent_data())
    write(data / "templates/html/report.xsl", template)
    write(data / "templates/html/translated.xsl", MARKER.sub(r"\1", template))
    write(folder / "values.tsv", values(properties))


def recipe():
    """Differs when anything that the workloads are made from differs."""
    sources = [Path(__file__), *sorted(TEMPLATES.glob("*.xsl"))]
    return hashlib.sha256(b"".join(path.read_bytes() for path in sources)).hexdigest()


def make_workloads(folder, names):
    """Creates these workloads in the folder, except those that exist and are up to date."""
    for name in names:
        stamp = folder / name / "recipe.txt"
        if stamp.is_file() and stamp.read_text() == recipe():
            continue
        shutil.rmtree(folder / name, ignore_errors=True)
        make_workload(folder / name, name)
        write(stamp, recipe())


def main():
    parser = argparse.ArgumentParser(description="Makes the workloads of the benchmarks.")
    parser.add_argument("folder", type=Path)
    parser.add_argument("--short", action="store_true", help="only " + ", ".join(SHORT))
    arguments = parser.parse_args()
    make_workloads(arguments.folder, SHORT if arguments.short else list(WORKLOADS))


if __name__ == "__main__":
    main()
