// Texts of the raw input dump, and saving it when library calls fail. What hosts see of it is
// tested in host/dump_input_test.cpp.
//
// SPDX-License-Identifier: MIT
#include "variant/raw_dump.h"

#include <cstdint>
#include <string>

#include "support/fault_injection.h"
#include "unit/unit_fixture.h"

namespace rgen_test {
namespace {

using rgen::Variant;
using rgen::VariantHint;

class WriteRawInputDump : public UnitTest {
protected:
    std::string dump(const rgen::VariantMap& values) {
        return statusHex(rgen::writeRawInputDump(generator, values, path));
    }

    const std::string path = folder.file("dump.xml");
    const rgen::VariantMap oneValue = {{"speed", Variant(std::int64_t{1200}, VariantHint::Speed)}};
};

TEST_F(WriteRawInputDump, EveryKindIsWrittenAsItsText) {
    const struct {
        Variant value;
        const char* text;
    } rows[] = {{Variant(std::int64_t{255}, VariantHint::Address), ">0xff<"},
                {Variant(std::string("x"), VariantHint::Generic), ">x<"},
                {Variant(rgen::ByteVector{1, 0xAB}, VariantHint::Dump), ">01 AB <"},
                {Variant(), ">UNINITIALIZED_VARIANT_VALUE<"}};
    for (const auto& row : rows) {
        EXPECT_EQ(statusHex(RGEN_OK), dump({{"a", row.value}}));
        EXPECT_NE(std::string::npos, readFile(path).find(row.text)) << row.text;
    }
}

TEST_F(WriteRawInputDump, NameIsPlainTextAndContentIsNot) {
    const Variant value(std::string("a&amp;b"), VariantHint::Generic);
    EXPECT_EQ(statusHex(RGEN_OK), dump({{"<\"&amp;>", value}}));
    EXPECT_NE(std::string::npos,
              readFile(path).find("name=\"&lt;&quot;&amp;amp;&gt;\">a&amp;b</property>"));
}

TEST_F(WriteRawInputDump, FailureHalfWayLeavesNoFile) {
    for (const Call call : {Call::NewOutputBuffer, Call::SaveXmlDocument, Call::NewXmlDocument}) {
        writeFile(path, "previous");
        const FailingCall failure(call);
        EXPECT_EQ(statusHex(RGEN_E_CREATE_PERSIST), dump(oneValue));
        EXPECT_TRUE(failure.reached());
        EXPECT_FALSE(exists(path));
    }
}

}  // namespace
}  // namespace rgen_test
