/*
 * strata_repgenlib for C++17 and later: RAII types, exceptions and containers on top of
 * rgen_host.h. Header-only: it needs the headers and the two libraries, which may be built with
 * another compiler than the host.
 *
 *     namespace repgen = strata::repgen;
 *
 *     constexpr repgen::Guid acquisition("5a0c6f1e-3b74-4e59-9d21-7c8e0f6a41b2");
 *     repgen::Generator generator("reports");
 *     repgen::Request request{acquisition, "html"};
 *     request.values["Device"] = "Disk 1 & 2";
 *     request.values["Capacity"] = {500107862016, repgen::Hint::Size};
 *     request.values["Started"] = std::chrono::system_clock::now();
 *     generator.generateFile(request, "report.html");
 *
 * The contracts of rgen.h and rgen_host.h hold. This header adds:
 *
 * TEXTS AND PATHS
 *   Texts are UTF-8, passed as any type that converts to std::string_view; from C++20 on also as
 *   char8_t texts. A text appears in a report as it is, unless it is made by Text::markup(). A Path
 *   is made from a std::filesystem::path or from a text. A relative one, that of the data directory
 *   included, is resolved against the current folder at the time of each call.
 *
 * ERRORS
 *   Every failure is an exception: std::bad_alloc for exhausted memory, otherwise an Error; its
 *   derived classes are for the kinds that hosts handle most. An exception of a translator leaves
 *   the generating call, or Job::get. No exception crosses the libraries. After any exception
 *   nothing has leaked and the generator can still be used.
 *
 * THREADS
 *   Several threads may use a Generator or a Job at once, as they may its handle; moving,
 *   destroying and assigning it requires that no other thread uses it. All other objects are plain
 *   values.
 *
 * SPDX-License-Identifier: MIT
 */
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "strata_repgenlib/rgen_host.h"
#include "strata_repgenlib/rgen_values.hpp"

namespace strata::repgen {

namespace detail {

/// Frees what the functions of rgen.h and rgen_host.h return.
struct Free {
    void operator()(RgenAnsiString* record) { rgen_freeRgenAnsiString(record); }
    void operator()(RgenByteArray* record) { rgen_freeRgenByteArray(record); }
    void operator()(RgenCVariant* record) { rgen_freeRgenCVariant(record); }
    void operator()(RgenCVariantSet* record) { rgen_freeRgenCVariantSet(record); }
    void operator()(RgenCAnsiStringPairSet* record) { rgen_freeRgenCAnsiStringSet(record); }
    void operator()(RgenCInputParams* record) { rgen_freeRgenCInputParams(record); }
    void operator()(RgenReportGenerator* handle) { rgenh_freeReportGenerator(handle, nullptr); }
    void operator()(RgenhRequest* handle) { rgenh_freeRequest(handle); }
    void operator()(RgenhJob* handle) { rgenh_freeJob(handle); }
};

/// Takes the handle that a function of rgen_host.h returns; throws its error if that is null.
template <typename Handle, typename... Parameters, typename... Arguments>
std::unique_ptr<Handle, Free> create(Handle*(RGEN_CALL* function)(Parameters...),
                                     Arguments... arguments) {
    ErrorRecord error;
    std::unique_ptr<Handle, Free> handle(function(arguments..., &error.record));
    if (!handle) error.raise();
    return handle;
}

// The only part that depends on the operating system. The function is declared here so that hosts
// need no system header.
#if defined(_WIN32)
extern "C" __declspec(dllimport) int __stdcall CloseHandle(void* handle);
inline void closeHandle(void* handle) noexcept {
    CloseHandle(handle);
}
#else
extern "C" int close(int descriptor);
inline void closeHandle(void* handle) noexcept {
    close(static_cast<int>(reinterpret_cast<std::intptr_t>(handle)));
}
#endif

}  // namespace detail

/* ---- Owners --------------------------------------------------------------------------------- */

/**
 * Owns a record of rgen.h and its buffers, for calls that this header does not wrap. The record is
 * zero-filled at first. Movable, not copyable; what was moved is empty.
 */
template <typename Record>
class Owned {
public:
    Owned() noexcept = default;
    ~Owned() { detail::Free()(&record_); }
    /** Moves the record; `other` is empty afterwards. */
    Owned(Owned&& other) noexcept : record_(std::exchange(other.record_, Record{})) {}
    /** Frees the record, then moves that of `other`. */
    Owned& operator=(Owned&& other) noexcept {
        Owned moved(std::move(other));
        std::swap(record_, moved.record_);
        return *this;
    }

