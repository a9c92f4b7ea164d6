// SPDX-License-Identifier: MIT
#include "robustness/faults/io_sweep_posix.h"

#include <gtest/gtest.h>

#include <boost/filesystem/exception.hpp>
#include <cerrno>
#include <cstring>
#include <vector>

#include "robustness/faults/sweep_report.h"
#include "support/console_capture.h"
#include "support/status_printer.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

struct Attempt {
    bool threw = false;
    RgenStatus status = RGEN_OK;
    std::string product;
};

class IoSweep {
public:
    IoSweep(const FaultFolder& files, const IoScenario& scenario)
        : files_(files), scenario_(scenario) {}

    void run() {
        runGoodCall();
        for (std::size_t kind = 0; kind < ioCallCount; ++kind) {
            for (std::size_t number = 1; number <= counts_.at(kind); ++number)
                runFaults(static_cast<IoCall>(kind), number);
        }
    }

    std::size_t points() const { return points_; }
    const std::vector<std::string>& problems() const { return problems_; }
    std::string summary() const {
        std::string text = scenario_.base.name + ": " + std::to_string(points_) + " points, " +
                           std::to_string(same_) + " as without a failure;";
        for (std::size_t kind = 0; kind < ioCallCount; ++kind) {
            text += std::string(" ") + nameOf(static_cast<IoCall>(kind)) + " " +
                    std::to_string(counts_.at(kind));
        }
        return text;
    }

private:
    void runGoodCall() {
        if (scenario_.base.arrange) scenario_.base.arrange(files_);
        FaultSubject subject(files_);
        if (scenario_.base.prepare) scenario_.base.prepare(subject);
        const FailingIo counting(files_.folder().path(), {});
        call(subject, good_);
        for (std::size_t kind = 0; kind < ioCallCount; ++kind)
            counts_.at(kind) = counting.count(static_cast<IoCall>(kind));
        take(subject, good_);
        names_ = namesIn(files_.folder().path());
        if (good_.threw) problem("the call without a failure throws");
    }

    void runFaults(IoCall kind, std::size_t number) {
        for (const int error : {ENOSPC, EIO, EACCES, EMFILE, EINTR}) {
            runPoint({kind, number, error, FailureForm::One});
            // A signal comes once; everything else may stay as it is.
            if (error != EINTR) runPoint({kind, number, error, FailureForm::AllFrom});
        }
        if (kind == IoCall::Read || kind == IoCall::Write) {
            runPoint({kind, number, shortCount, FailureForm::One});
            runPoint({kind, number, shortCount, FailureForm::AllFrom});
        }
    }

    void runPoint(const IoFault& fault) {
        ++points_;
        point_ = std::string(nameOf(fault.call)) + " " + std::to_string(fault.number) +
                 (fault.form == FailureForm::One ? ": " : " and later: ") +
                 (fault.error == shortCount ? "short" : std::strerror(fault.error));
        if (scenario_.base.arrange) scenario_.base.arrange(files_);
        const long printedBefore = printedBytes();
        const long openBefore = openHandles();
        FaultSubject subject(files_);
        if (scenario_.base.prepare) scenario_.base.prepare(subject);
        Attempt attempt;
        bool isReached = false;
        {
            const FailingIo failing(files_.folder().path(), fault);
            call(subject, attempt);
            isReached = failing.reached();
        }
        take(subject, attempt);
        if (!isReached) problem("is not reached");
        judge(fault, attempt);
        if (openHandles() != openBefore) problem("a descriptor stays open");
        checkNextCall(subject);
        if (printedBytes() != printedBefore) problem("something is printed");
    }

    void checkNextCall(FaultSubject& subject) {
        Attempt again;
        call(subject, again);
        take(subject, again);
        if (again.threw || again.status != good_.status || again.product != good_.product)
            problem("the next call gives " + describe(again));
        if (!subject.works()) problem("no report can be made afterwards");
    }

    void call(FaultSubject& subject, Attempt& attempt) {
        try {
            attempt.status = scenario_.base.call(subject);
        } catch (const boost::filesystem::filesystem_error&) {
            attempt.threw = true;
        }
    }

    void take(FaultSubject& subject, Attempt& attempt) {
        if (scenario_.base.take) attempt.product = scenario_.base.take(subject);
    }

    void judge(const IoFault& fault, const Attempt& attempt) {
        const bool failed = attempt.threw || attempt.status != good_.status;
        // A signal or a short count in the middle of the bytes loses nothing.
        const bool mustSucceed =
            fault.call == IoCall::Write && (fault.error == EINTR || fault.error == shortCount);
        bool isRight = attempt.product == good_.product;
        if (failed) {
            const bool isDocumented = attempt.threw
                                          ? scenario_.mayThrow
                                          : contains(scenario_.base.failures, attempt.status);
            isRight = isDocumented && !mustSucceed &&
                      (fault.call == IoCall::Remove ||
                       contains(scenario_.base.productsOfFailure, attempt.product));
        } else if (!isRight) {
            isRight = !mustSucceed && scenario_.mayMake &&
                      scenario_.mayMake(fault, good_.product, attempt.product);
        } else {
            ++same_;
        }
        if (!isRight) problem("gives " + describe(attempt));
        const bool isCleanUpSpoilt = fault.call == IoCall::Remove || fault.call == IoCall::Look;
        if (!isCleanUpSpoilt && namesIn(files_.folder().path()) != names_)
            problem("leaves another set of files");
    }

    static std::string describe(const Attempt& attempt) {
        const std::string ending = attempt.threw ? "an exception" : statusHex(attempt.status);
        return ending + " and \"" + attempt.product + "\"";
    }

    void problem(const std::string& text) {
        constexpr std::size_t mostShown = 60;
        if (problems_.size() < mostShown) problems_.push_back(point_ + ": " + text);
    }

    const FaultFolder& files_;
    const IoScenario& scenario_;
    Attempt good_;
    std::vector<std::string> names_;
    std::array<std::size_t, ioCallCount> counts_ = {};
    std::size_t points_ = 0;
    std::size_t same_ = 0;
    std::string point_ = "good call";
    std::vector<std::string> problems_;
};

}  // namespace

void sweepFileOperations(const FaultFolder& files, const IoScenario& scenario) {
    IoSweep sweep(files, scenario);
    captureConsole([&sweep] { sweep.run(); });
    reportSweep(scenario.base.name, sweep.summary(), sweep.problems(), "file_operation_points",
                sweep.points());
}

}  // namespace rgen_test
