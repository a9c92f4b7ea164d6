// The error record of a call. Nothing here throws or allocates memory: records are filled when
// memory is exhausted, too.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>

#include "strata_repgenlib/rgen_host.h"

namespace rgenh {

/// Writes to a host's record, which may be null.
class ErrorRecord {
public:
    /// Empties the record, unless its size is too small.
    explicit ErrorRecord(RgenhError* record) noexcept;

    /// Whether the record's size is right; if not, the call fails without writing to the record.
    bool isUsable() const noexcept { return isUsable_; }

    ///@{
    /// The failure of the call. Each returns the status, which is that of the record.
    RgenStatus fail(RgenhErrorKind kind, RgenStatus status) noexcept;
    RgenStatus failArgument(int argument) noexcept;
    ///@}

    void setSystemError(std::int64_t number) noexcept;
    void setArgument(int argument) noexcept;
    void setEntry(std::uint64_t entry, bool isPair) noexcept;
    void setPath(std::string_view path) noexcept;
    /// Adds to the message; line breaks and other control characters become blanks.
    ErrorRecord& say(std::string_view text) noexcept;
    /// Begins the message with what it is about, usually a path; a long one is cut.
    ErrorRecord& saySubject(std::string_view subject) noexcept;

    /// "<subject>: <text> (0xC0000009 RGEN_E_TEMPLATE_NOT_FOUND)", or less without a subject.
    void sayStatus(std::string_view subject, RgenStatus status) noexcept;

private:
    RgenhError* record_;
    bool isUsable_;
};

}  // namespace rgenh
