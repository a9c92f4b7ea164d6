// A host that does everything the library offers, in a fixed pseudo-random order, and checks every
// result. It has two data directories, "A" and "B", and knows what is stored in each.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SOAK_SOAK_HOST_H
#define RGEN_TESTS_SOAK_SOAK_HOST_H

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "robustness/soak/companion.h"
#include "support/converter_control.h"
#include "support/report_fixture.h"

namespace rgen_test {

// The report types of both data directories by what is special about them. A template of each is
// there for "html", of "good" for all formats.
extern const char* const goodType;
extern const char* const brokenType;
extern const char* const failingType;
extern const char* const silentType;
extern const char* const templatelessType;
extern const char* const storelessType;
extern const char* const blockedStoreType;
extern const char* const unknownType;

// One data directory and what the host knows about it.
struct SoakPlace {
    explicit SoakPlace(const std::string& name);

    std::string name;
    TempFolder folder;
    std::string stored;
};

class SoakHost {
public:
    explicit SoakHost(unsigned seed);

    // Does one thing, chosen by the sequence: at least one report most of the time.
    void step();
    // Steps until that many further reports were asked for.
    void makeReports(long count);
    // Cancels a conversion, whose converter lives on and ends later.
    void abandonConverter();
    // Waits until no converter is left and the library has collected them all.
    void collectConverters();

    long reports() const { return reports_; }
    // How often each kind of step was taken and each status returned.
    const std::map<std::string, long>& counts() const { return counts_; }
    // Removes the outputs that later reports would have replaced.
    void removeReports();
    // Every file and folder of the host.
    std::vector<std::string> files() const;

private:
    struct Step {
        const char* name;
        unsigned weight;
        void (SoakHost::*take)();
    };
    static const std::vector<Step>& steps();

    // One report of the good type and what it must be.
    struct Request {
        InputParams input;
        std::string format;
        std::string expected;
    };

    unsigned upTo(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
    std::string someText(std::size_t longest);
    SoakPlace& place() { return *places_[current_]; }
    std::string expectedBytes(const std::string& format, const std::string& value,
                              std::uint64_t number);
    void fill(Request& request);
    RgenStatus generateOn(const Generator& used, InputParams& input, Result& result);
    void expectBytes(Request& request, const Generator& used);
    std::string outputFile(const std::string& ending);
    void expectStatus(RgenStatus expected, RgenStatus actual, const std::string& what);

    void reportAsBytes();
    void reportAsFile();
    void reportAsHandle();
    void reportWithoutConversion();
    void largeReport();
    void convertedReport();
    void missingConverter();
    void failingReport();
    void failingOperation();
    void raisingOperation();
    void lateCancel();
    void cancelStorm();
    void storePairsAndRead();
    void storeValuesAndRead();
    void dump();
    void simulate();
    void changePlace();
    void changeTranslation();
    void generatorThatGoes();
    void threadThatGoes();
    void freshDataDirectory();
    void records();
    void statusTexts();

    std::mt19937 random_;
    TempFolder outputs_;
    ConverterControl converter_;
    SoakPlace first_{"A"};
    SoakPlace second_{"B"};
    SoakPlace* places_[2] = {&first_, &second_};
    unsigned current_ = 0;
    // The prefix that the translate callback adds to each text.
    char* prefix_;
    Generator generator_;
    Companion companion_;
    long reports_ = 0;
    std::map<std::string, long> counts_;
};

// Reads a mode 1 result from its start, and closes it.
std::string readAndCloseHandle(void* handle);

}  // namespace rgen_test

#endif