    ///@{
    /** Access to the record, which this object still owns. */
    Record* get() noexcept { return &record_; }
    Record& operator*() noexcept { return record_; }
    Record* operator->() noexcept { return &record_; }
    const Record* operator->() const noexcept { return &record_; }
    ///@}

private:
    Record record_{};
};

/**
 * Calls a function of rgen_host.h that this header does not wrap; its last argument, the error
 * record, is left out. Returns its result, or throws the error.
 *
 *     Owned<RgenAnsiString> text;
 *     call(rgenh_unescapeText, content.data(), content.size(), text.get());
 */
template <typename Function, typename... Arguments>
std::int32_t call(Function function, Arguments... arguments) {
    detail::ErrorRecord error;
    const std::int32_t result = function(arguments..., &error.record);
    if (result < 0) error.raise();
    return result;
}

/** The open file of Generator::generateOpenFile. Movable, not copyable. */
class OpenFile {
public:
    OpenFile() noexcept = default;
    /** Takes ownership of the handle. */
    explicit OpenFile(void* handle) noexcept : handle_(handle) {}
    ~OpenFile() { close(); }
    /** Moves the file; `other` is closed afterwards. */
    OpenFile(OpenFile&& other) noexcept : handle_(std::exchange(other.handle_, std::nullopt)) {}
    /** Closes the file, then moves that of `other`. */
    OpenFile& operator=(OpenFile&& other) noexcept {
        OpenFile moved(std::move(other));
        std::swap(handle_, moved.handle_);
        return *this;
    }

