// The exceptions of the report library are those that the heading EXCEPTIONS of rgen.h lists.
//
// SPDX-License-Identifier: MIT
#include "error/exception_report.h"

#include <boost/filesystem/exception.hpp>
#include <boost/system/system_error.hpp>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

#include "error/failures.h"
#include "platform/host_platform.h"
#include "text/character_check.h"

namespace rgenh {
namespace {

RgenStatus reportEncoding(ErrorRecord& record, const PassedText* texts) {
    for (; texts != nullptr && texts->name != nullptr; ++texts) {
        if (texts->text == nullptr || isUtf8(texts->text)) continue;
        record.setArgument(texts->argument);
        record.setPath(withInvalidReplaced(texts->text));
        record.say(texts->name).say(" is not valid UTF-8");
        return record.fail(RGENH_ERROR_ENCODING, RGEN_E_UNKNOWN);
    }
    record.say("a path is not valid UTF-8");
    return record.fail(RGENH_ERROR_ENCODING, RGEN_E_UNKNOWN);
}

RgenStatus reportFileSystem(ErrorRecord& record,
                            const boost::filesystem::filesystem_error& failure) {
    const std::string path = platform::utf8Path(failure.path1().native());
    record.setPath(path);
    record.setSystemError(failure.code().value());
    const std::string_view subject = path;
    record.saySubject(path.empty() ? "the data directory is not set" : subject);
    record.say(platform::systemErrorText(failure.code().value()));
    return record.fail(RGENH_ERROR_FILE_SYSTEM, RGEN_E_UNKNOWN);
}

/// Locks of the C++ runtime may need memory.
bool isExhaustion(int number) {
    return number == static_cast<int>(std::errc::not_enough_memory) ||
           number == static_cast<int>(std::errc::resource_unavailable_try_again);
}

RgenStatus reportSystem(ErrorRecord& record, int number) {
    if (isExhaustion(number)) return reportMemory(record);
    record.setSystemError(number);
    record.say(platform::systemErrorText(number));
    return record.fail(RGENH_ERROR_UNKNOWN, RGEN_E_UNKNOWN);
}

RgenStatus reportArgument(ErrorRecord& record, const ArgumentError& failure) {
    record.setEntry(failure.entry(), failure.isPair());
    record.say(failure.what());
    if (failure.argument() != 0) record.setArgument(failure.argument());
    return record.fail(RGENH_ERROR_ARGUMENT, RGEN_E_BAD_PARAMETER);
}

RgenStatus reportConversion(ErrorRecord& record, const ConversionFailure& failure) {
    record.setPath(failure.path());
    record.say(failure.what());
    return record.fail(RGENH_ERROR_CONVERSION, RGEN_E_EXTERNAL_FAILED);
}

/// Throws when memory is exhausted while the exception is described.
RgenStatus describe(ErrorRecord& record, const PassedText* texts) {
    try {
        throw;
    } catch (const ArgumentError& failure) {
        return reportArgument(record, failure);
    } catch (const ConversionFailure& failure) {
        return reportConversion(record, failure);
    } catch (const std::range_error&) {
        return reportEncoding(record, texts);
    } catch (const boost::filesystem::filesystem_error& failure) {
        return reportFileSystem(record, failure);
    } catch (const boost::system::system_error& failure) {
        return reportSystem(record, failure.code().value());
    } catch (const std::system_error& failure) {
        return reportSystem(record, failure.code().value());
    } catch (const std::bad_alloc&) {
        return reportMemory(record);
    } catch (const std::exception& failure) {
        record.say(failure.what());
    } catch (...) {
        record.say("an unknown exception");
    }
    return record.fail(RGENH_ERROR_UNKNOWN, RGEN_E_UNKNOWN);
}

}  // namespace

bool canThrow() noexcept {
    // More than the runtime allocates for a thread. Volatile, or the compiler leaves it out.
    constexpr std::size_t probeSize = 1024;
    void* volatile probe = std::malloc(probeSize);
    if (probe == nullptr) return false;
    std::free(probe);
    // Lets the runtime allocate. The number says nothing where the libraries have two runtimes.
    static_cast<void>(std::uncaught_exceptions());
    return true;
}

RgenStatus reportMemory(ErrorRecord& record) noexcept {
    record.setArgument(0);
    record.say("memory is exhausted");
    return record.fail(RGENH_ERROR_MEMORY, RGEN_E_UNKNOWN);
}

RgenStatus reportException(ErrorRecord& record, const PassedText* texts) noexcept {
    try {
        return describe(record, texts);
    } catch (...) {
        return reportMemory(record);
    }
}

}  // namespace rgenh
