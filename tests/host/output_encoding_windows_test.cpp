// Legacy output encodings on Windows: they are not known, the bytes stay UTF-8.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "support/report_fixture.h"

namespace rgen_test {
namespace {

class LegacyEncoding : public ReportTest {};

TEST_F(LegacyEncoding, StaysUtf8) {
    EXPECT_EQ(reportOf("\xD0\xB6"),
              reportOfTemplate(stylesheet("method=\"text\" encoding=\"windows-1251\"",
                                          "<xsl:template match=\"/\">\xD0\xB6</xsl:template>")));
}

}  // namespace
}  // namespace rgen_test
