// Cancels that wait for the configuration lookup, as a host on Linux can prove it: a lease keeps
// the library inside the lookup, which opens config.xml, and the system tells that the cancelling
// thread waits at an address inside the generator.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdint>
#include <fstream>
#include <string>
#include <thread>

#include "support/report_fixture.h"

namespace rgen_test {
namespace {

// While it lives, or until it is released, opening the file blocks.
class HeldFile {
public:
    explicit HeldFile(const std::string& path)
        : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        // The system announces the opening by a signal, which nobody needs: one that is ignored.
        if (fcntl(descriptor_, F_SETSIG, SIGURG) != 0 ||
            fcntl(descriptor_, F_SETLEASE, F_WRLCK) != 0) {
            ADD_FAILURE() << "no lease on " << path;
        }
    }
    ~HeldFile() { close(descriptor_); }
    HeldFile(const HeldFile&) = delete;
    HeldFile& operator=(const HeldFile&) = delete;

    bool isBeingOpened() const { return fcntl(descriptor_, F_GETLEASE) != F_WRLCK; }
    void release() const { fcntl(descriptor_, F_SETLEASE, F_UNLCK); }

private:
    int descriptor_;
};

// Whether that thread waits for a lock in the first bytes of the generator.
bool waitsInside(pid_t thread, const RgenReportGenerator* generator) {
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/syscall");
    long number = 0;
    std::uintptr_t address = 0;
    file >> number >> std::hex >> address;
    constexpr std::uintptr_t generatorSize = 512;
    const auto first = reinterpret_cast<std::uintptr_t>(generator);
    return number == SYS_futex && address >= first && address < first + generatorSize;
}

class LookupCancel : public ReportTest {
protected:
    // Generates and, while the configuration is looked up, cancels by a call that waits.
    std::string statusOfCancelledLookup(InputParams& input, const RgenGuid* guid) {
        const HeldFile configuration(folder.dataFile("config.xml"));
        std::string status;
        std::thread generating([&] { status = generate(input); });
        while (!configuration.isBeingOpened())
            std::this_thread::yield();
        std::atomic<pid_t> canceller{0};
        std::thread cancelling([&] {
            canceller = gettid();
            rgen_cancel(generator.get(), guid);
        });
        while (!waitsInside(canceller, generator.get()))
            std::this_thread::yield();
        configuration.release();
        cancelling.join();
        generating.join();
        return status;
    }

    // How many of a hundred cancels have no effect.
    int lostCancels(InputParams& input) {
        const RgenGuid guid = defaultGuid();
        int lost = 0;
        for (int round = 0; round < 100; ++round) {
            const RgenGuid* which = round % 2 == 0 ? &guid : nullptr;
            lost += statusOfCancelledLookup(input, which) == statusHex(RGEN_CANCELED) ? 0 : 1;
        }
        return lost;
    }
};

TEST_F(LookupCancel, IsAlwaysHonoured) {
    putTemplate(textStylesheet(valueOf("v")));
    InputParams input;
    input.variants().addString("v", "v");
    EXPECT_EQ(reportOf("v"), report(input));
    EXPECT_EQ(0, lostCancels(input));
    EXPECT_EQ(reportOf("v"), report(input));
}

TEST_F(LookupCancel, IsHonouredWhereTheTemplateIsMissing) {
    InputParams input;
    input.variants().addString("v", "v");
    EXPECT_EQ(0, lostCancels(input));
    EXPECT_FALSE(exists(folder.dataFile("templates")));
    EXPECT_EQ(failure(RGEN_E_TEMPLATE_NOT_FOUND), report(input));
    EXPECT_TRUE(exists(folder.dataFile("templates")));
}

TEST_F(LookupCancel, IsHonouredWhereNothingIsPut) {
    putTemplate(textStylesheet(""));
    InputParams input;
    EXPECT_EQ(0, lostCancels(input));
    EXPECT_EQ(failure(RGEN_E_EMPTY_INPUT), report(input));
}

}  // namespace
}  // namespace rgen_test
