// After a failure, the texts of the report that follow stay as they are; the call that generates it
// returns the failure. Calls of rgen.h cannot, and ignore it.
//
// SPDX-License-Identifier: MIT
#include "generator/translator.h"

#include <cstring>
#include <exception>
#include <mutex>
#include <new>

#include "error/exception_report.h"
#include "error/failures.h"
#include "generator/active_calls.h"
#include "text/escaping.h"

namespace rgenh {
namespace {

std::string asTemplateText(const char* text, const char* translation, Translations translations) {
    if (translations == Translations::Escaped || std::strcmp(text, translation) == 0) {
        return translation;
    }
    if (translations == Translations::Markup) return checkedMarkup(translation);
    return translationMarkup(text, translation);
}

void noteFailure(ActiveCall& report, const std::exception& failure) noexcept {
    report.hasTranslatorFailed = true;
    report.isMemoryExhausted = dynamic_cast<const std::bad_alloc*>(&failure) != nullptr;
    try {
        report.translatorFailure = failure.what();
    } catch (const std::bad_alloc&) {
        report.isMemoryExhausted = true;
    }
}

}  // namespace

std::string Translator::translate(const char* text) {
    // The host may overwrite its text as soon as another thread calls.
    const std::lock_guard<platform::Monitor> turn(turn_);
    const char* const translation = function_(text, context_);
    if (translation == nullptr) throw CallbackFailed();
    return asTemplateText(text, translation, translations_);
}

void TranslatorUse::connect() {
    rgen_setTranslateFunction(generator_, &TranslatorUse::call, this);
}

const char* TranslatorUse::translated(const char* text) {
    last_ = translator_->translate(text);
    return last_.c_str();
}

const char* RGEN_CALL TranslatorUse::call(const char* text, void* use) noexcept {
    auto& self = *static_cast<TranslatorUse*>(use);
    ActiveCall* const report = ActiveCall::of(self.generator_);
    if (self.translator_ == nullptr || (report != nullptr && report->hasTranslatorFailed)) {
        return text;
    }
    keepCallersRegisters();
    try {
        return self.translated(text);
    } catch (const Translator::CallbackFailed&) {
        if (report != nullptr) report->hasTranslatorFailed = true;
    } catch (const std::exception& failure) {
        if (report != nullptr) noteFailure(*report, failure);
    }
    return text;
}

}  // namespace rgenh
