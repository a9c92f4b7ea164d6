// The XML libraries report through functions that are set for the thread (libxml2), for the process
// (libxslt, while it compiles) and for one transformation. Hooks for the debugger see each
// instruction before it runs.
//
// SPDX-License-Identifier: MIT
#include "templates/template_run.h"

#include <libxml/parser.h>
#include <libxml/xmlerror.h>
#include <libxml/xpathInternals.h>
#include <libxslt/transform.h>
#include <libxslt/xsltInternals.h>
#include <libxslt/xsltutils.h>

#include <algorithm>
#include <cstdarg>
#include <mutex>
#include <unordered_map>

#include "base/roomy_stack.h"
#include "data/xml_nodes.h"
#include "templates/processor_texts.h"

namespace cli {
namespace {

struct XsltFree {
    void operator()(xsltStylesheet* stylesheet) const { xsltFreeStylesheet(stylesheet); }
    void operator()(xsltTransformContext* context) const { xsltFreeTransformContext(context); }
};
template <typename T>
using XsltPtr = std::unique_ptr<T, XsltFree>;

bool isMessage(const xmlNode* node) {
    return node != nullptr && node->type == XML_ELEMENT_NODE && node->ns != nullptr &&
           xmlStrEqual(node->ns->href, XSLT_NAMESPACE) != 0 &&
           xmlStrEqual(node->name, xmlText("message")) != 0;
}

/// One compilation and at most one transformation.
class Run {
public:
    void compile(const std::string& text);
    void apply(const std::string& dataDocument);
    TemplateRun& report() { return report_; }

private:
    void numberElements(xmlNode* first, std::size_t parent);
    void placeErrors(std::size_t element);
    bool compileNamed(xmlDoc* document);
    std::size_t numberOf(const xmlNode* node) const;
    void watchTexts();
    void addLibraryError(const xmlError& error);
    void addCompilerText(const std::string& text);
    void addTransformText(const std::string& text);
    void addTemplateMessage(const xmlNode* instruction, const std::string& text);
    void noteCalls();
    void finish(xmlDoc* output);

    static void onLibraryError(void* self, const xmlError* error);
    static void onCompilerText(void* self, const char* format, ...)
        __attribute__((format(printf, 2, 3)));
    static void onTransformText(void* self, const char* format, ...)
        __attribute__((format(printf, 2, 3)));
    static void onInstruction(xmlNode* instruction, xmlNode* node, xsltTemplate* current,
                              xsltTransformContext* context);
    static void onValueOf(xsltTransformContext* context, xmlNode* node, xmlNode* instruction,
                          xsltElemPreComp* compiled);

