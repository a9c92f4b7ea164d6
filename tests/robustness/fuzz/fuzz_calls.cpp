// Rows of calls of all exports over two generators, also from inside the translate callback.
// Statuses are documented ones, exceptions are those that the header names, and the address
// sanitizer sees who frees what.
//
// SPDX-License-Identifier: MIT
#include "call_sequence.h"
#include "fuzz_support.h"
#include "fuzz_targets.h"

namespace rgen_fuzz {
namespace {

const char* const markedTemplate =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
    "<xsl:template match=\"/\"><r>QT_TRANSLATE_NOOP(\"QObject\", \"first\")<xsl:copy-of "
    "select=\"data\"/>QT_TRANSLATE_NOOP(\"QObject\", \"second\")</r></xsl:template>"
    "</xsl:stylesheet>";
const char* const simulatedInput =
    "<data><properties><property name=\"n\" type=\"int64\" hint=\"Time\">7</property>"
    "<property name=\"b\" type=\"byte_array\" hint=\"Dump\">0x01, 0xFF</property>"
    "</properties></data>";

// The same files before each row: "a" has templates for all formats, "b" has nothing.
void prepareFolders() {
    for (const char* name : {"a", "b", "out"})
        removeFromWork(name);
    for (const char* format : {"html", "txt", "pdf"}) {
        writeWorkFile("a/.rgen/templates/" + std::string(format) + "/test_stylesheet.xsl",
                      markedTemplate);
    }
    writeWorkFile("b/file", "");
    writeWorkFile("simulation.xml", simulatedInput);
    removeFromWork(".rgen");
    removeFromWork("dump.xml");
}

}  // namespace

void fuzzCalls(const std::string& input) {
    prepareFolders();
    InputReader reader(input);
    CallSequence(reader).run();
}

}  // namespace rgen_fuzz
