// The XML files that the library reads and writes: configuration, dumps, simulated input. rgen
// reads and writes them with its own copy of libxml2.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>
#include <vector>

#include "values/value.h"

namespace cli {

/// The entry of one report type in a configuration.
struct ConfiguredType {
    std::string guid;
    std::string persistDataFile;
    std::string reportTypeFile;
};

/// The usable report types of a configuration file as the library sees them: of several entries for
/// one GUID the last. Throws a CommandError when the file cannot be read as XML.
std::vector<ConfiguredType> readConfiguration(const std::string& path);

/// The names of all properties of a data document, in their order.
std::vector<std::string> propertyNames(const std::string& path);

/// What is wrong with an XML file, with its line; empty when it is well-formed.
std::string damageOf(const std::string& path);

/// What is wrong with a text as content of an element; empty when it is well-formed. Namespace
/// prefixes need not be declared.
std::string mistakeInContent(const std::string& content);

/// Names and texts of a dump that the library wrote.
std::map<std::string, std::string> readDump(const std::string& path);

/// A document that rgen_getSimulatedRawDataFromFile reads.
std::string simulatedInputDocument(const std::map<std::string, Value>& values);

}  // namespace cli
