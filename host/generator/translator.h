// A host's translate callback, and how a generator uses it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "platform/host_platform.h"
#include "strata_repgenlib/rgen_host.h"

namespace rgenh {

/// What a callback returns.
enum class Translations {
    /// Parts of the template, which the host has escaped.
    Escaped,
    /// As RGENH_PLAIN.
    Plain,
    /// As RGENH_MARKUP.
    Markup
};

/// A callback of a host. It is called by one thread at a time.
class Translator {
public:
    Translator(RgenTranslateFunction function, void* context, Translations translations)
        : function_(function), context_(context), translations_(translations) {}

    /// The text for the template. Throws an ArgumentError for a translation that cannot be used,
    /// and CallbackFailed.
    std::string translate(const char* text);

    /// The callback returned null.
    struct CallbackFailed {};

private:
    RgenTranslateFunction function_;
    void* context_;
    Translations translations_;
    platform::Monitor turn_;
};

/// Connects a translator with one generator of the library; without a translator texts stay as they
/// are. Must live until the generator has another callback or is freed.
class TranslatorUse {
public:
    TranslatorUse(RgenReportGenerator* generator, std::shared_ptr<Translator> translator)
        : generator_(generator), translator_(std::move(translator)) {}

    const std::shared_ptr<Translator>& translator() const { return translator_; }

    /// Makes the generator use the translator. Throws as rgen_setTranslateFunction.
    void connect();

private:
    static const char* RGEN_CALL call(const char* text, void* use) noexcept;
    const char* translated(const char* text);

    RgenReportGenerator* generator_;
    std::shared_ptr<Translator> translator_;
    /// The last result. The library copies it before it calls again, and a generator transforms one
    /// template at a time.
    std::string last_;
};

}  // namespace rgenh