    ///@{
    /** Whether there is an open file. */
    bool isOpen() const noexcept { return handle_.has_value(); }
    explicit operator bool() const noexcept { return isOpen(); }
    ///@}
    /** Windows: the HANDLE, write-only. Linux: the descriptor as a pointer. Null if not open. */
    void* get() const noexcept { return handle_.value_or(nullptr); }
    /** Linux: the descriptor. Its file offset is at the end of the report: seek before reading. */
    int descriptor() const noexcept {
        return static_cast<int>(reinterpret_cast<std::intptr_t>(get()));
    }
    /** Returns the handle and its ownership; the caller closes it. */
    void* release() noexcept { return std::exchange(handle_, std::nullopt).value_or(nullptr); }
    /** Closes the file, which deletes it; does nothing if it is not open. */
    void close() noexcept {
        if (handle_) detail::closeHandle(*std::exchange(handle_, std::nullopt));
    }

private:
    std::optional<void*> handle_;
};

/* ---- Records -------------------------------------------------------------------------------- */

namespace detail {

inline void fill(RgenhValue& entry, const Text& text) {
    entry.type = text.form() == TextForm::Markup ? std::uint64_t{RGENH_TYPE_MARKUP}
                                                 : std::uint64_t{RGEN_TYPE_STRING};
    entry.data = text.content().data();
    entry.size = text.content().size();
}

inline void fill(RgenhValue& entry, const Value& value) {
    entry.type = static_cast<std::uint64_t>(value.type());
    entry.hint = static_cast<std::uint64_t>(value.hint());
    if (value.type() == ValueType::Text) {
        fill(entry, value.markedText());
    } else if (value.type() == ValueType::Integer) {
        entry.number = value.integer();
    } else if (value.type() == ValueType::Handle) {
        entry.number = reinterpret_cast<std::intptr_t>(value.handle());
    } else {
        entry.data = value.bytes().data();
        entry.size = value.bytes().size();
    }
}

/// The entries have pointers into the items.
template <typename Item>
std::vector<RgenhValue> entriesOf(const Named<Item>& items) {
    std::vector<RgenhValue> entries;
    entries.reserve(items.size());
    for (const auto& [name, item] : items) {
        entries.push_back({name.data(), name.size(), 0, 0, 0, nullptr, 0});
        fill(entries.back(), item);
    }
    return entries;
}

inline auto createRequest(const Request& request, int mode, const std::string& output) {
    const std::vector<RgenhValue> values = entriesOf(request.values);
    const std::vector<RgenhValue> pairs = entriesOf(request.pairs);
    RgenhRequestParts parts{};
    parts.size = sizeof parts;
    parts.templateGuid = request.type.record();
    parts.format = withoutZero(request.format, "a format");
    parts.outputPath = output.c_str();
    parts.converterBase = withoutZero(request.converterBase, "a converter base");
    parts.outputMode = static_cast<std::uint64_t>(mode);
    parts.skipExternalConversion = request.convert ? 0 : 1;
    parts.values = values.data();
    parts.valueCount = values.size();
    parts.pairs = pairs.data();
    parts.pairCount = pairs.size();
    return create(rgenh_newRequest, &parts);
}

inline std::string textOf(const RgenAnsiString& record) {
    return {record.data, record.length};
}

inline Bytes bytesOf(const RgenByteArray& record) {
    return {record.data, record.data + record.size};
}

inline Value valueOf(const RgenCVariant& record) {
    if (record.type == RGEN_TYPE_BYTE_ARRAY) return bytesOf(record.value.byteArrayValue);
    if (record.type == RGEN_TYPE_STRING) return textOf(record.value.stringValue);
    return {record.value.int64Value, static_cast<Hint>(record.hint)};
}

template <typename Result>
constexpr int modeOf = std::is_same_v<Result, Bytes>      ? RGEN_OUTPUT_BYTES
                       : std::is_same_v<Result, OpenFile> ? RGEN_OUTPUT_DELETE_ON_CLOSE
                                                          : RGEN_OUTPUT_FILE;

/// What a generating function returns, from the record of the library and the output path.
template <typename Result>
Result resultOf(const RgenCVariant& record, const std::string& output) {
    if constexpr (std::is_same_v<Result, Bytes>) {
        return record.type == RGEN_TYPE_EMPTY ? Bytes() : bytesOf(record.value.byteArrayValue);
    } else if constexpr (std::is_same_v<Result, OpenFile>) {
        return OpenFile(record.value.handleValue);
    } else {
        return pathOf(output);
    }
}

/// Exceptions of translators, by generating thread.
class ThrownExceptions {
public:
    void keep(std::exception_ptr exception) {
        const std::lock_guard lock(mutex_);
        thrown_[std::this_thread::get_id()] = std::move(exception);
    }
    std::exception_ptr take() {
        const std::lock_guard lock(mutex_);
        auto entry = thrown_.extract(std::this_thread::get_id());
        return entry.empty() ? nullptr : entry.mapped();
    }

private:
    std::mutex mutex_;
    std::map<std::thread::id, std::exception_ptr> thrown_;
};

/// A translator and its last result, which the library copies before the next call.
struct Translation {
    std::function<std::string(std::string_view)> translate;
    std::shared_ptr<ThrownExceptions> exceptions;
    std::string text{};

