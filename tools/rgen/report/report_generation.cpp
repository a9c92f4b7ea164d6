// The steps of one report: format, catalogue, request, library call, delivery.
//
// SPDX-License-Identifier: MIT
#include "report/report_generation.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "base/console.h"
#include "base/json_document.h"
#include "base/paths.h"
#include "base/text_functions.h"
#include "data/config_check.h"
#include "data/po_catalogue.h"
#include "data/xml_documents.h"
#include "report/report_output.h"
#include "report/template_diagnosis.h"

namespace cli {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// Sets the translate callback for one report; the destructor removes it.
class TranslationScope {
public:
    TranslationScope(const repgen::Generator& generator, const std::string& cataloguePath, bool raw,
                     Console& console)
        : generator_(generator) {
        if (cataloguePath.empty()) return;
        catalogue_ = std::make_unique<PoCatalogue>(cataloguePath, raw, console);
        translator_ = std::make_unique<Translator>(*catalogue_);
        repgen::call(rgenh_setTranslateFunction, generator_.handle(), Translator::translate,
                     translator_.get());
    }
    ~TranslationScope() {
        if (!translator_) return;
        rgenh_setTranslateFunction(generator_.handle(), nullptr, nullptr, nullptr);
    }
    TranslationScope(const TranslationScope&) = delete;
    TranslationScope& operator=(const TranslationScope&) = delete;

    /// For a reading of the template by rgen itself; empty without a catalogue.
    TemplateText::Translate translate() const {
        if (!catalogue_) return {};
        return [this](const std::string& message) {
            const std::string* const translation = catalogue_->find(message);
            return translation != nullptr ? *translation : message;
        };
    }

