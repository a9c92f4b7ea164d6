// The generation driver: registration, configuration, merge, template, transformation, delivery,
// and the checks for a cancellation between these steps.
//
// SPDX-License-Identifier: MIT
#include "generate/generation_driver.h"

#include <boost/filesystem/exception.hpp>
#include <string>
#include <utility>

#include "generate/delivery.h"
#include "generate/transformation.h"
#include "platform/platform.h"
#include "store/base/file_system.h"
#include "store/data_directory.h"
#include "store/persistent_data.h"
#include "store/xml/work.h"
#include "sync/cancellation_registry.h"
#include "variant/hinted_convertors.h"

namespace rgen {
namespace {

/// Typed values replace pairs of the same name, pairs replace persistent data. Values and pairs
/// are moved out of `request`.
Status mergeInput(ReportGenerator& generator, InputParams& request,
                  const std::string& persistDataFile, const sync::CancellationToken& token,
                  PropertyMap& properties) {
    if (token.isCancellationRequested()) return RGEN_CANCELED;
    PropertyMap persistent;
    // On purpose: persistent data that is missing or cannot be read is ignored.
    static_cast<void>(readPersistentData(generator, persistDataFile, persistent));
    properties = std::move(request.pairs);
    properties.merge(persistent);
    // A low load factor: in a large table each further name in a bucket costs a cache miss.
    properties.max_load_factor(0.5F);
    properties.reserve(properties.size() + request.variants.size());
    ValueTexts texts;
    for (auto& [name, value] : std::exchange(request.variants, NamedVariants()))
        properties.insert_or_assign(std::move(name), texts.of(std::move(value)));
    return properties.empty() ? RGEN_E_EMPTY_INPUT : RGEN_OK;
}

void createFolderIfMissing(const std::string& path) {
    try {
        if (!pathExists(path)) createDirectory(path);
    } catch (const boost::filesystem::filesystem_error&) {
        // On purpose: the missing template is reported afterwards, not the missing folder.
    }
}

/// Also creates the folders of the template. Returns an empty path if either name is empty.
std::string templatePathOf(ReportGenerator& generator, const std::string& reportTypeFile,
                           const std::string& outputFormat) {
    if (reportTypeFile.empty() || outputFormat.empty()) return {};
    std::string path = dataDirPathOf(generator) + "templates";
    createFolderIfMissing(path);
    path += platform::pathSeparator + outputFormat;
    createFolderIfMissing(path);
    return path + platform::pathSeparator + reportTypeFile;
}

/// All steps before the delivery. They share one pool for the XML libraries; it is released before
/// the delivery, so that another generation can use it while a converter runs.
Status makeReport(ReportGenerator& generator, InputParams& request,
                  const sync::CancellationToken& token, ByteVector& report) {
    const XmlWork work(generator.poolSlot);
    ReportTypeEntry entry;
    const Status loaded = loadReportType(generator, request.templateGuid, entry);
    if (failed(loaded)) return loaded;
    // The lookup has released the lock, but a cancel that waited for it may not have run yet.
    generator.mutex.letCancellersPrecede();
    if (token.isCancellationRequested()) return RGEN_CANCELED;

    PropertyMap properties;
    const Status merged = mergeInput(generator, request, entry.persistDataFile, token, properties);
    if (failed(merged)) return merged;

    const std::string templatePath =
        templatePathOf(generator, entry.reportTypeFile, request.outputFormat);
    if (!pathExists(templatePath)) return RGEN_E_TEMPLATE_NOT_FOUND;
    if (token.isCancellationRequested()) return RGEN_CANCELED;
    return transform(generator, request.outputFormat, std::move(properties), templatePath, token,
                     report);
}

Status makeAndDeliver(ReportGenerator& generator, InputParams& request,
                      const sync::CancellationToken& token, Variant& result) {
    ByteVector report;
    const Status made = makeReport(generator, request, token, report);
    if (failed(made)) return made;
    return deliver(generator, request, std::move(report), token, result);
}

}  // namespace

Status generate(ReportGenerator& generator, InputParams request, Variant& result) {
    sync::GenerationRegistration registration(generator, request.templateGuid);
    const Status status = makeAndDeliver(generator, request, registration.token(), result);
    registration.end();
    return status;
}

}  // namespace rgen
