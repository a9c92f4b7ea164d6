// The transformation: order of its checks, failing library calls, its lock. What templates make is
// tested through the library (host/transformation_test.cpp).
//
// SPDX-License-Identifier: MIT
#include "generate/transformation.h"

#include <libxml/parser.h>

#include <string>

#include "store/xml/parser_context.h"
#include "support/fault_injection.h"
#include "unit/unit_fixture.h"

namespace rgen_test {
namespace {

using rgen::ByteVector;

const char* const valueOfA = "<xsl:value-of select=\"/data/properties/property[@name='a']\"/>";

class TransformTest : public UnitTest {
protected:
    std::string transform(const std::string& format = "html") {
        return statusHex(
            rgen::transform(generator, format, properties, path, *source.getToken(), result));
    }
    // Transforms with a template of the default report type.
    std::string transformWith(const std::string& text) {
        putTemplate(text);
        return transform();
    }
    std::string resultText() const { return {result.begin(), result.end()}; }

    const std::string path = folder.dataFile("templates/html/test_stylesheet.xsl");
    const rgen::PropertyMap properties = {{"a", "1"}};
    rgen::sync::CancellationTokenSource source;
    ByteVector result = {'b'};
};

TEST_F(TransformTest, ResultIsReplacedOnSuccess) {
    EXPECT_EQ(statusHex(RGEN_OK), transformWith(textTemplate(std::string("[") + valueOfA + "]")));
    EXPECT_EQ("[1]", resultText());
    EXPECT_TRUE(isUnlocked(generator));
}

TEST_F(TransformTest, OtherFormatsAreRefusedBeforeAnythingElse) {
    source.cancel();
    for (const char* format : {"", "doc", "HTML", "html ", "htm", "pdfx"}) {
        EXPECT_EQ(statusHex(RGEN_E_UNKNOWN_FORMAT), transform(format)) << format;
    }
    EXPECT_EQ("b", resultText());
    EXPECT_TRUE(isUnlocked(generator));
}

TEST_F(TransformTest, SetTokenIsSeenBeforeTheTemplateIsRead) {
    EXPECT_EQ(statusHex(RGEN_E_XSLT_PARSE), transform());
    source.cancel();
    EXPECT_EQ(statusHex(RGEN_CANCELED), transform());
    EXPECT_EQ("b", resultText());
    EXPECT_TRUE(isUnlocked(generator));
}

TEST_F(TransformTest, TokenThatIsSetDuringTheTranslationIsSeenBeforeTheTemplateRuns) {
    generator.translateContext = &source;
    generator.translateFunction = [](const char* text, void* context) {
        static_cast<rgen::sync::CancellationTokenSource*>(context)->cancel();
        return text;
    };
    const std::string marker = "QT_TRANSLATE_NOOP(\"QObject\", \"m\")";
    const FailingCall applying(Call::NewTransformContext);
    EXPECT_EQ(statusHex(RGEN_CANCELED), transformWith(textTemplate(marker)));
    EXPECT_FALSE(applying.reached());
    EXPECT_EQ("b", resultText());
}

TEST_F(TransformTest, TemplateThatDoesNotCompileWinsOverTheSecondCheck) {
    generator.translateContext = &source;
    generator.translateFunction = [](const char*, void* context) {
        static_cast<rgen::sync::CancellationTokenSource*>(context)->cancel();
        return "no stylesheet";
    };
    EXPECT_EQ(statusHex(RGEN_E_XSLT_PARSE), transformWith("QT_TRANSLATE_NOOP(\"QObject\", \"m\")"));
}

TEST_F(TransformTest, TokenThatIsSetWhileTheTemplateRunsIsNotSeen) {
    putTemplate(textTemplate(valueOfA));
    const InterceptedCall applying(Call::NewTransformContext, [this] { source.cancel(); });
    EXPECT_EQ(statusHex(RGEN_OK), transform());
    EXPECT_TRUE(applying.reached());
    EXPECT_EQ("1", resultText());
}

TEST_F(TransformTest, MutexIsHeldFromTheTranslationToTheEnd) {
    static bool unlocked;
    unlocked = true;
    generator.translateContext = &generator;
    generator.translateFunction = [](const char* text, void* context) {
        unlocked = isUnlocked(*static_cast<rgen::ReportGenerator*>(context));
        return text;
    };
    bool unlockedAtTheEnd = true;
    const InterceptedCall saving(Call::SaveTransformResult,
                                 [&] { unlockedAtTheEnd = isUnlocked(generator); });
    EXPECT_EQ(statusHex(RGEN_OK),
              transformWith(textTemplate("QT_TRANSLATE_NOOP(\"QObject\", \"m\")")));
    EXPECT_EQ("m", resultText());
    EXPECT_FALSE(unlocked);
    EXPECT_FALSE(unlockedAtTheEnd);
    EXPECT_TRUE(isUnlocked(generator));
}

TEST_F(TransformTest, MissingTransformContextIsReported) {
    putTemplate(textTemplate(valueOfA));
    const FailingCall failure(Call::NewTransformContext);
    EXPECT_EQ(statusHex(RGEN_E_XSLT_APPLY), transform());
    EXPECT_TRUE(failure.reached());
    EXPECT_EQ("b", resultText());
}

TEST_F(TransformTest, MissingDataDocumentIsSurvived) {
    putTemplate(textTemplate(valueOfA));
    const FailingCall failure(Call::NewXmlDocument);
    EXPECT_EQ(statusHex(RGEN_E_XSLT_APPLY), transform());
    EXPECT_TRUE(failure.reached());
    EXPECT_EQ("b", resultText());
}

TEST_F(TransformTest, ResultThatCannotBeSerialised) {
    putTemplate(textTemplate(valueOfA));
    const FailingCall failure(Call::SaveTransformResult);
    EXPECT_EQ(statusHex(RGEN_E_XSLT_RESULT), transform());
    EXPECT_TRUE(failure.reached());
    EXPECT_EQ("b", resultText());
}

TEST_F(TransformTest, LoadStylesheetCompilesWhatTheCallbackMade) {
    const rgen::XmlSilence silence;
    putTemplate(textTemplate("x"));
    EXPECT_NE(nullptr, rgen::loadStylesheet(generator, path));
    EXPECT_EQ(nullptr, rgen::loadStylesheet(generator, folder.file("none.xsl")));
    generator.translateFunction = [](const char*, void*) { return "</broken>"; };
    putTemplate("<a>QT_TRANSLATE_NOOP(\"QObject\", \"m\")</a>");
    EXPECT_EQ(nullptr, rgen::loadStylesheet(generator, path));
}

TEST_F(TransformTest, LoadStylesheetSetsTheParserDefaultsOfTheThread) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    const rgen::XmlSilence silence;
    const int substitute = xmlSubstituteEntitiesDefault(0);
    const int loadDtd = xmlLoadExtDtdDefaultValue;
    xmlLoadExtDtdDefaultValue = 0;
    EXPECT_EQ(nullptr, rgen::loadStylesheet(generator, folder.file("none.xsl")));
    EXPECT_EQ(0, xmlLoadExtDtdDefaultValue);
    putTemplate("<a/>");
    EXPECT_EQ(nullptr, rgen::loadStylesheet(generator, path));
    EXPECT_EQ(1, xmlLoadExtDtdDefaultValue);
    EXPECT_EQ(1, xmlSubstituteEntitiesDefault(substitute));
    xmlLoadExtDtdDefaultValue = loadDtd;
#pragma GCC diagnostic pop
}

}  // namespace
}  // namespace rgen_test
