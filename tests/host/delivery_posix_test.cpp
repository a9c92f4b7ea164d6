// The delete-on-close descriptor on Linux, and output paths that name something else than a file.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/report_fixture.h"

namespace rgen_test {
namespace {

// Lets no file of this process grow beyond a size; writing more fails like on a full disk.
class ScopedFileSizeLimit {
public:
    explicit ScopedFileSizeLimit(std::size_t size) {
        previousHandler_ = signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &previous_);
        const rlimit limit = {size, previous_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~ScopedFileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &previous_);
        signal(SIGXFSZ, previousHandler_);
    }
    ScopedFileSizeLimit(const ScopedFileSizeLimit&) = delete;
    ScopedFileSizeLimit& operator=(const ScopedFileSizeLimit&) = delete;

private:
    rlimit previous_ = {};
    void (*previousHandler_)(int) = SIG_DFL;
};

std::vector<int> openDescriptors() {
    std::vector<int> descriptors;
    for (int descriptor = 0; descriptor < 256; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) != -1) descriptors.push_back(descriptor);
    }
    return descriptors;
}

int descriptorOf(const Result& result) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(result.record().value.handleValue));
}

class DeleteOnCloseMode : public DeleteOnCloseTest {
protected:
    // The descriptor of a successful generation; the caller closes it.
    int generateDescriptor() {
        return static_cast<int>(reinterpret_cast<std::intptr_t>(generateHandle()));
    }

    static std::string contentOf(int descriptor) {
        struct stat status = {};
        EXPECT_EQ(0, fstat(descriptor, &status));
        std::string content(static_cast<std::size_t>(status.st_size), '\0');
        EXPECT_EQ(status.st_size, pread(descriptor, &content[0], content.size(), 0));
        return content;
    }

    static unsigned rightsOf(int descriptor) {
        struct stat status = {};
        EXPECT_EQ(0, fstat(descriptor, &status));
        return status.st_mode & 0777U;
    }
};

class FullDisk : public ReportTest {
protected:
    FullDisk() {
        putTemplate(textStylesheet(valueOf("v")));
        input.variants().addString("v", std::string(2 * halfSize, 'x'));
    }

    static constexpr std::size_t halfSize = 1000000;
    InputParams input;
};

class SpecialFile : public ReportTest {
protected:
    SpecialFile() {
        for (const char* format : {"html", "pdf"})
            putTemplate(textStylesheet("done"), format);
        input.variants().addString("v", "value");
    }

    void expectRefused(const std::string& path, std::filesystem::file_type type) {
        for (const std::string format : {"html", "pdf"}) {
            SCOPED_TRACE(path + " as " + format);
            input.format(format).output(RGEN_OUTPUT_FILE, path);
            EXPECT_EQ(statusHex(RGEN_E_OVERWRITE_OUTPUT), generate(input));
            EXPECT_EQ(type, std::filesystem::symlink_status(path).type());
            EXPECT_FALSE(exists(path + ".html"));
        }
    }

    InputParams input;
};

TEST_F(DeleteOnCloseMode, GivesADescriptorForReadingAndWritingThatChildrenDoNotInherit) {
    input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, folder.file("report.html"));
    const int descriptor = generateDescriptor();
    ASSERT_GE(descriptor, 3);
    EXPECT_EQ(O_RDWR, fcntl(descriptor, F_GETFL) & O_ACCMODE);
    EXPECT_EQ(FD_CLOEXEC, fcntl(descriptor, F_GETFD) & FD_CLOEXEC);
    EXPECT_EQ("value", contentOf(descriptor));
    EXPECT_EQ(0, close(descriptor));
}

TEST_F(DeleteOnCloseMode, RemovesTheNameAtOnceAndKeepsTheFileToTheUser) {
    const std::string path = folder.file("report.html");
    input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, path);
    const int descriptor = generateDescriptor();
    EXPECT_FALSE(exists(path));
    struct stat status = {};
    ASSERT_EQ(0, fstat(descriptor, &status));
    EXPECT_EQ(0U, status.st_nlink);
    EXPECT_TRUE(S_ISREG(status.st_mode));
    EXPECT_EQ(0600U, status.st_mode & 0777U);
    EXPECT_EQ(0, close(descriptor));
}