    static const char* RGEN_CALL call(const char* text, void* context) noexcept try {
        auto& self = *static_cast<Translation*>(context);
        try {
            self.text = self.translate(text);
            return withoutZero(self.text, "a translation");
        } catch (...) {
            self.exceptions->keep(std::current_exception());
            return nullptr;
        }
    } catch (...) {
        // No memory to keep the exception: the call throws an Error of the kind "callback" instead.
        return nullptr;
    }
};
using Translations = std::vector<std::shared_ptr<Translation>>;

struct GeneratorState {
    std::unique_ptr<RgenReportGenerator, Free> handle = create(rgenh_newReportGenerator);
    std::shared_ptr<ThrownExceptions> exceptions = std::make_shared<ThrownExceptions>();
    /// Guards the rest. Not locked while the library waits for a report, since the translator of
    /// that report may call the generator.
    std::mutex mutex{};
    /// All that the library may call.
    Translations translations{};
    int setters = 0;
    bool haveSettersMet = false;
};

struct JobState {
    std::string output;
    std::shared_ptr<ThrownExceptions> exceptions;
    /// Used until the job ends, also if the generator has another one.
    Translations translations;
    std::promise<std::exception_ptr> thrown{};
    std::shared_future<std::exception_ptr> thrownInReport = thrown.get_future().share();
    /// The last member, since freeing it waits for the thread.
    std::unique_ptr<RgenhJob, Free> handle{};

    static void RGEN_CALL end(RgenhJob* /*job*/, void* context) noexcept {
        auto& self = *static_cast<JobState*>(context);
        self.thrown.set_value(self.exceptions->take());
    }
};

}  // namespace detail

/* ---- Generator ------------------------------------------------------------------------------ */

/**
 * A report that is generated on a thread of the library; `Result` is what Generator's function
 * without a job returns. Movable, not copyable. The destructor cancels the report and waits for it.
 */
template <typename Result>
class Job {
public:
    /** Waits until the report has ended. */
    void wait() const { call(rgenh_waitForJob, state_->handle.get(), -1); }

    /** Waits for at most that time; returns whether the report has ended. */
    bool waitFor(std::chrono::milliseconds time) const {
        const std::int64_t limit = (std::max)(std::int64_t{time.count()}, std::int64_t{0});
        return call(rgenh_waitForJob, state_->handle.get(), limit) != 0;
    }

    /** Asks this report to stop, and no other one; see rgenh_cancelJob. */
    void cancel() const { call(rgenh_cancelJob, state_->handle.get()); }

    /** Waits for the report. Returns its result, or throws its error; to be called once. */
    Result get() {
        Owned<RgenCVariant> result;
        detail::ErrorRecord error;
        const RgenStatus status =
            rgenh_takeJobResult(state_->handle.get(), result.get(), &error.record);
        if (status < 0) {
            // In a translator of the same generator, which must not wait for the end.
            if (error.record.kind == RGENH_ERROR_REENTERED) error.raise();
            const std::exception_ptr thrown = state_->thrownInReport.get();
            if (thrown) std::rethrow_exception(thrown);
            error.raise();
        }
        return detail::resultOf<Result>(*result, state_->output);
    }

private:
    friend class Generator;
    explicit Job(std::unique_ptr<detail::JobState> state) : state_(std::move(state)) {}

    std::unique_ptr<detail::JobState> state_;
};

/**
 * A report generator. Movable, not copyable; a moved-from generator can only be assigned or
 * destroyed. Functions throw what ERRORS says; a StatusError has the statuses of the function of
 * rgen.h with the same purpose.
 */
class Generator {
public:
    /** A generator without a data directory: call setDataDir before anything else. */
    Generator() : state_(std::make_unique<detail::GeneratorState>()) {}
    /** A generator with the data directory "<folder>/.rgen"; see setDataDir. */
    explicit Generator(const Path& folder) : Generator() { setDataDir(folder); }

    /** The handle for functions of rgen_host.h; the generator owns it. */
    RgenReportGenerator* handle() const noexcept { return state_->handle.get(); }

