// What the targets share: ending with a message, a folder of their own, the records of the public
// header with owners, and an input that is read as decisions.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_FUZZ_FUZZ_SUPPORT_H
#define RGEN_FUZZ_FUZZ_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.h"

namespace rgen_fuzz {

// Prints the message and the text in question, and ends the process with abort().
[[noreturn]] void fail(const char* message, const std::string& text = std::string());

inline void require(bool condition, const char* message, const std::string& text = std::string()) {
    if (!condition) fail(message, text);
}

// The status is one of those named.
void requireOneOf(RgenStatus status, std::initializer_list<RgenStatus> allowed,
                  const char* operation);

// True for strict UTF-8: no overlong or cut sequences, no surrogates, nothing above U+10FFFF.
bool isUtf8(const std::string& text);

// A new folder of this process below the system's temporary folder. It is made by the first call,
// becomes the current folder, so that relative names stay inside, and vanishes at the end.
const std::string& workFolder();
// UTF-8 path of something in the work folder.
std::string workPath(const std::string& relative);
// Writes a file in the work folder; missing folders above it are created.
void writeWorkFile(const std::string& relative, const std::string& bytes);
// The bytes of a file in the work folder; empty when there is none.
std::string readWorkFile(const std::string& relative);
void createWorkFolder(const std::string& relative);
// Removes a file or a folder with all that is in it.
void removeFromWork(const std::string& relative);

// A generator whose data directory is in the named folder of the work folder.
class Generator {
public:
    explicit Generator(const std::string& relativeFolder);
    ~Generator() { rgen_freeReportGenerator(handle_); }
    Generator(const Generator&) = delete;
    Generator& operator=(const Generator&) = delete;

    RgenReportGenerator* get() const { return handle_; }

private:
    RgenReportGenerator* handle_;
};

// The report type of the default configuration.
extern const RgenGuid defaultGuid;

// A set of values, built by the create exports.
class ValueSet {
public:
    ValueSet() = default;
    ~ValueSet();
    ValueSet(const ValueSet&) = delete;
    ValueSet& operator=(const ValueSet&) = delete;

    // A zero-filled record, to be filled by a create export at once.
    RgenCVariant& add();
    void addString(const std::string& name, const std::string& text);
    // The record points into this object.
    RgenCVariantSet record();

private:
    std::vector<RgenCVariant> items_;
};

using TextMap = std::map<std::string, std::string>;

// Pairs of names and texts as the record that exports take.
class PairSet {
public:
    explicit PairSet(const TextMap& pairs);
    ~PairSet() { rgen_freeRgenCAnsiStringSet(&record_); }
    PairSet(const PairSet&) = delete;
    PairSet& operator=(const PairSet&) = delete;

    const RgenCAnsiStringPairSet* get() const { return &record_; }

private:
    RgenCAnsiStringPairSet record_{};
};

// The persistent data of the default report type, and its status. Names and texts that come back
// are checked for what always holds: not empty, no white space around them, no name twice.
RgenStatus readPersistentData(const Generator& generator, TextMap& pairs);

// Stores what was read once and reads it again. Nothing may change in texts of XML characters that
// hold no "&"; other pairs are left alone.
void requireStableStorage(const Generator& generator, const TextMap& pairs);

// Makes the report of the default report type in mode 2; the bytes are set on success only.
RgenStatus generateBytes(const Generator& generator, const RgenCVariantSet& values,
                         const char* format, std::string& report);

// The input as decisions. Behind its end all numbers are zero and all texts empty.
class InputReader {
public:
    explicit InputReader(const std::string& input) : input_(input) {}

    bool atEnd() const { return position_ >= input_.size(); }
    std::uint8_t byte();
    // Below the bound, which is at most 256.
    std::size_t choice(std::size_t bound) { return byte() % bound; }
    std::uint64_t number();
    // A length byte and so many bytes; a zero byte among them ends the text.
    std::string text();
    std::string bytes();

private:
    const std::string& input_;
    std::size_t position_ = 0;
};

}  // namespace rgen_fuzz

#endif