TEST_F(DeleteOnCloseMode, StaysUsableWhenTheRecordIsFreed) {
    input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, folder.file("report.html"));
    const int descriptor = generateDescriptor();
    EXPECT_EQ(1, pwrite(descriptor, "V", 1, 0));
    EXPECT_EQ("Value", contentOf(descriptor));
    EXPECT_EQ(0, close(descriptor));
}

TEST_F(DeleteOnCloseMode, KeepsAnOverwrittenFileToTheUserToo) {
    const std::string path = folder.file("report.html");
    writeFile(path, "old");
    ASSERT_EQ(0, chmod(path.c_str(), 0644));
    input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, path);
    const int descriptor = generateDescriptor();
    EXPECT_EQ(0600U, rightsOf(descriptor));
    EXPECT_EQ(0, close(descriptor));
}

TEST_F(DeleteOnCloseMode, LeavesTheOtherNameOfAFileItsRights) {
    const std::string path = folder.file("report.html");
    const std::string other = folder.file("other.html");
    writeFile(other, "old");
    ASSERT_EQ(0, chmod(other.c_str(), 0644));
    ASSERT_EQ(0, link(other.c_str(), path.c_str()));
    input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, path);
    const int descriptor = generateDescriptor();
    EXPECT_FALSE(exists(path));
    EXPECT_EQ("value", readFile(other));
    EXPECT_EQ(0644U, rightsOf(descriptor));
    EXPECT_EQ(0, close(descriptor));
}

TEST_F(DeleteOnCloseMode, GivesTwoReportsTwoFiles) {
    input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, folder.file("report.html"));
    const int first = generateDescriptor();
    input.variants().addString("v", "second");
    const int second = generateDescriptor();
    EXPECT_EQ("value", contentOf(first));
    EXPECT_EQ("second", contentOf(second));
    EXPECT_EQ(0, close(first));
    EXPECT_EQ(0, close(second));
}

TEST_F(DeleteOnCloseMode, RefusesAFolderAndAMissingParent) {
    createFolder(folder.file("folder"));
    for (const std::string& path : {folder.file("folder"), folder.file("missing/report"),
                                    std::string(), folder.file(std::string(300, 'n'))}) {
        SCOPED_TRACE(path);
        input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, path);
        EXPECT_EQ(statusHex(RGEN_E_CREATE_OUTPUT), generate(input));
    }
    EXPECT_TRUE(isFolder(folder.file("folder")));
    EXPECT_FALSE(exists(folder.file("missing")));
}

TEST_F(DeleteOnCloseMode, LeavesALinkToADeviceInPlace) {
    const std::string path = folder.file("null");
    std::filesystem::create_symlink("/dev/null", path);
    input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, path);
    Result result;
    rgen_generateReport(generator.get(), input.get(), result.get());
    if (result.record().type == RGEN_TYPE_HANDLE) {
        close(descriptorOf(result));
    }
    EXPECT_EQ(std::filesystem::file_type::symlink, std::filesystem::symlink_status(path).type());
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST_F(DeleteOnCloseMode, LeavesAPipeInPlace) {
    const std::string path = folder.file("pipe");
    ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
    input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, path);
    Result result;
    rgen_generateReport(generator.get(), input.get(), result.get());
    if (result.record().type == RGEN_TYPE_HANDLE) {
        close(descriptorOf(result));
    }
    EXPECT_EQ(std::filesystem::file_type::fifo, std::filesystem::symlink_status(path).type());
}

TEST_F(DeleteOnCloseMode, RaisesForAPathThatIsNotUtf8) {
    for (const std::string bad : {"\xFF", "\xE2\x82", "\xED\xA0\x80"}) {
        input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, folder.file(bad));
        EXPECT_THROW(generate(input), std::range_error);
    }
    EXPECT_EQ(std::vector<std::string>{".rgen"}, namesIn(folder.path()));
}

