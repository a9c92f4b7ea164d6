// Every element of XSLT with every kind of node inside, alone and beside another one: no block is
// released twice, none is left (pool_fault_check.h looks after each case).
//
// SPDX-License-Identifier: MIT
#include "support/node_kinds.h"

#include <string>

#include "generate/transformation.h"
#include "store/xml/work.h"
#include "support/pool_fault_check.h"
#include "unit/unit_fixture.h"

namespace rgen_test {
namespace {

using MakeSheet = std::string (*)(const NodeText&, const std::string&, const std::string&);

class NodeKindsInPools : public UnitTest {
protected:
    void transform(const std::string& sheet) {
        putTemplate(sheet);
        const rgen::XmlWork work(slot_);
        rgen::ByteVector result;
        static_cast<void>(rgen::transform(generator, "html", {{"a", "1"}, {"b", "2"}}, path_,
                                          *source_.getToken(), result));
    }
    void expectOrder(const std::string& sheet) {
        transform(sheet);
        const auto faults = acknowledgePoolFaults();
        EXPECT_EQ(0U, faults.poolsLeft);
        EXPECT_EQ(0U, faults.wrongReleases);
    }
    void expectOrderWith(MakeSheet makeSheet, const std::vector<NodeText>& places,
                         const std::string& other) {
        forEachPlaceAndKind(places, [&](const NodeText& place, const NodeText& kind) {
            SCOPED_TRACE(place.label + ", " + kind.label);
            expectOrder(makeSheet(place, kind.xml + other, "html"));
            if (!other.empty()) expectOrder(makeSheet(place, other + kind.xml, "html"));
        });
    }
    void expectOrderEverywhere(const std::string& other) {
        expectOrderWith(sheetWithBody, bodyPlaces(), other);
        expectOrderWith(sheetWithTopLevel, topLevelPlaces(), other);
    }

private:
    const std::string path_ = folder.dataFile("templates/html/test_stylesheet.xsl");
    rgen::sync::CancellationTokenSource source_;
    rgen::memory::PoolSlot slot_;
};

TEST_F(NodeKindsInPools, Alone) {
    expectOrderEverywhere("");
}

TEST_F(NodeKindsInPools, BesideText) {
    expectOrderEverywhere("text");
}

TEST_F(NodeKindsInPools, BesideCdata) {
    expectOrderEverywhere("<![CDATA[cdata]]>");
}

TEST_F(NodeKindsInPools, BesideAnElement) {
    expectOrderEverywhere("<i/>");
}

}  // namespace
}  // namespace rgen_test
