// The display text of one value, through a dump file.
//
// SPDX-License-Identifier: MIT
#include "support/dumped_text.h"

#include <gtest/gtest.h>

#include "strata_repgenlib/rgen.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace rgen_test {

std::string dumpedText(InputParams& input) {
    const TempFolder folder;
    const Generator generator;
    const std::string path = folder.file("dump.xml");
    EXPECT_EQ(statusHex(RGEN_OK),
              statusHex(rgen_dumpRawInputDataToFile(generator.get(), input.get(), path.c_str())));
    const std::string file = readFile(path);
    const std::string start = "<property name=\"n\">";
    const std::size_t from = file.find(start);
    const std::size_t to = file.find("</property>");
    if (from == std::string::npos || to == std::string::npos) return "no text in: " + file;
    return file.substr(from + start.size(), to - from - start.size());
}

std::string dumpedText(std::int64_t number, std::uint64_t hint) {
    InputParams input;
    input.variants().addInt64("n", number);
    input.variants().at(0).hint = hint;
    return dumpedText(input);
}

}  // namespace rgen_test
