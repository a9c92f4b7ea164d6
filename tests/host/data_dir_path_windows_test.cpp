// rgen_setDataDirPath on Windows: "/" becomes a backslash.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace {

using rgen_test::Generator;
using rgen_test::persistentData;
using rgen_test::statusHex;
using rgen_test::TempFolder;

std::string withSlashes(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

TEST(SetDataDirPath, BothSeparatorsNameTheSameDataDirectory) {
    const TempFolder folder;
    for (const std::string& path :
         {folder.path(), folder.path() + "\\", folder.path() + "/", withSlashes(folder.path()),
          withSlashes(folder.path()) + "/", withSlashes(folder.path()) + "\\"}) {
        SCOPED_TRACE(path);
        const Generator generator(path);
        EXPECT_EQ(statusHex(RGEN_E_OPEN_PERSIST),
                  statusHex(persistentData(generator, rgen_test::defaultGuid()).status));
        EXPECT_EQ(std::vector<std::string>{".rgen"}, rgen_test::namesIn(folder.path()));
        EXPECT_EQ(std::vector<std::string>{"config.xml"}, rgen_test::namesIn(folder.dataDir()));
        rgen_test::removeAll(folder.dataDir());
    }
}

}  // namespace
