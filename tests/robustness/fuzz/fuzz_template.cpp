// Bytes as a template, translated and applied on a thread with a small stack. Templates are
// programs: here they may read two files of the work folder and write none, and they stop at limits
// (xslt_limits.h).
//
// SPDX-License-Identifier: MIT
#include "fuzz_support.h"
#include "fuzz_targets.h"
#include "memory/pool_slot.h"
#include "support/sized_thread.h"
#include "xslt_limits.h"

namespace rgen_fuzz {
namespace {

const char* const includedTemplate =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
    "<xsl:variable name=\"v\" select=\"'included'\"/>"
    "<xsl:template name=\"t\"><i><xsl:value-of select=\"$v\"/></i></xsl:template>"
    "<xsl:template match=\"property\"><p><xsl:value-of select=\".\"/></p></xsl:template>"
    "</xsl:stylesheet>";
const char* const otherDocument =
    "<!DOCTYPE d [<!ENTITY e 'entity'>]><d><x id=\"1\">one</x><x id=\"2\">&e;</x></d>";

// Some messages become markup, some vanish, the others stay.
const char* RGEN_CALL translate(const char* text, void*) {
    if (text[0] == '<') return "<b>&amp;</b>";
    return text[0] == '-' ? "" : text;
}

// Made on the first thread: the rules for files count from there on.
const Generator& generator() {
    static const Generator instance = [] {
        writeWorkFile("included.xsl", includedTemplate);
        writeWorkFile("data.xml", otherDocument);
        writeWorkFile("template/.rgen/templates/html/test_stylesheet.xsl", "");
        return Generator("template");
    }();
    static const bool prepared = [] {
        rgen_setTranslateFunction(instance.get(), translate, nullptr);
        installXsltLimits();
        return true;
    }();
    static_cast<void>(prepared);
    return instance;
}

const RgenCVariantSet& values() {
    static ValueSet set;
    static const RgenCVariantSet record = [] {
        set.addString("name", "value");
        set.addString("markup", "&lt;b&gt; &amp;amp; ]]>");
        set.addString("words", "one two  three");
        rgen_createRgenCVariantInt64("number", -42, RGEN_HINT_GENERIC, &set.add());
        rgen_createRgenCVariantInt64("time", 86399, RGEN_HINT_DATE_TIME, &set.add());
        return set.record();
    }();
    return record;
}

}  // namespace

void fuzzTemplate(const std::string& input) {
    const Generator& target = generator();
    writeWorkFile("template/.rgen/templates/html/test_stylesheet.xsl", input);
    RgenStatus status = RGEN_E_UNKNOWN;
    rgen_test::runOnStack(rgen_test::mebibyte, [&] {
        const XsltBudget budget;
        std::string report;
        status = generateBytes(target, values(), "html", report);
    });
    requireOneOf(status, {RGEN_OK, RGEN_E_XSLT_PARSE, RGEN_E_XSLT_APPLY, RGEN_E_XSLT_RESULT},
                 "rgen_generateReport");
    const rgen::memory::PoolFaults faults = rgen::memory::poolFaults();
    require(faults.poolsLeft == 0, "a block was left in a pool");
    require(faults.wrongReleases == 0, "a block was released twice");
}

}  // namespace rgen_fuzz
