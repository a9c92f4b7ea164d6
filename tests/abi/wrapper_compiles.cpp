// The C++ wrapper, compiled as C++17 and 20 on its own. It is included twice, and what is different
// between the two language versions is used.
//
// SPDX-License-Identifier: MIT
#include "strata_repgenlib/rgen.hpp"

#if __cplusplus >= 202002L
#include <ranges>
#endif

namespace rgen_test {

namespace repgen = strata::repgen;

repgen::Bytes useOfEveryKind(repgen::Generator& generator, const std::filesystem::path& folder) {
    // A text of char in C++17 and of char8_t later.
    repgen::Request request{repgen::Guid(), "html", {{"name", u8"text"}}};
    request.values.add(u8"name", u8"text");
    request.pairs[u8"pair"] = repgen::Text::markup(u8"&#65;");
    generator.setDataDir(folder / u8"reports");
    generator.setTranslator([](std::string_view) { return u8"text"; });
    generator.generateFile(request, folder);
    generator.generateFile(request, u8"report.html");
    generator.generateOpenFile(request, folder).close();
    generator.setPersistentData(request.type, request.pairs);
    return generator.generateBytes(request);
}

#if __cplusplus >= 202002L
// A view that cannot be walked through when it is constant.
repgen::Values useOfViews(const std::map<std::string, int>& numbers) {
    auto isThere = [](const auto& entry) { return entry.second != 0; };
    repgen::Values values(numbers | std::views::filter(isThere));
    auto view = numbers | std::views::filter(isThere);
    values.add(view);
    return values;
}
#endif

}  // namespace rgen_test
