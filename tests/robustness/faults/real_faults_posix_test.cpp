// Faults of the system itself: a full file system, folders without rights, no descriptors left, a
// limit on file sizes. Each case runs in a child, which can drop rights without spoiling the
// others.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/filesystem/exception.hpp>
#include <cstdio>
#include <exception>
#include <functional>
#include <string>

#include "robustness/faults/fault_scenario.h"
#include "support/status_printer.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

constexpr const char* longTemplate =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
    "<xsl:output method=\"text\"/><xsl:template match=\"/\">"
    "<xsl:value-of select=\"//property[@name='v']\"/></xsl:template></xsl:stylesheet>";

// Sets a limit of the process for one scope.
class ScopedLimit {
public:
    ScopedLimit(__rlimit_resource kind, rlim_t limit) : kind_(kind) {
        getrlimit(kind_, &previous_);
        const rlimit wanted = {limit, previous_.rlim_max};
        setrlimit(kind_, &wanted);
    }
    ~ScopedLimit() { setrlimit(kind_, &previous_); }
    ScopedLimit(const ScopedLimit&) = delete;
    ScopedLimit& operator=(const ScopedLimit&) = delete;

private:
    __rlimit_resource kind_;
    rlimit previous_ = {};
};

class RealFaults : public testing::Test {
protected:
    RealFaults() {
        for (const char* format : {"html", "pdf"})
            files.putTemplate(longTemplate, format);
        files.putPersistentData();
    }

    // Runs a part of the case in a child; its failures fail the case.
    static void inChild(const std::function<void()>& action) {
        std::fflush(stdout);
        const pid_t child = fork();
        if (child == 0) {
            try {
                action();
            } catch (const std::exception& exception) {
                ADD_FAILURE() << "threw " << exception.what();
            }
            std::fflush(stdout);
            _exit(HasFailure() ? 1 : 0);
        }
        int status = 0;
        EXPECT_EQ(child, waitpid(child, &status, 0));
        EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
        EXPECT_EQ(0, WEXITSTATUS(status));
    }

    std::string generate(std::uint64_t mode, const std::string& path,
                         const std::string& format = "html") {
        FaultSubject subject(files);
        subject.input.variants().addString("v", std::string(100000, 'x'));
        subject.input.format(format).output(mode, path);
        std::string status = statusHex(
            rgen_generateReport(subject.generator(), subject.input.get(), &subject.result));
        if (subject.result.type == RGEN_TYPE_HANDLE) takeHandle(subject);
        return status;
    }

    std::string store(const std::string& dataDirectory) {
        FaultSubject subject(files, dataDirectory);
        subject.input.pairs().add("a", std::string(5000, 'x'));
        return statusHex(rgen_setPersistentDataFromAnsiStringPairSet(
            subject.generator(), &subject.guid, &subject.input.get()->pairs));
    }

    std::string load() {
        FaultSubject subject(files);
        return statusHex(
            rgen_getPersistentData(subject.generator(), &subject.guid, &subject.pairs));
    }

    std::string dump(const std::string& path) {
        FaultSubject subject(files);
        subject.input.variants().addString("v", std::string(5000, 'x'));
        return statusHex(
            rgen_dumpRawInputDataToFile(subject.generator(), subject.input.get(), path.c_str()));
    }

    // What a file system without room for one more byte does to every operation that writes.
    void expectNoRoom(const std::string& folder) {
        const std::string path = files.file(folder);
        EXPECT_EQ(statusHex(RGEN_E_CREATE_PERSIST), dump(path + "/dump"));
        EXPECT_EQ(statusHex(RGEN_E_CREATE_CONFIG), store(folder));
        EXPECT_TRUE(namesIn(path + "/.rgen").empty());
        EXPECT_EQ(statusHex(RGEN_E_WRITE_OUTPUT),
                  generate(RGEN_OUTPUT_DELETE_ON_CLOSE, path + "/closing"));
        EXPECT_EQ(statusHex(RGEN_OK), generate(RGEN_OUTPUT_FILE, path + "/report"));
        EXPECT_EQ("", readFile(path + "/report"));
        EXPECT_EQ(statusHex(RGEN_OK), generate(RGEN_OUTPUT_BYTES, ""));
        EXPECT_FALSE(exists(path + "/dump"));
        EXPECT_FALSE(exists(path + "/closing"));
    }