    std::vector<std::string> untranslated() const {
        return translator_ ? translator_->untranslated() : std::vector<std::string>();
    }

private:
    const repgen::Generator& generator_;
    std::unique_ptr<PoCatalogue> catalogue_;
    std::unique_ptr<Translator> translator_;
};

std::string formatOf(const ReportArguments& arguments) {
    if (!arguments.format.empty()) return arguments.format;
    const std::string ending = lowerCase(fs::u8path(arguments.output).extension().u8string());
    for (const std::string& format : outputFormats()) {
        if (ending == "." + format) return format;
    }
    throw usageErrorOf("report",
                       "the format of \"" + arguments.output + "\" is not known from its ending",
                       "give --format html, pdf or txt");
}

OutputPlan planOf(const ReportArguments& arguments, const std::string& format) {
    OutputPlan plan;
    plan.target = arguments.output;
    plan.converterBase = arguments.base;
    if (arguments.mode == "bytes") plan.delivery = Delivery::Bytes;
    if (arguments.mode == "delete-on-close") plan.delivery = Delivery::DeleteOnClose;
    const bool isPdf = format == "pdf" && !arguments.noConvert;
    plan.converts = isPdf && plan.delivery == Delivery::File;
    if (isPdf && !plan.converts) {
        throw usageErrorOf("report", "--mode " + arguments.mode + " does not convert to pdf",
                           "give --no-convert to get the page itself");
    }
    const bool hasQuote = (arguments.output + arguments.base).find('"') != std::string::npos;
    if (plan.converts && hasQuote) {
        throw usageErrorOf("report", "the path of a pdf and --base must not contain a double quote",
                           "choose another name");
    }
    return plan;
}

std::string adviceOnOutput(const std::string& output) {
    std::error_code ignored;
    const std::string folder = folderOf(output);
    if (fs::is_directory(fs::u8path(output), ignored)) return "it is a folder";
    if (isSpecialFile(output)) return "it is no ordinary file; --mode bytes writes into it";
    if (!fs::exists(fs::u8path(folder), ignored)) {
        return "the folder \"" + folder + "\" does not exist";
    }
    return "check the rights of the folder, and that no other program has the file open";
}

std::string orElse(const std::string& text, const std::string& otherwise) {
    return text.empty() ? otherwise : text;
}

std::string adviceFor(RgenStatus status, const ReportContext& context, const ReportRequest& request,
                      const ReportOutput& output, const std::string& format) {
    const std::string path = templatePath(context.directory, request.type, format);
    switch (status) {
        case RGEN_E_EMPTY_INPUT:
            return "give values with --data, --set or --pair";
        case RGEN_E_GUID_NOT_IN_CONFIG:
            return orElse(
                firstMistake(context.directory.configPath()),
                "\"rgen types\" lists the report types of \"" + context.directory.folder + "\"");
        case RGEN_E_TEMPLATE_NOT_FOUND:
            return "looked for \"" + path + "\"";
        case RGEN_E_XSLT_PARSE:
        case RGEN_E_XSLT_APPLY:
        case RGEN_E_XSLT_RESULT:
            return "the template is \"" + path + "\"";
        case RGEN_E_OVERWRITE_OUTPUT:
        case RGEN_E_CREATE_OUTPUT:
            return adviceOnOutput(request.arguments.output);
        case RGEN_E_WRITE_OUTPUT:
        case RGEN_E_WRITE_ALL_OUTPUT:
            return "check that the disk has room";
        case RGEN_E_RUN_EXTERNAL:
            return output.converterFault();
        case RGEN_E_OPEN_CONFIG:
        case RGEN_E_NO_TYPE_MAP:
        case RGEN_E_NO_VALID_TYPE_MAP:
            return orElse(firstMistake(context.directory.configPath()),
                          "look at \"" + context.directory.configPath() + "\"");
        default:
            return "\"rgen explain " + statusHex(status) + "\" says more";
    }
}

CommandError failureOf(RgenStatus status, const ReportContext& context,
                       const ReportRequest& request, const ReportOutput& output,
                       const std::string& format) {
    CommandError error = statusFailure(outputName(request.arguments.output), status,
                                       adviceFor(status, context, request, output, format));
    if (status == RGEN_E_RUN_EXTERNAL) error.exitCode = ExitCode::Environment;
    const bool isWriting = status == RGEN_E_WRITE_OUTPUT || status == RGEN_E_WRITE_ALL_OUTPUT;
    if (isWriting) error.exitCode = ExitCode::Unverified;
    return error;
}

[[noreturn]] void failWithDiagnosis(RgenStatus status, const ReportContext& context,
                                    const ReportRequest& request, const ReportOutput& output,
                                    const TemplateUse& use) {
    CommandError error = failureOf(status, context, request, output, use.format);
    if (isTemplateStatus(status)) addTemplateDiagnosis(use, error, context.console);
    throw error;
}

/// Throws a CommandError for failures that have no status, such as those of the file system.
RgenStatus callLibrary(const ReportContext& context, const ReportRequest& request,
                       ReportOutput& output, const std::string& format) {
    repgen::Request libraryRequest{request.type.guid, format, libraryValues(request.input.values),
                                   libraryTexts(request.input.pairs)};
    try {
        return output.generate(context.generator, libraryRequest);
    } catch (const repgen::StatusError& error) {
        return error.status();
    } catch (const repgen::Error& error) {
        throw CommandError(ExitCode::Environment,
                           outputName(request.arguments.output) + ": " + error.what(),
                           "check the access rights of the data directory");
    }
}

void noteUntranslated(const std::vector<std::string>& texts, const std::string& path,
                      Console& console) {
    if (texts.empty()) return;
    constexpr std::size_t shown = 3;
    std::string list;
    for (std::size_t i = 0; i < std::min(shown, texts.size()); ++i)
        list += (i == 0 ? "" : ", ") + ("\"" + shortened(texts[i]) + "\"");
    const char* const have = texts.size() == 1 ? " text has" : " texts have";
    console.note(std::to_string(texts.size()) + have + " no translation in " + path + ": " + list +
                 (texts.size() > shown ? ", ..." : ""));
}

/// The library reads a damaged file as far as possible, without a message.
void noteDamage(const ReportContext& context, const ReportType& type) {
    const std::string path = context.directory.path(type.persistDataFile);
    std::error_code ignored;
    if (!fs::is_regular_file(fs::u8path(path), ignored)) return;
    requireReadable(path);
    const std::string damage = damageOf(path);
    if (damage.empty()) return;
    context.console.note("\"" + path + "\" is damaged: " + damage +
                         "; the report has what can be read of it");
}

std::size_t numberOfNames(const ReportInput& input) {
    std::size_t number = input.values.size();
    for (const auto& [name, pair] : input.pairs.values())
        if (input.values.values().count(name) == 0) ++number;
    return number;
}

}  // namespace

