// The values of the data document that an expression asks for by their names.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "templates/key_names.h"
#include "templates/xpath_check.h"

namespace cli {

/// One place where an expression selects properties by name.
struct ValueRequest {
    enum class Kind {
        /// One name: [@name = 'Device'], key('p', 'Device').
        Name,
        /// The names of a list, "Err.N.Address": key('list', 'Err*Address').
        List,
        /// All names that begin with `name`: [starts-with(@name, 'Hours.')].
        Prefix,
        /// The end of a name whose beginning is only known when the template runs.
        Part
    };
    Kind kind = Kind::Name;
    /// "N" is the number of an entry of a list.
    std::string name;
    /// Of the text in the expression, without its quotes, in bytes.
    std::size_t offset = 0;
    std::size_t length = 0;
    /// The key by which it is selected; empty for a comparison with @name.
    std::string key;
    /// What the key is searched for, as it is written; empty when it is composed.
    std::string keyText;
};

/// What is known about the place of an expression. Everything may be left out.
struct ValueContext {
    /// The name of the property that is the current node, "Err.N.Address".
    std::string currentName;
    /// Variables whose text is part of a name, "Err.N.".
    std::map<std::string, std::string> texts;
    /// Variables with properties of a list, by the name in that list.
    std::map<std::string, std::string> lists;
};

/// In the order of their places.
std::vector<ValueRequest> valueRequests(std::string_view expression, ExpressionKind kind,
                                        const KeyDeclarations& keys,
                                        const ValueContext& context = {});

/// The text of an expression as far as it is part of names, "Err.N."; empty when it is not known.
std::string knownText(std::string_view expression, const ValueContext& context);

/// The name of the properties that an expression selects, "Err.N.Address"; empty when it selects
/// anything else.
std::string selectedName(std::string_view expression, const KeyDeclarations& keys,
                         const ValueContext& context);

}  // namespace cli