    FaultFolder files;
};

// 64 KiB of memory in the place of a folder, for this process alone.
bool mountSmallDisk(const std::string& path) {
    const bool isOwn = unshare(CLONE_NEWNS) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0;
    return isOwn && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", path.c_str(), "tmpfs", 0, "size=64k") == 0;
}

bool fillDisk(const std::string& path) {
    const int file = open((path + "/filler").c_str(), O_WRONLY | O_CREAT, 0600);
    const std::string page(4096, 'f');
    while (write(file, page.data(), page.size()) > 0) {
    }
    return close(file) == 0;
}

// The superuser without any of its privileges.
bool giveUpPrivileges() {
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {};
    return syscall(SYS_capset, &header, none) == 0;
}

// From now on the process may do what an ordinary user may. Where nobody may come to the folder,
// the superuser stays, without its privileges.
bool giveUpRights(const FaultFolder& files) {
    constexpr uid_t nobody = 65534;
    if (geteuid() != 0) return true;
    const std::string& folder = files.folder().path();
    if (setegid(nobody) != 0 || seteuid(nobody) != 0) return giveUpPrivileges();
    if (faccessat(AT_FDCWD, folder.c_str(), R_OK | X_OK, AT_EACCESS) == 0)
        return setresgid(nobody, nobody, nobody) == 0 && setresuid(nobody, nobody, nobody) == 0;
    return seteuid(0) == 0 && setegid(0) == 0 && giveUpPrivileges();
}

TEST_F(RealFaults, AFullDisk) {
    createFolder(files.file("disk"));
    inChild([&] {
        if (!mountSmallDisk(files.file("disk"))) {
            std::puts(
                "[   note   ] This container lets nobody mount a small disk; the limit on file "
                "sizes and the "
                "failing file operations stand in for it.");
            return;
        }
        EXPECT_TRUE(fillDisk(files.file("disk")));
        expectNoRoom("disk");
    });
}

TEST_F(RealFaults, ALimitOnFileSizes) {
    createFolder(files.file("disk"));
    inChild([&] {
        signal(SIGXFSZ, SIG_IGN);
        {
            const ScopedLimit limit(RLIMIT_FSIZE, 0);
            expectNoRoom("disk");
        }
        EXPECT_EQ(statusHex(RGEN_OK), store("disk"));
    });
}

TEST_F(RealFaults, StoredDataThatDoNotFitAreGone) {
    inChild([&] {
        signal(SIGXFSZ, SIG_IGN);
        {
            const ScopedLimit limit(RLIMIT_FSIZE, 1000);
            EXPECT_EQ(statusHex(RGEN_E_CREATE_PERSIST), store("main"));
        }
        EXPECT_FALSE(exists(files.file("main/.rgen/persist_data.xml")));
        EXPECT_EQ(statusHex(RGEN_OK), store("main"));
    });
}

TEST_F(RealFaults, NoDescriptorIsLeft) {
    inChild([&] {
        FaultSubject subject(files);
        subject.input.variants().addString("v", "value");
        subject.input.format("html").output(RGEN_OUTPUT_BYTES);
        const RgenCInputParams* input = subject.input.get();
        const std::string path = files.file("dump");
        RgenStatus reported = 0;
        RgenStatus dumped = 0;
        RgenStatus loaded = 0;
        {
            const ScopedLimit limit(RLIMIT_NOFILE, 3);
            reported = rgen_generateReport(subject.generator(), input, &subject.result);
            dumped = rgen_dumpRawInputDataToFile(subject.generator(), input, path.c_str());
            loaded = rgen_getPersistentData(subject.generator(), &subject.guid, &subject.pairs);
        }
        EXPECT_EQ(statusHex(RGEN_E_OPEN_CONFIG), statusHex(reported));
        EXPECT_EQ(statusHex(RGEN_E_CREATE_PERSIST), statusHex(dumped));
        EXPECT_EQ(statusHex(RGEN_E_OPEN_CONFIG), statusHex(loaded));
        EXPECT_TRUE(subject.works());
    });
}

