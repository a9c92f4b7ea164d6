// GUIDs and their text form.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace rgen {

/// 16 bytes in the platform's layout.
struct Guid {
    std::uint32_t data1;
    std::uint16_t data2;
    std::uint16_t data3;
    std::array<std::uint8_t, 8> data4;
};

/// The report type of the default configuration: deadbabe-0000-0000-0000-000000000000.
inline constexpr Guid defaultReportTypeGuid = {0xDEADBABE, 0, 0, {}};

/// 36 lower-case characters in the grouping 8-4-4-4-12.
std::string formatGuid(const Guid& guid);

/// True for a text in the format of formatGuid. Equivalent to a full match of the ECMAScript
/// expression ([0-9]|[a-f]){8}(-([0-9]|[a-f]){4}){3}-([0-9]|[a-f]){12}.
bool isGuidText(const std::string& text);

}  // namespace rgen
