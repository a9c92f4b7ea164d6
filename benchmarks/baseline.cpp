// The candidate "baseline": direct calls of libxml2 and libxslt for the work of one report, with
// the C heap. The report is complete, but there is no lock, no registration, no translation (the
// template is translated in advance) and no check except for success.
//
// SPDX-License-Identifier: MIT
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xpath.h>
#include <libxslt/transform.h>
#include <libxslt/xslt.h>
#include <libxslt/xsltutils.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "baseline_allocator.h"
#include "benchmark_platform.h"
#include "report_benchmark.h"

namespace benchmarks {
namespace {

using PersistentTexts = std::vector<std::pair<xmlChar*, xmlChar*>>;

const xmlChar* xmlText(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

void require(bool done, const char* what) {
    if (!done) throw std::runtime_error(what);
}

void ignoreMessage(void*, const char*, ...) {}

void ignoreError(void*, const xmlError*) {}

/// The error handlers of libxml2 are set for each thread.
bool silenceThread() {
    xmlSetStructuredErrorFunc(nullptr, ignoreError);
    xmlSetGenericErrorFunc(nullptr, ignoreMessage);
    return true;
}

/// Calls `take` for each element that the expression finds in a file.
template <typename Take>
void readElements(const std::string& path, const char* expression, Take take) {
    xmlDoc* document = xmlReadFile(path.c_str(), "UTF-8", XML_PARSE_RECOVER);
    require(document != nullptr, "a file of the data directory cannot be read");
    xmlXPathContext* context = xmlXPathNewContext(document);
    xmlXPathObject* found = xmlXPathEvalExpression(xmlText(expression), context);
    require(found != nullptr && found->nodesetval != nullptr, "an expression finds nothing");
    for (int index = 0; index < found->nodesetval->nodeNr; ++index)
        take(found->nodesetval->nodeTab[index]);
    xmlXPathFreeObject(found);
    xmlXPathFreeContext(context);
    xmlFreeDoc(document);
}

std::string asString(const xmlChar* text) {
    return text != nullptr ? reinterpret_cast<const char*>(text) : "";
}

class Baseline : public ReportMaker {
public:
    Baseline(const Options& options, std::string outputPath)
        : dataDir_(options.dataParent() + "/.rgen/"), outputPath_(std::move(outputPath)) {
        values_.reserve(countValues(options));
        readValues(options, [this](const Value& value) { values_.push_back(value); });
    }

    void report() override {
        thread_local const bool silent = silenceThread();
        static_cast<void>(silent);
        std::string persistentPath;
        readConfiguration(persistentPath);
        readPersistent(persistentPath);
        transform();
        replaceFile(outputPath_, bytes_);
        std::vector<unsigned char>().swap(bytes_);
    }

private:
    void readConfiguration(std::string& persistentPath) const;
    void readPersistent(const std::string& path);
    void transform();
    xmlDoc* buildDocument();
    xsltStylesheet* loadStylesheet() const;

    std::string dataDir_;
    std::string outputPath_;
    std::vector<Value> values_;
    PersistentTexts persistent_;
    std::vector<unsigned char> bytes_;
};

__attribute__((noinline)) void Baseline::readConfiguration(std::string& persistentPath) const {
    requireExists(dataDir_);
    const std::string path = dataDir_ + "config.xml";
    requireExists(path);
    std::string templateFile;
    readElements(path, "/config/reportTypes/type[@guid]", [&](xmlNode* type) {
        xmlChar* guid = xmlGetProp(type, xmlText("guid"));
        xmlChar* persistDataFile = nullptr;
        xmlChar* reportTypeFile = nullptr;
        for (xmlNode* child = type->children; child != nullptr; child = child->next) {
            if (xmlStrcasecmp(child->name, xmlText("persistDataFile")) == 0) {
                persistDataFile = xmlNodeListGetString(child->doc, child->children, 1);
            } else if (xmlStrcasecmp(child->name, xmlText("reportTypeFile")) == 0) {
                reportTypeFile = xmlNodeListGetString(child->doc, child->children, 1);
            }
        }
        if (xmlStrcasecmp(guid, xmlText(wantedGuid)) == 0) {
            persistentPath = dataDir_ + asString(persistDataFile);
            templateFile = asString(reportTypeFile);
        }
        xmlFree(guid);
        xmlFree(persistDataFile);
        xmlFree(reportTypeFile);
    });
    require(!persistentPath.empty() && !templateFile.empty(), "the report type is missing");
}

__attribute__((noinline)) void Baseline::readPersistent(const std::string& path) {
    persistent_.clear();
    readElements(path, "/data/properties/property[@name]", [this](xmlNode* property) {
        persistent_.emplace_back(xmlGetProp(property, xmlText("name")),
                                 xmlNodeListGetString(property->doc, property->children, 1));
    });
}

void addProperty(xmlNode* list, const xmlChar* name, const xmlChar* text) {
    xmlNode* property = xmlNewChild(list, nullptr, xmlText("property"), text);
    require(property != nullptr, "a property cannot be made");
    xmlNewProp(property, xmlText("name"), name);
}

xmlDoc* Baseline::buildDocument() {
    xmlDoc* document = xmlNewDoc(xmlText("1.0"));
    xmlNode* root = xmlNewNode(nullptr, xmlText("data"));
    xmlDocSetRootElement(document, root);
    xmlNode* list = xmlNewChild(root, nullptr, xmlText("properties"), nullptr);
    for (const auto& [name, text] : persistent_) {
        addProperty(list, name, text);
        xmlFree(name);
        xmlFree(text);
    }
    for (const Value& value : values_) {
        if (value.isNumber) {
            addProperty(list, xmlText(value.name.c_str()),
                        xmlText(std::to_string(value.number).c_str()));
        } else {
            addProperty(list, xmlText(value.name.c_str()), xmlText(value.text.c_str()));
        }
    }
    return document;
}

xsltStylesheet* Baseline::loadStylesheet() const {
    const std::string templates = dataDir_ + "templates";
    const std::string format = templates + "/html";
    const std::string path = format + "/translated.xsl";
    requireExists(templates);
    requireExists(format);
    requireExists(path);
    const std::string text = readWholeFile(path);
    xmlDoc* document =
        xmlReadDoc(xmlText(text.c_str()), nullptr, "UTF-8", XML_PARSE_RECOVER | XML_PARSE_NONET);
    xsltStylesheet* stylesheet = xsltParseStylesheetDoc(document);
    require(stylesheet != nullptr, "the template cannot be compiled");
    return stylesheet;
}

__attribute__((noinline)) void Baseline::transform() {
    xmlDoc* data = buildDocument();
    xsltStylesheet* stylesheet = loadStylesheet();
    xmlDoc* output = xsltApplyStylesheet(stylesheet, data, nullptr);
    require(output != nullptr, "the template cannot be applied");
    xmlChar* text = nullptr;
    int length = 0;
    require(xsltSaveResultToString(&text, &length, output, stylesheet) >= 0 && text != nullptr,
            "the report cannot be serialised");
    bytes_.assign(text, text + length);
    xmlFree(text);
    xmlFreeDoc(output);
    xsltFreeStylesheet(stylesheet);
    xmlFreeDoc(data);
}

}  // namespace

void prepareCandidate(const Options& options) {
    if (options.mode != 0) fail("the baseline writes files only");
    chooseAllocator(options.allocator);
    xmlInitParser();
    xsltInit();
    xsltSetGenericErrorFunc(nullptr, ignoreMessage);
}

std::unique_ptr<ReportMaker> makeReportMaker(const Options& options,
                                             const std::string& outputPath) {
    return std::make_unique<Baseline>(options, outputPath);
}

}  // namespace benchmarks
