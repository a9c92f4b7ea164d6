// The driver: the order of its steps, its checkpoints and its registration. A case acts between two
// steps through the calls that it intercepts, and sets the flag of the registered source itself.
//
// SPDX-License-Identifier: MIT
#include "generate/generation_driver.h"

#include <boost/filesystem/exception.hpp>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

#include "memory/pool_slot.h"
#include "store/persistent_data.h"
#include "support/fault_injection.h"
#include "sync/cancellation.h"
#include "unit/unit_fixture.h"

namespace rgen_test {
namespace {

using rgen::ByteVector;
using rgen::Variant;
using rgen::VariantHint;

std::string valueOf(const std::string& name) {
    return "<xsl:value-of select=\"/data/properties/property[@name='" + name + "']\"/>";
}

class GenerateTest : public UnitTest {
protected:
    GenerateTest() {
        request.templateGuid = rgen::defaultReportTypeGuid;
        request.outputMode = rgen::output_mode::bytes;
        request.outputFormat = "html";
        request.variants = {{"a", Variant(std::string("value"), VariantHint::Generic)}};
    }

    std::string generate() { return statusHex(rgen::generate(generator, request, result)); }
    std::string resultText() const {
        const auto& bytes = result.value.as<ByteVector>();
        return {bytes.begin(), bytes.end()};
    }
    void putPersistentData(const rgen::PropertyMap& properties) {
        ASSERT_EQ(RGEN_OK, rgen::setPersistentDataFromPairs(generator, rgen::defaultReportTypeGuid,
                                                            properties));
    }
    // Sets the flag of the only running generation, as a cancelling thread does.
    void raiseFlag() {
        ASSERT_EQ(1U, generator.cancellationRegistry.size());
        generator.cancellationRegistry.begin()->second->cancel();
    }