    /** Sets the existing folder that contains the data directory ".rgen". */
    void setDataDir(const Path& folder) {
        call(rgenh_setDataDirPath, handle(), folder.utf8().c_str());
    }

    /**
     * Sets the translator of the marked texts of templates, for reports that start after this call.
     * Waits while a transformation runs on this generator.
     *
     * @param translator  A callable that takes a std::string_view or std::string, the marked text
     *                    as written in the template, and returns a text of any type, which is
     *                    copied at once. It is stored until the next one is set and jobs that use
     *                    it have ended, and called on the generating threads, by one at a time. It
     *                    must not call this generator; see CALLS FROM A CALLBACK.
     * @param form        How translations are read; see rgenh_escapeTranslation.
     *
     * If the translator throws, this and all further texts of the report stay untranslated, and the
     * generating call throws the exception at its end, when an output file may already exist.
     */
    template <typename Translator>
    void setTranslator(Translator translator, TextForm form = TextForm::Plain) {
        // std::function requires a copyable callable; this one may be move-only.
        auto kept = std::make_shared<Translator>(std::move(translator));
        setTranslation(
            [kept = std::move(kept)](std::string_view text) {
                if constexpr (std::is_invocable_v<Translator&, std::string_view>) {
                    return detail::toUtf8((*kept)(text));
                } else {
                    return detail::toUtf8((*kept)(std::string(text)));
                }
            },
            form);
    }

    /** Removes the translator: marked texts stay unchanged. Otherwise as setTranslator. */
    void clearTranslator() { setTranslation(nullptr, TextForm::Plain); }

    /** Generates a report as a file, which is replaced; returns its path. A pdf is verified. */
    std::filesystem::path generateFile(const Request& request, const Path& output) {
        return generate<std::filesystem::path>(request, output.utf8());
    }
    /** Generates a report in memory, without conversion. */
    Bytes generateBytes(const Request& request) { return generate<Bytes>(request, {}); }
    /**
     * Generates a report as a file that the system deletes when it is closed, without conversion.
     * On Linux its name has been removed already. Windows reads the path in the ANSI code page: use
     * ASCII only.
     */
    OpenFile generateOpenFile(const Request& request, const Path& output) {
        return generate<OpenFile>(request, output.utf8());
    }

    ///@{
    /** Starts the same on a thread of the library; waits for nothing. See rgenh_startReport. */
    Job<std::filesystem::path> startFile(const Request& request, const Path& output) {
        return start<std::filesystem::path>(request, output.utf8());
    }
    Job<Bytes> startBytes(const Request& request) { return start<Bytes>(request, {}); }
    Job<OpenFile> startOpenFile(const Request& request, const Path& output) {
        return start<OpenFile>(request, output.utf8());
    }
    ///@}

    /**
     * Asks the running reports of this generator, except jobs, to stop. They throw a StatusError
     * whose isCancellation() is true, unless they are past their last check. For a thread other
     * than the generating ones; waits while a transformation runs.
     */
    void cancel() { call(rgenh_cancel, handle(), nullptr); }
    /** As cancel(), for the reports of one report type. */
    void cancel(const Guid& type) { call(rgenh_cancel, handle(), &type.record()); }

    /** Reads the persistent data of a report type; see rgenh_getPersistentTexts. */
    std::map<std::string, std::string> persistentData(const Guid& type) const {
        Owned<RgenCAnsiStringPairSet> pairs;
        call(rgenh_getPersistentTexts, handle(), &type.record(), pairs.get());
        std::map<std::string, std::string> texts;
        for (std::uint64_t i = 0; i < pairs->count; ++i)
            texts[detail::textOf(pairs->keys[i])] = detail::textOf(pairs->values[i]);
        return texts;
    }

    ///@{
    /** Replaces the persistent data of a report type; see rgenh_setPersistentValues. */
    void setPersistentData(const Guid& type, const Texts& texts) { store(type, texts); }
    void setPersistentValues(const Guid& type, const Values& values) { store(type, values); }
    ///@}