TEST_F(FullDisk, GoesUnnoticedInTheFileMode) {
    input.output(RGEN_OUTPUT_FILE, folder.file("report.html"));
    {
        const ScopedFileSizeLimit limit(halfSize);
        EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    }
    EXPECT_EQ(std::string(halfSize, 'x'), readFile(folder.file("report.html")));
}

TEST_F(FullDisk, IsReportedInTheDeleteOnCloseModeAndLeavesNothing) {
    const std::vector<int> before = openDescriptors();
    input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, folder.file("report.html"));
    {
        const ScopedFileSizeLimit limit(0);
        EXPECT_EQ(statusHex(RGEN_E_WRITE_OUTPUT), generate(input));
    }
    {
        const ScopedFileSizeLimit limit(halfSize);
        EXPECT_EQ(statusHex(RGEN_E_WRITE_ALL_OUTPUT), generate(input));
    }
    EXPECT_EQ(before, openDescriptors());
    EXPECT_EQ(std::vector<std::string>{".rgen"}, namesIn(folder.path()));
}

TEST_F(FullDisk, IsNoProblemInTheBytesMode) {
    const ScopedFileSizeLimit limit(0);
    EXPECT_EQ(reportOf(std::string(2 * halfSize, 'x')), report(input));
}

TEST_F(SpecialFile, NoDescriptorStaysOpenWhateverTheStatus) {
    const std::vector<int> before = openDescriptors();
    createFolder(folder.file("folder"));
    for (const std::string name : {"report", "folder", "missing/report", ""}) {
        for (std::uint64_t mode = 0; mode < 4; ++mode) {
            for (const std::string format : {"html", "pdf", "odd"}) {
                input.format(format).output(mode, name.empty() ? name : folder.file(name));
                Result result;
                rgen_generateReport(generator.get(), input.get(), result.get());
                if (result.record().type == RGEN_TYPE_HANDLE) close(descriptorOf(result));
                EXPECT_EQ(before, openDescriptors()) << name << mode << format;
            }
        }
    }
}

TEST_F(SpecialFile, ANameTheFileSystemRefusesRaises) {
    for (const std::string format : {"html", "pdf"}) {
        input.format(format).output(RGEN_OUTPUT_FILE, folder.file(std::string(300, 'n')));
        EXPECT_THROW(generate(input), std::runtime_error);
    }
    EXPECT_EQ(std::vector<std::string>{".rgen"}, namesIn(folder.path()));
}

TEST_F(SpecialFile, APipeIsNotRemoved) {
    const std::string path = folder.file("pipe");
    ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
    expectRefused(path, std::filesystem::file_type::fifo);
}

TEST_F(SpecialFile, ASocketIsNotRemoved) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const std::string path = folder.file("socket");
    ASSERT_LT(path.size(), sizeof address.sun_path);
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(0, bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address));
    expectRefused(path, std::filesystem::file_type::socket);
    close(descriptor);
}

TEST_F(SpecialFile, ALinkToADeviceIsNotRemoved) {
    const std::string path = folder.file("null");
    std::filesystem::create_symlink("/dev/null", path);
    expectRefused(path, std::filesystem::file_type::symlink);
}

TEST_F(SpecialFile, ALinkToAFileIsReplacedAndItsTargetStays) {
    const std::string path = folder.file("report.html");
    writeFile(folder.file("target"), "target");
    std::filesystem::create_symlink(folder.file("target"), path);
    input.output(RGEN_OUTPUT_FILE, path);
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ("done", readFile(path));
    EXPECT_EQ("target", readFile(folder.file("target")));
}

TEST_F(SpecialFile, ABackslashIsAnOrdinaryLetterOfAName) {
    input.output(RGEN_OUTPUT_FILE, folder.file("a\\b.html"));
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ("done", readFile(folder.file("a\\b.html")));
}

}  // namespace
}  // namespace rgen_test
