// Reports of the format pdf, converted by the stand-in converter.
//
// SPDX-License-Identifier: MIT
#include "support/conversion_fixture.h"

#include <chrono>
#include <thread>

#include "support/test_platform.h"

namespace rgen_test {

ConversionTest::ConversionTest()
    : converter(folder),
      output(folder.file("report.pdf")),
      html(output + ".html"),
      bytes("<p>value \xD0\xB6</p>\n") {
    const std::string text =
        stylesheet("method=\"html\" encoding=\"UTF-8\"",
                   "<xsl:template match=\"/\"><p>" + valueOf("v") + "</p></xsl:template>");
    putTemplate(text, "pdf");
    putTemplateFile("second.xsl", text, "pdf");
    createFolder(folder.file("started"));
    request(input, "report.pdf");
}

// Abandoned converters end before the folder is removed: one that misses the file would wait for a
// minute.
ConversionTest::~ConversionTest() {
    release();
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (allChildren() > endedChildren() && std::chrono::steady_clock::now() < limit)
        std::this_thread::yield();
}

void ConversionTest::request(InputParams& request, const std::string& name) {
    request.variants().addString("v", "value \xD0\xB6");
    request.format("pdf").output(RGEN_OUTPUT_FILE, folder.file(name));
}

ConverterCommands ConversionTest::waiting(const ConverterCommands& before,
                                          const ConverterCommands& after) {
    ConverterCommands commands = before;
    commands.push_back({"mark", folder.file("started/%pid%")});
    commands.push_back({"await", folder.file("released")});
    commands.insert(commands.end(), after.begin(), after.end());
    return commands;
}

bool ConversionTest::waitForStarted(std::size_t count) {
    return waitForFiles(folder.file("started"), count);
}

void ConversionTest::release() {
    writeFile(folder.file("released"), "");
}

}  // namespace rgen_test
