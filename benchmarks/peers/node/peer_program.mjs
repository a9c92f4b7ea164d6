// The common part of the Node peers: command line, values of a workload, two kinds of measurement.
// cpp/peer_program.h describes the command line and the output.
//
// SPDX-License-Identifier: MIT
import { readFileSync, rmSync, writeFileSync } from "node:fs";
import { parseArgs } from "node:util";

const fewestReports = 3;

function parseArguments() {
    const text = { type: "string" };
    const { values } = parseArgs({
        options: {
            values: text,
            template: text,
            output: text,
            way: text,
            reports: { ...text, default: "0" },
            "warm-up": { ...text, default: "0" },
            seconds: { ...text, default: "0" },
        },
    });
    return values;
}

function readValues(path) {
    const lines = readFileSync(path, "utf8").split("\n").slice(0, -1);
    return lines.map((line) => {
        const [name, kind, text] = line.split("\t");
        return { name, value: kind === "int64" ? Number(text) : text };
    });
}

/// Makes reports until both the count and the time are reached.
function makeReports(report, fewest, seconds) {
    const start = performance.now();
    let reports = 0;
    let passed = 0;
    while (reports < fewest || passed < seconds) {
        report();
        reports += 1;
        passed = (performance.now() - start) / 1000;
    }
    return { reports, seconds: passed };
}

function peakKib() {
    const line = readFileSync("/proc/self/status", "utf8").match(/^VmHWM:\s*(\d+)/m);
    return line ? Number(line[1]) : 0;
}

/// The context of a template: rows of a table, or the values by name.
function contextOf(values, withRows) {
    if (withRows) {
        return { rows: values.map(({ name, value }) => ({ name, value: String(value) })) };
    }
    return Object.fromEntries(values.map(({ name, value }) => [name, String(value)]));
}

/// `compile` turns the text of a template into a function from context to page.
export function runProgram(compile) {
    const options = parseArguments();
    const values = readValues(options.values);
    const compileFile = () => compile(readFileSync(options.template, "utf8"));
    const withRows = readFileSync(options.template, "utf8").includes("rows");
    const kept = options.way === "once" ? compileFile() : null;
    const report = () => {
        rmSync(options.output, { force: true });
        const page = (kept ?? compileFile())(contextOf(values, withRows));
        writeFileSync(options.output, page);
    };
    let measured;
    if (Number(options.reports) > 0) {
        measured = makeReports(report, Number(options.reports), 0);
    } else {
        makeReports(report, 1, Number(options["warm-up"]));
        measured = makeReports(report, fewestReports, Number(options.seconds));
    }
    console.log(JSON.stringify({ ...measured, peak_kib: peakKib() }));
}
