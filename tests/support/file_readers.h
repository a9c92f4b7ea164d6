// One interface for the three files that the library reads as XML: the result of reading a content.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_FILE_READERS_H
#define RGEN_TESTS_SUPPORT_FILE_READERS_H

#include <ostream>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.h"

namespace rgen_test {

// What a reader made of a file: its status, or the one text that it read.
struct Outcome {
    std::string status;
    std::string text;
};

bool operator==(const Outcome& left, const Outcome& right);
std::ostream& operator<<(std::ostream& stream, const Outcome& outcome);

Outcome readText(const std::string& text);
Outcome failedRead(RgenStatus status);

// One of the three files: its root, the item that carries one text, the statuses of its failures.
// The simulated input reader only says that it read nothing; its three statuses are alike.
struct FileReader {
    const char* name;
    std::string root;
    std::string itemStart;
    std::string itemEnd;
    std::string end;
    RgenStatus noDocument;
    RgenStatus noItems;
    RgenStatus noValidItems;
    Outcome (*read)(const std::string& content);

    std::string document(const std::string& text, const std::string& prolog = "") const {
        return prolog + "<" + root + ">" + itemStart + text + itemEnd + end;
    }
};

// The configuration, persistent data and simulated input, in this order.
const std::vector<FileReader>& fileReaders();

std::string repeated(const std::string& text, int count);

// A document type with the entities e0 to e<levels>, each ten times the one before.
std::string laughs(const std::string& root, int levels);

}  // namespace rgen_test

#endif
