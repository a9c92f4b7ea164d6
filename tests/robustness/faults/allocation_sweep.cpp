// SPDX-License-Identifier: MIT
#include "robustness/faults/allocation_sweep.h"

#include <gtest/gtest.h>

#include <new>
#include <system_error>
#include <utility>

#include "robustness/faults/sweep_report.h"
#include "support/allocation_faults.h"
#include "support/console_capture.h"
#include "support/status_printer.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

enum class Ending { Status, BadAlloc, LockError };

// The result of one call.
struct Attempt {
    Ending ending = Ending::Status;
    RgenStatus status = RGEN_OK;
    std::string product;
};

// The number of each outcome.
struct Outcomes {
    std::size_t same = 0;
    std::size_t statuses = 0;
    std::size_t exceptions = 0;
    std::size_t omissions = 0;
};

class Sweep {
public:
    Sweep(const FaultFolder& files, const FaultScenario& scenario)
        : files_(files), scenario_(scenario) {}

    void run() {
        throwWithoutMemory();
        for (int warmUp = 0; warmUp < 2; ++warmUp)
            runGoodCall();
        for (const FailureForm form : {FailureForm::One, FailureForm::AllFrom}) {
            for (std::size_t number = 1; number <= allocations_; ++number) {
                point_ = (form == FailureForm::One ? "allocation " : "allocations from ") +
                         std::to_string(number);
                runPoint(number, form);
            }
        }
    }

    std::size_t points() const { return 2 * allocations_; }
    const std::vector<std::string>& problems() const { return problems_; }
    std::string summary() const {
        return scenario_.name + ": " + std::to_string(points()) + " points, " +
               std::to_string(outcomes_.same) + " as without a failure, " +
               std::to_string(outcomes_.statuses) + " statuses, " +
               std::to_string(outcomes_.exceptions) + " exceptions, " +
               std::to_string(outcomes_.omissions) + " omissions";
    }

private:
    // The reserve of the C++ runtime for exceptions has a lock, which on Windows is created when it
    // is first used, and that needs memory.
    static void throwWithoutMemory() {
        try {
            const FailingAllocation first(1);
            throw std::bad_alloc();
        } catch (const std::bad_alloc&) {
            return;
        }
    }

    void runGoodCall() {
        if (scenario_.arrange) scenario_.arrange(files_);
        FaultSubject subject(files_);
        if (scenario_.prepare) scenario_.prepare(subject);
        const FailingAllocation counting;
        call(subject, good_);
        allocations_ = counting.count();
        take(subject, good_);
        if (!subject.works()) problem("no report can be made after a good call");
        names_ = namesIn(files_.folder().path());
        if (good_.ending != Ending::Status) problem("the call without a failure throws");
    }

    void runPoint(std::size_t number, FailureForm form) {
        if (scenario_.arrange) scenario_.arrange(files_);
        const long printedBefore = printedBytes();
        std::size_t outstanding = 0;
        {
            const BlockAccount account;
            attemptWithFailure(number, form);
            outstanding = account.outstanding();
        }
        if (outstanding != 0) problem(std::to_string(outstanding) + " blocks stay");
        if (printedBytes() != printedBefore) problem("something is printed");
    }

    void attemptWithFailure(std::size_t number, FailureForm form) {
        FaultSubject subject(files_);
        if (scenario_.prepare) scenario_.prepare(subject);
        Attempt attempt;
        std::size_t count = 0;
        {
            const FailingAllocation failure(number, form);
            call(subject, attempt);
            count = failure.count();
        }
        take(subject, attempt);
        if (count < number) problem("is not reached");
        judge(attempt);
        if (namesIn(files_.folder().path()) != names_) problem("leaves another set of files");
        Attempt again;
        call(subject, again);
        take(subject, again);
        const bool sameAgain = again.ending == Ending::Status && again.status == good_.status &&
                               again.product == good_.product;
        if (!sameAgain) problem("the next call gives " + describe(again));
        if (!subject.works()) problem("no report can be made afterwards");
    }

    void call(FaultSubject& subject, Attempt& attempt) {
        try {
            attempt.status = scenario_.call(subject);
        } catch (const std::bad_alloc&) {
            attempt.ending = Ending::BadAlloc;
        } catch (const std::system_error&) {
            attempt.ending = Ending::LockError;
        }
    }

    void take(FaultSubject& subject, Attempt& attempt) {
        if (scenario_.take) attempt.product = scenario_.take(subject);
    }

    void judge(const Attempt& attempt) {
        const bool failed = attempt.ending != Ending::Status || attempt.status != good_.status;
        const bool isDocumented =
            attempt.ending != Ending::Status || contains(scenario_.failures, attempt.status);
        if (failed) {
            ++(attempt.ending == Ending::Status ? outcomes_.statuses : outcomes_.exceptions);
            if (!isDocumented || !contains(scenario_.productsOfFailure, attempt.product))
                problem("gives " + describe(attempt));
        } else if (attempt.product == good_.product) {
            ++outcomes_.same;
        } else {
            ++outcomes_.omissions;
            if (!scenario_.mayLoseLines || !lacksLinesOnly(good_.product, attempt.product))
                problem("gives " + describe(attempt));
        }
    }

    static std::string describe(const Attempt& attempt) {
        const std::string ending = attempt.ending == Ending::BadAlloc ? "std::bad_alloc"
                                   : attempt.ending == Ending::LockError
                                       ? "std::system_error"
                                       : statusHex(attempt.status);
        return ending + " and \"" + attempt.product + "\"";
    }

    void problem(const std::string& text) {
        const UnaccountedStretch stretch;
        constexpr std::size_t mostShown = 40;
        if (problems_.size() < mostShown) problems_.push_back(point_ + ": " + text);
    }

    const FaultFolder& files_;
    const FaultScenario& scenario_;
    Attempt good_;
    std::vector<std::string> names_;
    std::size_t allocations_ = 0;
    std::string point_ = "good call";
    Outcomes outcomes_;
    std::vector<std::string> problems_;
};

}  // namespace

void sweepAllocations(const FaultFolder& files, const FaultScenario& scenario) {
    Sweep sweep(files, scenario);
    captureConsole([&sweep] { sweep.run(); });
    reportSweep(scenario.name, sweep.summary(), sweep.problems(), "allocation_points",
                sweep.points());
    EXPECT_FALSE(sanitizerFindsLeaks()) << scenario.name;
}

}  // namespace rgen_test
