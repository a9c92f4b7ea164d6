// Replacements of calls of the XML libraries and of Boost. Each one has the name by which the
// linker looks for it.
//
// SPDX-License-Identifier: MIT
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlIO.h>
#include <libxml/xmlsave.h>
#include <libxml/xpath.h>
#include <libxslt/transform.h>
#include <libxslt/xsltutils.h>

#include <boost/filesystem/operations.hpp>

#include "store/xml/parser_context.h"
#include "support/fault_injection.h"

namespace rgen_test {
namespace {

// What libxml2 returns for a full disk: another negative number than -1.
constexpr int fullDisk = -1528;

extern "C" {

bool realCreateDirectory(const boost::filesystem::path& path,
                         const boost::filesystem::path* existing,
                         boost::system::error_code* error) __asm__("__real_" RGEN_CREATE_DIRECTORY);
bool wrappedCreateDirectory(
    const boost::filesystem::path& path, const boost::filesystem::path* existing,
    boost::system::error_code* error) __asm__("__wrap_" RGEN_CREATE_DIRECTORY);

boost::filesystem::file_status realStatus(
    const boost::filesystem::path& path,
    boost::system::error_code* error) __asm__("__real_" RGEN_FILE_STATUS);
boost::filesystem::file_status wrappedStatus(
    const boost::filesystem::path& path,
    boost::system::error_code* error) __asm__("__wrap_" RGEN_FILE_STATUS);

xmlDoc* realReadFile(const char* path, const char* encoding,
                     int options) __asm__("__real_xmlReadFile");
xmlDoc* wrappedReadFile(const char* path, const char* encoding,
                        int options) __asm__("__wrap_xmlReadFile");
xmlDoc* realNewDoc(const xmlChar* version) __asm__("__real_xmlNewDoc");
xmlDoc* wrappedNewDoc(const xmlChar* version) __asm__("__wrap_xmlNewDoc");
xmlNode* realNewNode(xmlNs* space, const xmlChar* name) __asm__("__real_xmlNewNode");
xmlNode* wrappedNewNode(xmlNs* space, const xmlChar* name) __asm__("__wrap_xmlNewNode");
xmlNode* realNewChild(xmlNode* parent, xmlNs* space, const xmlChar* name,
                      const xmlChar* content) __asm__("__real_xmlNewChild");
xmlNode* wrappedNewChild(xmlNode* parent, xmlNs* space, const xmlChar* name,
                         const xmlChar* content) __asm__("__wrap_xmlNewChild");

xmlAttr* realNewProp(xmlNode* node, const xmlChar* name,
                     const xmlChar* value) __asm__("__real_xmlNewProp");
xmlAttr* wrappedNewProp(xmlNode* node, const xmlChar* name,
                        const xmlChar* value) __asm__("__wrap_xmlNewProp");

xmlXPathContext* realNewXPathContext(xmlDoc* document) __asm__("__real_xmlXPathNewContext");
xmlXPathContext* wrappedNewXPathContext(xmlDoc* document) __asm__("__wrap_xmlXPathNewContext");
xmlXPathObject* realEvaluate(const xmlChar* expression,
                             xmlXPathContext* context) __asm__("__real_xmlXPathEvalExpression");
xmlXPathObject* wrappedEvaluate(const xmlChar* expression,
                                xmlXPathContext* context) __asm__("__wrap_xmlXPathEvalExpression");

xmlOutputBuffer* realNewOutputBuffer(
    xmlOutputWriteCallback write, xmlOutputCloseCallback close, void* stream,
    xmlCharEncodingHandler* encoder) __asm__("__real_xmlOutputBufferCreateIO");
xmlOutputBuffer* wrappedNewOutputBuffer(
    xmlOutputWriteCallback write, xmlOutputCloseCallback close, void* stream,
    xmlCharEncodingHandler* encoder) __asm__("__wrap_xmlOutputBufferCreateIO");
int realSaveDocument(xmlOutputBuffer* buffer, xmlDoc* document, const char* encoding,
                     int format) __asm__("__real_xmlSaveFormatFileTo");
int wrappedSaveDocument(xmlOutputBuffer* buffer, xmlDoc* document, const char* encoding,
                        int format) __asm__("__wrap_xmlSaveFormatFileTo");

xsltTransformContext* realNewTransformContext(xsltStylesheet* stylesheet, xmlDoc* document) __asm__(
    "__real_xsltNewTransformContext");
xsltTransformContext* wrappedNewTransformContext(
    xsltStylesheet* stylesheet, xmlDoc* document) __asm__("__wrap_xsltNewTransformContext");
int realSaveResult(xmlChar** text, int* length, xmlDoc* result,
                   xsltStylesheet* stylesheet) __asm__("__real_xsltSaveResultToString");
int wrappedSaveResult(xmlChar** text, int* length, xmlDoc* result,
                      xsltStylesheet* stylesheet) __asm__("__wrap_xsltSaveResultToString");

bool wrappedCreateDirectory(const boost::filesystem::path& path,
                            const boost::filesystem::path* existing,
                            boost::system::error_code* error) {
    return !failsNow(Call::CreateDirectory) && realCreateDirectory(path, existing, error);
}

boost::filesystem::file_status wrappedStatus(const boost::filesystem::path& path,
                                             boost::system::error_code* error) {
    const boost::filesystem::file_status status = realStatus(path, error);
    if (!failsNow(Call::TellFileKind)) return status;
    return {boost::filesystem::reparse_file, status.permissions()};
}

xmlDoc* wrappedReadFile(const char* path, const char* encoding, int options) {
    return failsNow(Call::ReadXmlFile) ? nullptr : realReadFile(path, encoding, options);
}

xmlDoc* wrappedNewDoc(const xmlChar* version) {
    return failsNow(Call::NewXmlDocument) ? nullptr : realNewDoc(version);
}

xmlNode* wrappedNewNode(xmlNs* space, const xmlChar* name) {
    return failsNow(Call::NewXmlNode) ? nullptr : realNewNode(space, name);
}

xmlNode* wrappedNewChild(xmlNode* parent, xmlNs* space, const xmlChar* name,
                         const xmlChar* content) {
    return failsNow(Call::NewXmlChild) ? nullptr : realNewChild(parent, space, name, content);
}

xmlAttr* wrappedNewProp(xmlNode* node, const xmlChar* name, const xmlChar* value) {
    return failsNow(Call::NewXmlAttribute) ? nullptr : realNewProp(node, name, value);
}

xmlXPathContext* wrappedNewXPathContext(xmlDoc* document) {
    return failsNow(Call::NewXPathContext) ? nullptr : realNewXPathContext(document);
}

xmlXPathObject* wrappedEvaluate(const xmlChar* expression, xmlXPathContext* context) {
    return failsNow(Call::EvaluateXPath) ? nullptr : realEvaluate(expression, context);
}

xmlOutputBuffer* wrappedNewOutputBuffer(xmlOutputWriteCallback write, xmlOutputCloseCallback close,
                                        void* stream, xmlCharEncodingHandler* encoder) {
    return failsNow(Call::NewOutputBuffer) ? nullptr
                                           : realNewOutputBuffer(write, close, stream, encoder);
}

int wrappedSaveDocument(xmlOutputBuffer* buffer, xmlDoc* document, const char* encoding,
                        int format) {
    const bool fails = failsNow(Call::SaveXmlDocument);
    const int count = realSaveDocument(buffer, document, encoding, format);
    return fails ? fullDisk : count;
}

xsltTransformContext* wrappedNewTransformContext(xsltStylesheet* stylesheet, xmlDoc* document) {
    return failsNow(Call::NewTransformContext) ? nullptr
                                               : realNewTransformContext(stylesheet, document);
}

int wrappedSaveResult(xmlChar** text, int* length, xmlDoc* result, xsltStylesheet* stylesheet) {
    if (!failsNow(Call::SaveTransformResult)) {
        return realSaveResult(text, length, result, stylesheet);
    }
    *text = nullptr;
    *length = 0;
    return -1;
}

}  // extern "C"

}  // namespace

using SharedContext = rgen::XmlParserContextReference;

SharedContext realShareContext() __asm__("__real_" RGEN_SHARE_XML_CONTEXT);
SharedContext wrappedShareContext() __asm__("__wrap_" RGEN_SHARE_XML_CONTEXT);

SharedContext wrappedShareContext() {
    if (failsNow(Call::ShareXmlContext)) return {};
    return realShareContext();
}

}  // namespace rgen_test
