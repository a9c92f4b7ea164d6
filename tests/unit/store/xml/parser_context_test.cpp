// The shared context of the XML libraries, and the suppression of their messages.
//
// SPDX-License-Identifier: MIT
#include "store/xml/parser_context.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxslt/extensions.h>
#include <libxslt/extra.h>

#include <thread>
#include <vector>

#include "store/xml/handles.h"
#include "support/console_capture.h"

namespace rgen_test {
namespace {

using rgen::XmlSilence;

void countError(void* counter, const xmlError*) {
    ++*static_cast<int*>(counter);
}

void ignoreText(void*, const char*, ...) {}

void parseBadText() {
    xmlFreeDoc(xmlReadDoc(rgen::xmlText("<a"), nullptr, nullptr, 0));
}

TEST(SharedXmlParserContext, IsOneForTheProcess) {
    std::vector<rgen::XmlParserContextReference> contexts(4);
    std::vector<std::thread> threads;
    for (auto& context : contexts) {
        threads.emplace_back([&context] { context = rgen::sharedXmlParserContext(); });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (const auto& context : contexts)
        EXPECT_EQ(rgen::sharedXmlParserContext(), context);
}

// Uses a context of its own: the process keeps a reference to the shared one.
TEST(XmlParserContext, LastReferenceEndsTheLibraryAndTheNextStartsItAgain) {
    rgen::XmlParserContext context;
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(0U, context.references());
        rgen::XmlParserContextReference first = context.acquire();
        const rgen::XmlParserContextReference second = context.acquire();
        EXPECT_EQ(first, second);
        EXPECT_EQ(2U, context.references());
        first.reset();
        EXPECT_NE(nullptr,
                  xsltExtModuleFunctionLookup(rgen::xmlText("node-set"), XSLT_LIBXSLT_NAMESPACE));
    }
    EXPECT_EQ(0U, context.references());
    // The last reference has ended the XML libraries for the whole process: starts them again.
    static rgen::XmlParserContext again;
    static_cast<void>(again.acquire().release());
}

TEST(XmlParserContext, ReferenceOfTheProcessEndsWithoutWaiting) {
    rgen::XmlParserContext context;
    static_cast<void>(context.acquire().release());
    static_cast<void>(context.acquire().release());
    context.releaseAtEnd();
    EXPECT_EQ(1U, context.references());
}

TEST(XmlSilence, NothingIsPrintedWhileItLives) {
    const ConsoleText console = captureConsole([] {
        const XmlSilence silence;
        parseBadText();
        xmlGenericError(xmlGenericErrorContext, "text %d\n", 1);
    });
    EXPECT_EQ("", console.out + console.err);
}

TEST(XmlSilence, PreviousHandlersComeBack) {
    int errors = 0;
    int context = 0;
    xmlSetStructuredErrorFunc(&errors, countError);
    xmlSetGenericErrorFunc(&context, ignoreText);
    {
        const XmlSilence silence;
        parseBadText();
        EXPECT_EQ(0, errors);
        EXPECT_NE(&countError, xmlStructuredError);
    }
    EXPECT_EQ(&countError, xmlStructuredError);
    EXPECT_EQ(&errors, xmlStructuredErrorContext);
    EXPECT_EQ(&ignoreText, xmlGenericError);
    EXPECT_EQ(&context, xmlGenericErrorContext);
    parseBadText();
    EXPECT_GT(errors, 0);
    xmlSetStructuredErrorFunc(nullptr, nullptr);
    xmlSetGenericErrorFunc(nullptr, nullptr);
}

TEST(XmlSilence, InnerOneLeavesTheOuterInForce) {
    int errors = 0;
    xmlSetStructuredErrorFunc(&errors, countError);
    {
        const XmlSilence outer;
        const xmlStructuredErrorFunc quiet = xmlStructuredError;
        {
            const XmlSilence inner;
            EXPECT_EQ(quiet, xmlStructuredError);
        }
        EXPECT_EQ(quiet, xmlStructuredError);
        parseBadText();
    }
    EXPECT_EQ(0, errors);
    EXPECT_EQ(&countError, xmlStructuredError);
    xmlSetStructuredErrorFunc(nullptr, nullptr);
}

TEST(XmlSilence, OtherThreadsKeepTheirHandlers) {
    int errors = 0;
    const XmlSilence silence;
    std::thread other([&errors] {
        xmlSetStructuredErrorFunc(&errors, countError);
        parseBadText();
    });
    other.join();
    EXPECT_GT(errors, 0);
}

}  // namespace
}  // namespace rgen_test