std::string outputName(const std::string& output) {
    return output == "-" ? "standard output" : output;
}

void requireOtherFile(const FileSet& inputs, const std::string& output) {
    const auto input = inputs.find(output);
    if (!input) return;
    throw usageError(output + ": reports are made from this file, \"" + *input + "\"",
                     "name another output");
}

std::string millisecondsText(double milliseconds) {
    char text[32] = {};
    std::snprintf(text, sizeof text, "%.1f ms", milliseconds);
    return text;
}

ReportResult makeReport(const ReportContext& context, const ReportRequest& request) {
    ReportResult result;
    result.format = formatOf(request.arguments);
    result.values = numberOfNames(request.input);
    const std::string catalogue =
        chosenCatalogue(context.directory, request.type, request.arguments.lang);
    const TranslationScope translation(context.generator, catalogue, context.raw, context.console);
    requireOtherFile(context.inputs, request.arguments.output);
    requireOtherFile(filesRead(), request.arguments.output);
    noteDamage(context, request.type);
    const InterruptGuard guard(context.generator.handle());
    throwIfInterrupted();

    const Clock::time_point start = Clock::now();
    const TemplateUse use{context.directory, request.type, request.input,
                          result.format,     catalogue,    translation.translate(),
                          *context.templates};
    ReportOutput output(planOf(request.arguments, result.format));
    RgenStatus status = callLibrary(context, request, output, result.format);
    throwIfInterrupted();
    if (status >= 0) status = output.prepare();
    if (status < 0) failWithDiagnosis(status, context, request, output, use);
    result.generateMilliseconds = millisecondsSince(start);

    const Clock::time_point delivery = Clock::now();
    result.bytes = output.deliver();
    result.deliverMilliseconds = millisecondsSince(delivery);
    result.untranslated = translation.untranslated();
    noteUntranslated(result.untranslated, catalogue, context.console);
    noteTemplate(use, context.console);
    for (const std::string& warning : output.converterWarnings())
        context.console.note(outputName(request.arguments.output) + ": " + warning);
    return result;
}

std::string makePage(const ReportContext& context, const ReportRequest& request) {
    const std::string format = formatOf(request.arguments);
    const std::string catalogue =
        chosenCatalogue(context.directory, request.type, request.arguments.lang);
    const TranslationScope translation(context.generator, catalogue, context.raw, context.console);
    noteDamage(context, request.type);
    OutputPlan plan;
    plan.delivery = Delivery::Bytes;
    ReportOutput output(plan);
    const RgenStatus status = callLibrary(context, request, output, format);
    if (status < 0) throw failureOf(status, context, request, output, format);
    noteUntranslated(translation.untranslated(), catalogue, context.console);
    return std::string(output.bytes());
}

void describeReport(const ReportRequest& request, const ReportResult& result,
                    const Console& console, JsonDocument& document) {
    JsonDocument type;
    type.set("guid", request.type.guidText);
    type.set("name", request.type.name);
    document.set("output", request.arguments.output);
    document.set("format", result.format);
    document.set("type", type);
    document.set("mode", request.arguments.mode);
    document.set("bytes", static_cast<std::int64_t>(result.bytes));
    document.set("values", static_cast<std::int64_t>(result.values));
    document.set("untranslated", result.untranslated);
    document.set("notes", console.notes());
}

}  // namespace cli
