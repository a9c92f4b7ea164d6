// The guarded forms of the functions of rgen.h that take a generator.
//
// SPDX-License-Identifier: MIT
#include <memory>
#include <mutex>
#include <new>
#include <string>

#include "api/call_checks.h"
#include "error/failures.h"
#include "generator/generator_settings.h"
#include "generator/owned_generator.h"
#include "generator/report_call.h"
#include "strata_repgenlib/rgen_host.h"
#include "text/guid_text.h"

using namespace rgenh;

namespace {

void setTranslation(RgenReportGenerator* generator, std::shared_ptr<Translator> translator) {
    const std::shared_ptr<GeneratorSettings> settings = settingsOf(generator);
    if (settings == nullptr) {
        throw ArgumentError("the generator is not one of rgenh_newReportGenerator", 1,
                            ArgumentError::noEntry);
    }
    auto next = std::make_unique<TranslatorUse>(generator, std::move(translator));
    const std::lock_guard<platform::Monitor> change(settings->change);
    next->connect();
    // No report uses the previous one any more: the library has waited for its transformation.
    const std::lock_guard<platform::Monitor> fields(settings->fields);
    std::swap(settings->translation, next);
}

RgenStatus storeTranslator(RgenReportGenerator* generator, RgenTranslateFunction translate,
                           void* context, Translations translations, RgenhError* error) noexcept {
    return generatorCall(error, {{generator, "generator"}}, nullptr, [&](ErrorRecord& /*record*/) {
        setTranslation(generator, translate == nullptr ? nullptr
                                                       : std::make_shared<Translator>(
                                                             translate, context, translations));
        return RGEN_OK;
    });
}

/// The library leaves the pairs unchanged, with a status of success, if memory is exhausted.
void requireFilled(bool isFilled) {
    if (!isFilled) throw std::bad_alloc();
}

}  // namespace