TEST_F(RealFaults, FoldersThatMayNotBeWritten) {
    writeFile(files.file("out/old"), "old");
    removeAll(files.file("main/.rgen/persist_data.xml"));
    files.putPersistentData();
    createFolder(files.file("empty/.rgen"));
    for (const char* folder : {"out", "main/.rgen", "empty/.rgen", "empty", "plain"})
        EXPECT_EQ(0, chmod(files.file(folder).c_str(), 0555));
    inChild([&] {
        ASSERT_TRUE(giveUpRights(files));
        EXPECT_EQ(statusHex(RGEN_E_CREATE_CONFIG), store("empty"));
        EXPECT_EQ(statusHex(RGEN_E_DELETE_PERSIST), store("main"));
        EXPECT_EQ(statusHex(RGEN_E_DELETE_DUMP), dump(files.file("out/old")));
        EXPECT_EQ(statusHex(RGEN_E_CREATE_PERSIST), dump(files.file("out/new")));
        for (const std::string format : {"html", "pdf"}) {
            EXPECT_EQ(statusHex(RGEN_E_OVERWRITE_OUTPUT),
                      generate(RGEN_OUTPUT_FILE, files.file("out/old"), format));
            EXPECT_EQ(statusHex(RGEN_E_CREATE_OUTPUT),
                      generate(RGEN_OUTPUT_FILE, files.file("out/new"), format));
        }
        EXPECT_EQ(statusHex(RGEN_E_CREATE_OUTPUT),
                  generate(RGEN_OUTPUT_DELETE_ON_CLOSE, files.file("out/new")));
        EXPECT_EQ("old", readFile(files.file("out/old")));
        EXPECT_EQ(std::vector<std::string>{"old"}, namesIn(files.file("out")));
    });
}

TEST_F(RealFaults, ADataDirectoryThatMayNotBeMadeRaises) {
    createFolder(files.file("empty"));
    EXPECT_EQ(0, chmod(files.file("empty").c_str(), 0555));
    inChild([&] {
        ASSERT_TRUE(giveUpRights(files));
        EXPECT_THROW(store("empty"), boost::filesystem::filesystem_error);
        EXPECT_EQ(statusHex(RGEN_OK), generate(RGEN_OUTPUT_BYTES, ""));
    });
}

TEST_F(RealFaults, FilesThatMayNotBeRead) {
    const std::string config = files.file("main/.rgen/config.xml");
    const std::string stored = files.file("main/.rgen/persist_data.xml");
    const std::string stylesheet = files.file("main/.rgen/templates/html/test_stylesheet.xsl");
    EXPECT_EQ(0, chmod(stylesheet.c_str(), 0));
    inChild([&] {
        ASSERT_TRUE(giveUpRights(files));
        EXPECT_EQ(statusHex(RGEN_E_XSLT_PARSE), generate(RGEN_OUTPUT_BYTES, ""));
    });
    EXPECT_EQ(0, chmod(stored.c_str(), 0));
    inChild([&] {
        ASSERT_TRUE(giveUpRights(files));
        EXPECT_EQ(statusHex(RGEN_E_OPEN_PERSIST), load());
    });
    EXPECT_EQ(0, chmod(config.c_str(), 0));
    inChild([&] {
        ASSERT_TRUE(giveUpRights(files));
        EXPECT_EQ(statusHex(RGEN_E_OPEN_CONFIG), load());
    });
}

}  // namespace
}  // namespace rgen_test