    /** Writes names and display texts of values, without handles, to an XML file. */
    void dump(const Values& values, const Path& output) {
        const std::vector<RgenhValue> entries = detail::entriesOf(values);
        RgenhRequestParts parts{};
        parts.size = sizeof parts;
        parts.values = entries.data();
        parts.valueCount = entries.size();
        const auto request = detail::create(rgenh_newRequest, &parts);
        call(rgenh_dumpRawInputDataToFile, handle(), rgenh_getRequestInput(request.get()),
             output.utf8().c_str());
    }

    /**
     * Reads typed values from an XML file; see rgen_getSimulatedRawDataFromFile. Returns no values
     * if the file is missing, cannot be read, or contains no valid property.
     */
    Values simulatedInput(const Path& input) const {
        Owned<RgenCVariantSet> set;
        call(rgenh_getSimulatedRawDataFromFile, handle(), input.utf8().c_str(), set.get());
        Values values;
        for (std::uint64_t i = 0; i < set->count; ++i) {
            const RgenCVariant& record = set->items[i];
            if (record.type == RGEN_TYPE_EMPTY) continue;
            values.add(detail::textOf(record.name), detail::valueOf(record));
        }
        return values;
    }

private:
    template <typename Result>
    Result generate(const Request& request, const std::string& output) {
        const auto owned = detail::createRequest(request, detail::modeOf<Result>, output);
        const RgenCInputParams* const input = rgenh_getRequestInput(owned.get());
        Owned<RgenCVariant> result;
        detail::ErrorRecord error;
        const RgenStatus status =
            rgenh_generateReport(handle(), input, result.get(), &error.record);
        const std::exception_ptr thrown = status < 0 ? state_->exceptions->take() : nullptr;
        if (thrown) std::rethrow_exception(thrown);
        if (status < 0) error.raise();
        return detail::resultOf<Result>(*result, output);
    }

    template <typename Result>
    Job<Result> start(const Request& request, const std::string& output) {
        const auto owned = detail::createRequest(request, detail::modeOf<Result>, output);
        std::unique_ptr<detail::JobState> job(new detail::JobState{output, state_->exceptions, {}});
        // So that the job has the translator that the library takes from the generator.
        const std::lock_guard lock(state_->mutex);
        job->translations = state_->translations;
        job->handle = detail::create(rgenh_startReport, handle(), owned.get(),
                                     detail::JobState::end, job.get());
        return Job<Result>(std::move(job));
    }

    void setTranslation(std::function<std::string(std::string_view)> translate, TextForm form) {
        detail::GeneratorState& state = *state_;
        const auto function = translate ? detail::Translation::call : nullptr;
        const auto next = std::make_shared<detail::Translation>(
            detail::Translation{std::move(translate), state.exceptions});
        detail::Translations kept = {next};
        std::unique_lock lock(state.mutex);
        state.translations.push_back(next);
        state.haveSettersMet = state.setters++ > 0 || state.haveSettersMet;
        lock.unlock();
        detail::ErrorRecord error;
        const RgenStatus status = rgenh_setTranslator(
            handle(), function, next.get(), static_cast<std::uint64_t>(form), &error.record);
        lock.lock();
        // Of setters at the same time nobody knows which was the last.
        if (status >= 0 && !state.haveSettersMet) state.translations.swap(kept);
        if (--state.setters == 0) state.haveSettersMet = false;
        lock.unlock();
        if (status < 0) error.raise();
    }

    template <typename Item>
    void store(const Guid& type, const Named<Item>& items) {
        const std::vector<RgenhValue> entries = detail::entriesOf(items);
        call(rgenh_setPersistentValues, handle(), &type.record(), entries.data(),
             std::uint64_t{entries.size()});
    }

    std::unique_ptr<detail::GeneratorState> state_;
};

}  // namespace strata::repgen
