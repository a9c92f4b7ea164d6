// Legacy output encodings on Linux: the C library converts them.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "support/report_fixture.h"

namespace rgen_test {
namespace {

class LegacyEncoding : public ReportTest {};

TEST_F(LegacyEncoding, IsConverted) {
    EXPECT_EQ(reportOf("\xE6"),
              reportOfTemplate(stylesheet("method=\"text\" encoding=\"windows-1251\"",
                                          "<xsl:template match=\"/\">\xD0\xB6</xsl:template>")));
}

}  // namespace
}  // namespace rgen_test
