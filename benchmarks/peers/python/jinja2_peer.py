#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The peer "Jinja2": the context is built from the values for each report; all are escaped."""

from jinja2 import Environment, StrictUndefined

from peer_program import run_program


def make_report_maker(arguments, values):
    environment = Environment(autoescape=True, undefined=StrictUndefined)

    def compile_template():
        return environment.from_string(arguments.template.read_text(encoding="utf-8"))

    kept = compile_template() if arguments.way == "once" else None
    with_rows = "{% for row in rows %}" in arguments.template.read_text(encoding="utf-8")

    def context():
        if with_rows:
            return {"rows": [{"name": name, "value": str(value)} for name, value in values]}
        return {name: str(value) for name, value in values}

    def report():
        page = (kept or compile_template()).render(context())
        arguments.output.write_text(page, encoding="utf-8")

    return report


run_program(make_report_maker)
