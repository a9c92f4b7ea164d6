// Reports of the format pdf, converted by the stand-in converter.
//
// SPDX-License-Identifier: MIT
#include "support/conversion_fixture.h"

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

ConversionTest::~ConversionTest() {
    release();
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
