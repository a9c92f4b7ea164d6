// A row of calls of the exports, decided by an input.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_FUZZ_CALL_SEQUENCE_H
#define RGEN_FUZZ_CALL_SEQUENCE_H

#include <array>
#include <cstddef>

#include "fuzz_support.h"
#include "strata_repgenlib/rgen.h"

namespace rgen_fuzz {

class CallSequence {
public:
    explicit CallSequence(InputReader& reader) : reader_(reader) {}
    ~CallSequence();
    CallSequence(const CallSequence&) = delete;
    CallSequence& operator=(const CallSequence&) = delete;

    // Calls until the input ends.
    void run();

private:
    // Null, or one of the two.
    RgenReportGenerator*& generator() { return generators_[reader_.choice(generators_.size())]; }
    const RgenGuid* guid();
    const char* path();

    // One call each; a row of them takes the place of one export.
    void callLifetime();
    void callSettings();
    void callGenerate(RgenReportGenerator* generator);
    void callPersistentData(RgenReportGenerator* generator);
    void callFiles();
    void callDescription();
    void fillRequest();
    void createSets();
    void createTexts();
    void createValue();
    void freeRecords();
    void freeAllRecords();

    void checkResult(RgenStatus status);

    // The translate callback: inside the first generator it uses the second, whose lock is free.
    static const char* RGEN_CALL translate(const char* text, void* sequence);
    void useOther(RgenReportGenerator*& other);

    InputReader& reader_;
    std::array<RgenReportGenerator*, 2> generators_{};
    RgenReportGenerator* generating_ = nullptr;
    bool insideCallback_ = false;

    // The records that the host of this row owns.
    RgenCInputParams input_{};
    RgenCVariantSet values_{};
    RgenCAnsiStringPairSet pairs_{};
    RgenCVariant value_{};
    RgenAnsiString text_{};
    RgenByteArray bytes_{};
};

}  // namespace rgen_fuzz

#endif