    TemplateRun report_;
    std::unordered_map<const xmlNode*, std::size_t> numbers_;
    /// Of the start tags of the elements.
    std::vector<std::size_t> lines_;
    XsltPtr<xsltStylesheet> stylesheet_;
    xsltTransformContext* context_ = nullptr;
    /// From the text that names the place of the next message.
    std::size_t namedElement_ = noElement;
};

/// libxslt has one function for messages of its compiler in the process, and one debugger.
std::mutex& processorMutex() {
    static std::mutex mutex;
    return mutex;
}

/// While it exists, both libraries report to a run.
class ErrorScope {
public:
    ErrorScope(void* run, xmlStructuredErrorFunc onError, xmlGenericErrorFunc onText) {
        xmlSetStructuredErrorFunc(run, onError);
        xsltSetGenericErrorFunc(run, onText);
    }
    ~ErrorScope() {
        xmlSetStructuredErrorFunc(nullptr, nullptr);
        xsltSetGenericErrorFunc(nullptr, nullptr);
    }
    ErrorScope(const ErrorScope&) = delete;
    ErrorScope& operator=(const ErrorScope&) = delete;
};

/// The processor names elements by their lines, several of which may be in one line. So each node
/// gets the number of its element as its line, from 1 on, which messages then show.
void Run::numberElements(xmlNode* first, std::size_t parent) {
    constexpr std::size_t largestLine = 65534;
    for (xmlNode* node = first; node != nullptr; node = node->next) {
        const bool isElement = node->type == XML_ELEMENT_NODE;
        const std::size_t number = isElement ? numbers_.size() : parent;
        if (isElement) {
            lines_.push_back(static_cast<std::size_t>(std::max(xmlGetLineNo(node), 0L)));
            numbers_.emplace(node, number);
        }
        node->line = static_cast<unsigned short>(number < largestLine ? number + 1 : 0);
        if (isElement) numberElements(node->children, number);
    }
}

std::size_t Run::numberOf(const xmlNode* node) const {
    for (; node != nullptr && node->type != XML_DOCUMENT_NODE; node = node->parent) {
        const auto found = numbers_.find(node);
        if (found != numbers_.end()) return found->second;
    }
    return noElement;
}

void Run::onLibraryError(void* self, const xmlError* error) {
    static_cast<Run*>(self)->addLibraryError(*error);
}

void Run::addLibraryError(const xmlError& error) {
    if (error.level < XML_ERR_ERROR || error.message == nullptr) return;
    // What recovery repaired is reported from the text itself.
    if (error.domain == XML_FROM_PARSER || error.domain == XML_FROM_NAMESPACE) return;
    ProcessorMessage message;
    message.text = inOneLineOf(error.message);
    if (error.str1 != nullptr && error.domain == XML_FROM_XPATH) {
        message.expression = error.str1;
        message.expressionOffset = static_cast<std::size_t>(std::max(error.int1, 0));
    }
    report_.errors.push_back(std::move(message));
    if (context_ != nullptr) placeErrors(numberOf(context_->inst));
}

/// The processor names the place of an expression only after the expression's own mistake.
void Run::placeErrors(std::size_t element) {
    for (auto error = report_.errors.rbegin();
         error != report_.errors.rend() && error->element == noElement; ++error) {
        error->element = element;
        error->line = element < lines_.size() ? lines_[element] : 0;
    }
}

void Run::onCompilerText(void* self, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const std::string text = formatted(format, arguments);
    va_end(arguments);
    auto& run = *static_cast<Run*>(self);
    // A transformation reports to its own function. It lists its variables here.
    if (run.context_ == nullptr) run.addCompilerText(text);
}

void Run::addCompilerText(const std::string& text) {
    if (namesPlace(text)) {
        const std::size_t number = lineIn(text);
        namedElement_ = number > 0 ? number - 1 : noElement;
        return;
    }
    ProcessorMessage message;
    message.text = inOneLineOf(text);
    if (message.text.empty()) return;
    report_.errors.push_back(std::move(message));
    placeErrors(namedElement_);
}

void Run::onTransformText(void* self, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const std::string text = formatted(format, arguments);
    va_end(arguments);
    static_cast<Run*>(self)->addTransformText(text);
}

void Run::addTransformText(const std::string& text) {
    const xmlNode* instruction = context_->inst;
    if (isMessage(instruction)) {
        if (text != "\n") addTemplateMessage(instruction, text);
        return;
    }
    if (text.find("infinite template recursion") != std::string::npos) noteCalls();
    if (namesPlace(text)) {
        addCompilerText(text);
        return;
    }
    if (namedElement_ == noElement) namedElement_ = numberOf(instruction);
    addCompilerText(text);
}

void Run::addTemplateMessage(const xmlNode* instruction, const std::string& text) {
    const XmlPtr<xmlChar> terminate(xmlGetNoNsProp(instruction, xmlText("terminate")));
    TemplateMessage message;
    message.text = inOneLineOf(text);
    message.element = numberOf(instruction);
    message.terminates = plainText(terminate) == "yes";
    report_.messages.push_back(std::move(message));
}

void Run::noteCalls() {
    if (!report_.callChain.empty()) return;
    for (int i = context_->templNr; i > 0; --i)
        report_.callChain.push_back(numberOf(context_->templTab[i - 1]->elem));
}

void Run::onInstruction(xmlNode*, xmlNode*, xsltTemplate* current, xsltTransformContext* context) {
    auto& run = *static_cast<Run*>(context->_private);
    const xsltTemplate* running = current != nullptr ? current : context->templ;
    if (running != nullptr && running->elem != nullptr)
        run.report_.reachedTemplates.insert(run.numberOf(running->elem));
}

/// The text at which the output tree ends, and its length before an instruction runs.
struct EndOfOutput {
    const xmlNode* node = nullptr;
    std::size_t length = 0;
};

/// The processor knows the length of the text to which it appends, which may be long.
std::size_t lengthOf(const xmlNode* text, const xsltTransformContext& context) {
    if (text->content == nullptr) return 0;
    const int length =
        text->content == context.lasttext ? context.lasttuse : xmlStrlen(text->content);
    return static_cast<std::size_t>(length);
}

EndOfOutput endOfOutput(const xsltTransformContext& context) {
    if (context.insert == nullptr || context.insert->last == nullptr) return {};
    const xmlNode* last = context.insert->last;
    return {last, last->type == XML_TEXT_NODE ? lengthOf(last, context) : 0};
}

/// What was written after `before`.
std::string writtenAfter(const EndOfOutput& before, const xsltTransformContext& context) {
    const EndOfOutput after = endOfOutput(context);
    if (after.node == nullptr || after.node->type != XML_TEXT_NODE) return {};
    const std::size_t begin = after.node == before.node ? before.length : 0;
    if (after.length <= begin) return {};
    return std::string(reinterpret_cast<const char*>(after.node->content) + begin,
                       after.length - begin);
}

void Run::onValueOf(xsltTransformContext* context, xmlNode* node, xmlNode* instruction,
                    xsltElemPreComp* compiled) {
    auto& run = *static_cast<Run*>(context->_private);
    const EndOfOutput before = endOfOutput(*context);
    xsltValueOf(context, node, instruction, compiled);
    const std::string written = writtenAfter(before, *context);
    WrittenTexts& texts = run.report_.texts[run.numberOf(instruction)];
    ++texts.all;
    if (written.empty()) ++texts.empty;
    if (written.find("NaN") != std::string::npos) ++texts.notNumbers;
}

void Run::watchTexts() {
    for (xsltElemPreComp* one = stylesheet_->preComps; one != nullptr; one = one->next) {
        if (one->type == XSLT_FUNC_VALUEOF) one->func = onValueOf;
    }
}

/// The same steps, in the same order and with the same options, as the report library.
void Run::compile(const std::string& text) {
    const ErrorScope errors(this, onLibraryError, onCompilerText);
    report_.outcome = TemplateRun::Outcome::NotCompiled;
    constexpr int options = XML_PARSE_RECOVER | XML_PARSE_NONET;
    XmlPtr<xmlDoc> document(xmlReadDoc(xmlText(text.c_str()), nullptr, "UTF-8", options));
    if (!document) return;
    numberElements(document->children, 0);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    xmlSubstituteEntitiesDefault(1);
    xmlLoadExtDtdDefaultValue = 1;
#pragma GCC diagnostic pop
    stylesheet_.reset(xsltNewStylesheet());
    if (!stylesheet_) return;
    if (!compileNamed(document.get())) {
        stylesheet_.reset();
        return;
    }
    static_cast<void>(document.release());
    report_.outcome = TemplateRun::Outcome::Done;
}

bool Run::compileNamed(xmlDoc* document) {
    const NamedDocument named(document);
    return xsltParseStylesheetUser(stylesheet_.get(), document) == 0;
}

/// In the order in which libxslt reads them.
struct DebuggerCallbacks {
    xsltHandleDebuggerCallback handler;
    xsltAddCallCallback add;
    xsltDropCallCallback drop;
};

void Run::apply(const std::string& dataDocument) {
    if (report_.outcome != TemplateRun::Outcome::Done) return;
    const ErrorScope errors(this, onLibraryError, onCompilerText);
    const XmlPtr<xmlDoc> data(xmlReadMemory(dataDocument.data(),
                                            static_cast<int>(dataDocument.size()), nullptr, "UTF-8",
                                            XML_PARSE_NONET | XML_PARSE_HUGE));
    report_.outcome = TemplateRun::Outcome::NotApplied;
    const XsltPtr<xsltTransformContext> context(
        xsltNewTransformContext(stylesheet_.get(), data.get()));
    if (!data || !context) return;
    constexpr int callbackCount = 3;
    DebuggerCallbacks callbacks = {onInstruction, nullptr, nullptr};
    xsltSetDebuggerCallbacks(callbackCount, &callbacks);
    watchTexts();
    context_ = context.get();
    context->_private = this;
    context->debugStatus = XSLT_DEBUG_RUN;
    xsltSetTransformErrorFunc(context.get(), this, onTransformText);
    const XmlPtr<xmlDoc> output(xsltApplyStylesheetUser(stylesheet_.get(), data.get(), nullptr,
                                                        nullptr, nullptr, context.get()));
    context_ = nullptr;
    if (output) finish(output.get());
}

void Run::finish(xmlDoc* output) {
    report_.outcome = TemplateRun::Outcome::NoResult;
    xmlChar* text = nullptr;
    int length = 0;
    const int outcome = xsltSaveResultToString(&text, &length, output, stylesheet_.get());
    const XmlPtr<xmlChar> buffer(text);
    if (outcome < 0 || !buffer) return;
    report_.result.assign(reinterpret_cast<const char*>(buffer.get()),
                          static_cast<std::size_t>(length));
    report_.outcome = TemplateRun::Outcome::Done;
}

TemplateRun runOnRoomyStack(const std::function<void(Run&)>& steps) {
    const std::lock_guard lock(processorMutex());
    TemplateRun report;
    runWithRoomyStack([&steps, &report] {
        Run run;
        steps(run);
        report = std::move(run.report());
    });
    return report;
}

}  // namespace

TemplateRun compileTemplate(const std::string& text) {
    return runOnRoomyStack([&text](Run& run) { run.compile(text); });
}

TemplateRun runTemplate(const std::string& text, const std::string& dataDocument) {
    return runOnRoomyStack([&text, &dataDocument](Run& run) {
        run.compile(text);
        run.apply(dataDocument);
    });
}

}  // namespace cli