extern "C" {

RgenReportGenerator* RGEN_CALL rgenh_newReportGenerator(RgenhError* error) noexcept {
    RgenReportGenerator* result = nullptr;
    guarded(error, [&](ErrorRecord& /*record*/) {
        OwnedGenerator generator = newGenerator();
        addSettings(std::make_shared<GeneratorSettings>(generator.get()));
        result = generator.release();
        return RGEN_OK;
    });
    return result;
}

RgenStatus RGEN_CALL rgenh_freeReportGenerator(RgenReportGenerator* generator,
                                               RgenhError* error) noexcept {
    // Not guarded: it throws nothing, and must work when memory is exhausted.
    ErrorRecord record(error);
    if (!record.isUsable()) return RGEN_E_BAD_PARAMETER;
    if (generator == nullptr) return RGEN_OK;
    if (ActiveCall::of(generator) != nullptr) return failReentered(record);
    // The library must not use the translator any more when it is freed.
    const std::shared_ptr<GeneratorSettings> settings = settingsOf(generator);
    removeSettings(generator);
    if (settings != nullptr) settings->workers->close();
    rgen_freeReportGenerator(generator);
    return RGEN_OK;
}

RgenStatus RGEN_CALL rgenh_setDataDirPath(RgenReportGenerator* generator, const char* path,
                                          RgenhError* error) noexcept {
    const PassedText texts[] = {{2, "path", path}, {}};
    return generatorCall(
        error, {{generator, "generator"}, {path, "path"}}, texts, [&](ErrorRecord& record) {
            std::string copy = path;
            record.setPath(path);
            const std::shared_ptr<GeneratorSettings> settings = settingsOf(generator);
            std::unique_lock<platform::Monitor> change;
            if (settings) change = std::unique_lock<platform::Monitor>(settings->change);
            const RgenStatus status = rgen_setDataDirPath(generator, path);
            if (status < 0) return checkedStatus(record, path, status);
            record.setPath("");
            if (settings) {
                const std::lock_guard<platform::Monitor> fields(settings->fields);
                settings->dataDirPath.swap(copy);
            }
            return status;
        });
}

RgenStatus RGEN_CALL rgenh_setTranslateFunction(RgenReportGenerator* generator,
                                                RgenTranslateFunction translate, void* context,
                                                RgenhError* error) noexcept {
    return storeTranslator(generator, translate, context, Translations::Escaped, error);
}

RgenStatus RGEN_CALL rgenh_setTranslator(RgenReportGenerator* generator,
                                         RgenTranslateFunction translate, void* context,
                                         uint64_t form, RgenhError* error) noexcept {
    if (form != RGENH_PLAIN && form != RGENH_MARKUP) {
        return guarded(error, [](ErrorRecord& record) {
            record.say("form is not one of RgenhTextForm");
            return record.failArgument(4);
        });
    }
    const Translations translations =
        form == RGENH_PLAIN ? Translations::Plain : Translations::Markup;
    return storeTranslator(generator, translate, context, translations, error);
}

RgenStatus RGEN_CALL rgenh_cancel(RgenReportGenerator* generator, const RgenGuid* guid,
                                  RgenhError* error) noexcept {
    return generatorCall(error, {{generator, "generator"}}, nullptr, [&](ErrorRecord& /*record*/) {
        rgen_cancel(generator, guid);
        return RGEN_OK;
    });
}

RgenStatus RGEN_CALL rgenh_generateReport(RgenReportGenerator* generator,
                                          const RgenCInputParams* input, RgenCVariant* result,
                                          RgenhError* error) noexcept {
    const RgenCInputParams request = input == nullptr ? RgenCInputParams{} : *input;
    const PassedText texts[] = {{2, "the output path", request.outputPath.data},
                                {2, "the format", request.outputFormat.data},
                                {2, "the converter base", request.converterBaseArg.data},
                                {}};
    return generatorCall(error, {{generator, "generator"}, {input, "input"}, {result, "result"}},
                         texts, [&](ErrorRecord& record) {
                             return generateReport(generator, request, *result, record, 2);
                         });
}

RgenStatus RGEN_CALL rgenh_getPersistentData(RgenReportGenerator* generator, const RgenGuid* guid,
                                             RgenCAnsiStringPairSet* pairs,
                                             RgenhError* error) noexcept {
    return generatorCall(error, {{generator, "generator"}, {guid, "guid"}}, nullptr,
                         [&](ErrorRecord& record) {
                             RgenCAnsiStringPairSet read = {};
                             const RgenStatus status =
                                 rgen_getPersistentData(generator, guid, pairs ? &read : nullptr);
                             if (status < 0) return checkedStatus(record, GuidText(*guid), status);
                             requireFilled(pairs == nullptr || read.count != 0);
                             if (pairs != nullptr) *pairs = read;
                             return status;
                         });
}

RgenStatus RGEN_CALL rgenh_setPersistentDataFromAnsiStringPairSet(
    RgenReportGenerator* generator, const RgenGuid* guid, const RgenCAnsiStringPairSet* pairs,
    RgenhError* error) noexcept {
    return generatorCall(error, {{generator, "generator"}, {guid, "guid"}, {pairs, "pairs"}},
                         nullptr, [&](ErrorRecord& record) {
                             const RgenStatus status = rgen_setPersistentDataFromAnsiStringPairSet(
                                 generator, guid, pairs);
                             return checkedStatus(record, GuidText(*guid), status);
                         });
}

RgenStatus RGEN_CALL rgenh_setPersistentDataFromCVariantSet(RgenReportGenerator* generator,
                                                            const RgenGuid* guid,
                                                            const RgenCVariantSet* variants,
                                                            RgenhError* error) noexcept {
    return generatorCall(error, {{generator, "generator"}, {guid, "guid"}, {variants, "variants"}},
                         nullptr, [&](ErrorRecord& record) {
                             const RgenStatus status =
                                 rgen_setPersistentDataFromCVariantSet(generator, guid, variants);
                             return checkedStatus(record, GuidText(*guid), status);
                         });
}

RgenStatus RGEN_CALL rgenh_dumpRawInputDataToFile(RgenReportGenerator* generator,
                                                  const RgenCInputParams* input, const char* path,
                                                  RgenhError* error) noexcept {
    const PassedText texts[] = {{3, "path", path}, {}};
    return guarded(error, texts, [&](ErrorRecord& record) -> RgenStatus {
        if (hasNull({{generator, "generator"}, {input, "input"}, {path, "path"}}, record)) {
            return RGEN_E_BAD_PARAMETER;
        }
        RgenCVariant none = {};
        RgenCInputParams values = {};
        values.variants = input->variants;
        if (values.variants.items == nullptr) values.variants = {&none, 0};
        const RgenStatus status = rgen_dumpRawInputDataToFile(generator, &values, path);
        if (status < 0) record.setPath(path);
        return checkedStatus(record, path, status);
    });
}

int32_t RGEN_CALL rgenh_getSimulatedRawDataFromFile(RgenReportGenerator* generator,
                                                    const char* path, RgenCVariantSet* variants,
                                                    RgenhError* error) noexcept {
    const PassedText texts[] = {{2, "path", path}, {}};
    return guarded(error, texts, [&](ErrorRecord& record) -> RgenStatus {
        if (hasNull({{generator, "generator"}, {path, "path"}, {variants, "variants"}}, record)) {
            return RGEN_E_BAD_PARAMETER;
        }
        return rgen_getSimulatedRawDataFromFile(generator, path, variants);
    });
}
}
