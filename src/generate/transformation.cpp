// The transformation. A template is read, translated and compiled again for every report; nothing
// is cached. All three formats are treated alike: the format only selects the template's folder
// and, later, the delivery.
//
// SPDX-License-Identifier: MIT
#include "generate/transformation.h"

#include <libxml/parser.h>
#include <libxslt/transform.h>
#include <libxslt/xsltutils.h>

#include <mutex>
#include <utility>

#include "generate/translation.h"
#include "store/base/file_system.h"
#include "store/xml/parser_context.h"
#include "store/xml/stack_guard.h"
#include "store/xml/work.h"

namespace rgen {
namespace {

bool isKnownFormat(const std::string& format) {
    return format == "pdf" || format == "html" || format == "txt";
}

/// Enables entity substitution and loading of external DTDs as defaults of the calling thread.
void setParserDefaults() {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    xmlSubstituteEntitiesDefault(1);
    xmlLoadExtDtdDefaultValue = 1;
#pragma GCC diagnostic pop
}

XmlPtr<xmlDoc> applyStylesheet(xsltStylesheet* stylesheet, xmlDoc* data, XmlWork& work) {
    const XmlPtr<xsltTransformContext> context(xsltNewTransformContext(stylesheet, data));
    if (!context) return nullptr;
    guardStack(*context, work);
    constexpr const char** noParameters = nullptr;
    return XmlPtr<xmlDoc>(xsltApplyStylesheetUser(stylesheet, data, noParameters,
                                                  /*output=*/nullptr, /*profile=*/nullptr,
                                                  context.get()));
}

Status serialise(xmlDoc* output, xsltStylesheet* stylesheet, ByteVector& result) {
    xmlChar* text = nullptr;
    int length = 0;
    const int outcome = xsltSaveResultToString(&text, &length, output, stylesheet);
    const XmlPtr<xmlChar> buffer(text);
    if (outcome < 0 || !buffer) return RGEN_E_XSLT_RESULT;
    result.assign(buffer.get(), buffer.get() + length);
    return RGEN_OK;
}

}  // namespace

Status transform(ReportGenerator& generator, const std::string& outputFormat,
                 PropertyMap properties, const std::string& templatePath,
                 const sync::CancellationToken& token, ByteVector& result) {
    const XmlSilence silence;
    const std::lock_guard lock(generator.mutex);
    if (!isKnownFormat(outputFormat)) return RGEN_E_UNKNOWN_FORMAT;
    const XmlPtr<xmlDoc> data = buildPropertyDocument(std::exchange(properties, PropertyMap()));
    if (token.isCancellationRequested()) return RGEN_CANCELED;
    // Starts after the data document is built: that step may drop properties when memory is
    // exhausted and must not drain the reserve.
    XmlWork work(XmlWork::WithReserve{});
    const XmlPtr<xsltStylesheet> stylesheet = loadStylesheet(generator, templatePath);
    if (!stylesheet || !work.memorySufficed()) return RGEN_E_XSLT_PARSE;
    if (token.isCancellationRequested()) return RGEN_CANCELED;
    const XmlPtr<xmlDoc> output = applyStylesheet(stylesheet.get(), data.get(), work);
    if (!output || !work.memorySufficed()) return RGEN_E_XSLT_APPLY;
    const Status serialised = serialise(output.get(), stylesheet.get(), result);
    return work.memorySufficed() ? serialised : RGEN_E_XSLT_RESULT;
}

XmlPtr<xsltStylesheet> loadStylesheet(const ReportGenerator& generator,
                                      const std::string& templatePath) {
    std::string text;
    if (!readFile(templatePath, text)) return nullptr;
    translateTemplateText(generator, text);
    constexpr int options = XML_PARSE_RECOVER | XML_PARSE_NONET;
    constexpr const char* noBaseUrl = nullptr;
    XmlPtr<xmlDoc> document(xmlReadDoc(xmlText(text.c_str()), noBaseUrl, "UTF-8", options));
    if (!document) return nullptr;
    // On purpose: set after the parse and before the compilation, for every template.
    setParserDefaults();
    XmlPtr<xsltStylesheet> stylesheet(xsltNewStylesheet());
    if (!stylesheet || stylesheet->xpathCtxt == nullptr) return nullptr;
    guardCompilation(*stylesheet);
    if (xsltParseStylesheetUser(stylesheet.get(), document.get()) != 0) return nullptr;
    // libxslt owns the document only if it has compiled it.
    static_cast<void>(document.release());
    return stylesheet;
}

}  // namespace rgen
