// What is made once in the process, with each allocation failing in turn: every attempt is the
// first one of a new process, which this one forks before it has called the library itself. Windows
// has no fork, and a start of the program for each attempt would take minutes under Wine.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "robustness/faults/fault_scenario.h"
#include "robustness/faults/sweep_report.h"
#include "support/allocation_faults.h"

namespace rgen_test {
namespace {

enum class Verdict { Right, NotReached, Printed, Wrong, Useless, KeepsMore };

struct FirstCall {
    // True for an outcome that the call documents. Exceptions other than std::bad_alloc end the
    // child.
    std::function<bool()> call;
    bool mayThrow = false;
    // Later allocations are not made for the first time.
    std::size_t lastAllocation = static_cast<std::size_t>(-1);
    // What the child does before; may be empty.
    std::function<void()> prepare;
};

const std::vector<RgenStatus> documentedFailures =
    configurationFailures() +
    std::vector<RgenStatus>{RGEN_E_XSLT_PARSE, RGEN_E_XSLT_APPLY, RGEN_E_XSLT_RESULT};

bool contains(const std::vector<RgenStatus>& list, RgenStatus status) {
    return std::find(list.begin(), list.end(), status) != list.end();
}

class FirstCalls : public testing::Test {
protected:
    // Every allocation of the first call fails, alone and with all later ones.
    void sweep(const FirstCall& first) {
        const std::size_t kept = blocksKept(first);
        for (const FailureForm form : {FailureForm::One, FailureForm::AllFrom}) {
            std::size_t number = 1;
            while (number <= first.lastAllocation && attempt(first, number, form, kept))
                ++number;
            points_ += number - 1;
        }
        std::printf("[  points  ] %zu\n", points_);
        EXPECT_GT(points_, 0U);
        countPoints("first_call_points", points_);
    }

    FaultFolder files;

private:
    // False when there are no such many allocations.
    bool attempt(const FirstCall& first, std::size_t number, FailureForm form, std::size_t kept) {
        const int status = statusOfChild([&] { return judge(first, number, form, kept); });
        const auto verdict = static_cast<Verdict>(WEXITSTATUS(status));
        const bool ended = WIFEXITED(status);
        EXPECT_TRUE(ended) << number << ": ended by signal " << WTERMSIG(status);
        if (ended && verdict == Verdict::NotReached) return false;
        EXPECT_EQ(0, ended ? WEXITSTATUS(status) : 0)
            << (form == FailureForm::One ? "allocation " : "allocations from ") << number;
        return ended && !HasFailure();
    }

    // The blocks that a process keeps when nothing fails.
    std::size_t blocksKept(const FirstCall& first) {
        int ends[2] = {-1, -1};
        EXPECT_EQ(0, pipe(ends));
        statusOfChild([&] {
            if (first.prepare) first.prepare();
            const BlockAccount account;
            first.call();
            static_cast<void>(works());
            const std::size_t count = account.outstanding();
            return write(ends[1], &count, sizeof count) == sizeof count ? Verdict::Right
                                                                        : Verdict::Wrong;
        });
        std::size_t kept = 0;
        EXPECT_EQ(static_cast<ssize_t>(sizeof kept), read(ends[0], &kept, sizeof kept));
        close(ends[0]);
        close(ends[1]);
        return kept;
    }

    Verdict judge(const FirstCall& first, std::size_t number, FailureForm form, std::size_t kept) {
        const int errors = open(files.file("errors").c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600);
        dup2(errors, STDERR_FILENO);
        if (first.prepare) first.prepare();
        const BlockAccount account;
        bool isRight = false;
        std::size_t count = 0;
        try {
            const FailingAllocation failure(number, form);
            isRight = first.call();
            count = failure.count();
        } catch (const std::bad_alloc&) {
            isRight = first.mayThrow;
            count = number;
        }
        if (count < number) return Verdict::NotReached;
        if (!isRight) return Verdict::Wrong;
        first.call();
        if (!works()) return Verdict::Useless;
        if (account.outstanding() > kept) return Verdict::KeepsMore;
        return lseek(errors, 0, SEEK_END) == 0 ? Verdict::Right : Verdict::Printed;
    }

    bool works() {
        FaultSubject subject(files);
        return subject.works();
    }

    static int statusOfChild(const std::function<Verdict()>& action) {
        std::fflush(stdout);
        const pid_t child = fork();
        if (child == 0) _exit(static_cast<int>(action()));
        int status = 0;
        EXPECT_EQ(child, waitpid(child, &status, 0));
        return status;
    }

    std::size_t points_ = 0;
};

TEST_F(FirstCalls, NewReportGenerator) {
    FirstCall first;
    first.call = [] {
        rgen_freeReportGenerator(rgen_newReportGenerator());
        return true;
    };
    sweep(first);
}

// The XML libraries keep something for each thread.
TEST_F(FirstCalls, ReportOnAnotherThread) {
    FirstCall first;
    first.mayThrow = true;
    first.lastAllocation = 80;
    const std::string path = files.file("plain");
    const RgenGuid guid = defaultGuid();
    RgenReportGenerator* generator = nullptr;
    first.prepare = [&] {
        std::thread([&] { generator = rgen_newReportGenerator(); }).join();
        rgen_setDataDirPath(generator, path.c_str());
    };
    first.call = [&] {
        char name[] = "plain";
        char text[] = "whole";
        char format[] = "txt";
        RgenCVariant value = {};
        value.name.data = name;
        value.value.stringValue.data = text;
        value.type = RGEN_TYPE_STRING;
        RgenCInputParams input = {};
        input.variants = {&value, 1};
        input.templateGuid = guid;
        input.outputMode = RGEN_OUTPUT_BYTES;
        input.outputFormat.data = format;
        RgenCVariant result = {};
        const RgenStatus status = rgen_generateReport(generator, &input, &result);
        const bool isWhole =
            result.type == RGEN_TYPE_BYTE_ARRAY &&
            (result.value.byteArrayValue.data == nullptr || result.value.byteArrayValue.size == 5);
        rgen_freeRgenCVariant(&result);
        return status == RGEN_OK ? isWhole : contains(documentedFailures, status);
    };
    sweep(first);
}

TEST_F(FirstCalls, SimulatedInput) {
    writeFile(files.file("in.xml"),
              "<data><properties><property name=\"n\" type=\"int64\" hint=\"Size\">1</property>"
              "</properties></data>");
    FirstCall first;
    first.mayThrow = true;
    first.call = [this] {
        const std::string path = files.file("in.xml");
        RgenReportGenerator* generator = rgen_newReportGenerator();
        if (generator == nullptr) return true;
        const std::unique_ptr<RgenReportGenerator, void (*)(RgenReportGenerator*)> owner(
            generator, rgen_freeReportGenerator);
        RgenCVariantSet set = {};
        const bool read = rgen_getSimulatedRawDataFromFile(generator, path.c_str(), &set) == 1;
        const bool isEmpty = set.items == nullptr && set.count == 0;
        const bool isWhole = set.count == 1;
        rgen_freeRgenCVariantSet(&set);
        return read ? isWhole : isEmpty;
    };
    sweep(first);
}

}  // namespace
}  // namespace rgen_test