    rgen::InputParams request = {};
    Variant result;
};

TEST_F(GenerateTest, PoolComesBackAfterEveryEnd) {
    putConfig();
    auto pool = generator.poolSlot.acquire();
    rgen::memory::Pool* const expected = pool.get();
    generator.poolSlot.release(std::move(pool));
    generator.translateFunction = [](const char*, void*) -> const char* {
        throw std::runtime_error("no translation");
    };
    const std::string sorted =
        "<xsl:for-each select=\"/data/properties/property\">"
        "<xsl:sort select=\"@name\" lang=\"en\"/><xsl:value-of select=\"@name\"/></xsl:for-each>";
    for (const std::string& body :
         {std::string("good"), sorted, std::string("<xsl:bad/>"), std::string("<broken"),
          std::string("<xsl:value-of select=\"unknown()\"/>"),
          std::string("QT_TRANSLATE_NOOP(\"QObject\", \"thrown\")")}) {
        putTemplate(textTemplate(body));
        try {
            generate();
        } catch (const std::runtime_error&) {
            EXPECT_TRUE(isUnlocked(generator)) << body;
        }
        pool = generator.poolSlot.acquire();
        EXPECT_EQ(expected, pool.get()) << body;
        generator.poolSlot.release(std::move(pool));
    }
}

TEST_F(GenerateTest, EmptyValueHasTheFixedText) {
    putConfig();
    request.variants = {{"a", Variant()}};
    putTemplate(textTemplate(valueOf("a")));
    EXPECT_EQ(statusHex(RGEN_OK), generate());
    EXPECT_EQ("UNINITIALIZED_VARIANT_VALUE", resultText());
}

TEST_F(GenerateTest, EntryIsThereWhileTheGenerationRuns) {
    putConfig();
    putTemplate(textTemplate("x"));
    std::string key;
    const InterceptedCall loading(Call::ReadXmlFile,
                                  [&] { key = generator.cancellationRegistry.begin()->first; });
    EXPECT_EQ(statusHex(RGEN_OK), generate());
    EXPECT_EQ("deadbabe-0000-0000-0000-000000000000", key);
    EXPECT_TRUE(generator.cancellationRegistry.empty());
}

TEST_F(GenerateTest, NoEntryStaysWhateverTheStatus) {
    putConfig();
    EXPECT_EQ(statusHex(RGEN_E_TEMPLATE_NOT_FOUND), generate());
    EXPECT_TRUE(generator.cancellationRegistry.empty());
    request.templateGuid = {1, 2, 3, {}};
    EXPECT_EQ(statusHex(RGEN_E_GUID_NOT_IN_CONFIG), generate());
    EXPECT_TRUE(generator.cancellationRegistry.empty());
    generator.dataDirPath.clear();
    EXPECT_THROW(generate(), boost::filesystem::filesystem_error);
    EXPECT_TRUE(generator.cancellationRegistry.empty());
    EXPECT_TRUE(isUnlocked(generator));
}

TEST_F(GenerateTest, EntriesOfOtherGenerationsStay) {
    putConfig();
    putTemplate(textTemplate("x"));
    const auto another = std::make_shared<rgen::sync::CancellationTokenSource>();
    generator.cancellationRegistry.emplace("deadbabe-0000-0000-0000-000000000000", another);
    EXPECT_EQ(statusHex(RGEN_OK), generate());
    ASSERT_EQ(1U, generator.cancellationRegistry.size());
    EXPECT_EQ(another, generator.cancellationRegistry.begin()->second);
}

TEST_F(GenerateTest, FlagRaisedDuringTheConfigurationLoadIsSeenBehindIt) {
    putConfig();
    putTemplate(textTemplate("x"));
    const InterceptedCall loading(Call::ReadXmlFile, [this] { raiseFlag(); });
    const InterceptedCall reading(
        Call::ReadXmlFile, [] {}, 2);
    EXPECT_EQ(statusHex(RGEN_CANCELED), generate());
    EXPECT_TRUE(loading.reached());
    EXPECT_FALSE(reading.reached());
    EXPECT_FALSE(result.value.hasValue);
    EXPECT_TRUE(generator.cancellationRegistry.empty());
}

TEST_F(GenerateTest, ConfigurationFailureWinsOverTheFlag) {
    putConfig();
    request.templateGuid = {1, 2, 3, {}};
    const InterceptedCall loading(Call::ReadXmlFile, [this] { raiseFlag(); });
    EXPECT_EQ(statusHex(RGEN_E_GUID_NOT_IN_CONFIG), generate());
}

TEST_F(GenerateTest, FlagRaisedDuringTheMergeIsSeenBehindTheTemplateSearch) {
    putConfig();
    putTemplate(textTemplate("x"));
    static int translations;
    translations = 0;
    generator.translateFunction = [](const char* text, void*) {
        ++translations;
        return text;
    };
    const InterceptedCall reading(
        Call::ReadXmlFile, [this] { raiseFlag(); }, 2);
    EXPECT_EQ(statusHex(RGEN_CANCELED), generate());
    EXPECT_TRUE(reading.reached());
    EXPECT_EQ(0, translations);
}

TEST_F(GenerateTest, EmptyInputAndMissingTemplateWinOverTheFlag) {
    putConfig();
    {
        const InterceptedCall reading(
            Call::ReadXmlFile, [this] { raiseFlag(); }, 2);
        EXPECT_EQ(statusHex(RGEN_E_TEMPLATE_NOT_FOUND), generate());
    }
    request.variants.clear();
    const InterceptedCall reading(
        Call::ReadXmlFile, [this] { raiseFlag(); }, 2);
    EXPECT_EQ(statusHex(RGEN_E_EMPTY_INPUT), generate());
}

TEST_F(GenerateTest, FlagRaisedAfterTheLastCheckIsNotSeen) {
    putConfig();
    putTemplate(textTemplate("x"));
    const InterceptedCall saving(Call::SaveTransformResult, [this] { raiseFlag(); });
    EXPECT_EQ(statusHex(RGEN_OK), generate());
    EXPECT_TRUE(saving.reached());
    EXPECT_EQ("x", resultText());
}

TEST_F(GenerateTest, FormatThatIsNotUtf8Raises) {
    putConfig();
    request.outputFormat = "a\xFF";
    EXPECT_THROW(generate(), std::range_error);
    EXPECT_TRUE(generator.cancellationRegistry.empty());
}

TEST_F(GenerateTest, UnknownModeIsRefusedAfterTheWholeTransformation) {
    putConfig();
    putTemplate(textTemplate("x"));
    request.outputMode = 3;
    const InterceptedCall saving(Call::SaveTransformResult, [] {});
    EXPECT_EQ(statusHex(RGEN_E_UNKNOWN_OUTPUT_MODE), generate());
    EXPECT_TRUE(saving.reached());
}

TEST_F(GenerateTest, XPathFailureOfPersistentDataContributesNothing) {
    putConfig();
    putTemplate(textTemplate(valueOf("a")));
    putPersistentData({{"b", "1"}});
    // The first evaluation is the one of the configuration.
    const FailingCall failure(Call::EvaluateXPath, 2);
    EXPECT_EQ(statusHex(RGEN_OK), generate());
    EXPECT_TRUE(failure.reached());
    EXPECT_EQ("value", resultText());
}

TEST_F(GenerateTest, FlagRaisedDuringTheTemplateSearchWinsOverAnUnknownFormat) {
    putConfig();
    request.outputFormat = "doc";
    const InterceptedCall making(Call::CreateDirectory, [this] {
        putTemplate(textTemplate("x"), "doc");
        raiseFlag();
    });
    EXPECT_EQ(statusHex(RGEN_CANCELED), generate());
    EXPECT_TRUE(making.reached());
}

}  // namespace
}  // namespace rgen_test
