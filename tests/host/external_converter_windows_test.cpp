// How the converter is started on Windows.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/conversion_fixture.h"

namespace rgen_test {
namespace {

class ConverterProcess : public ConversionTest {
protected:
    std::vector<std::string> logged(const std::string& word) {
        return loggedFacts(folder.file("log"), word);
    }

    void generateLogged() {
        converter.obey({{"log", folder.file("log")}});
        EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    }

    static std::string quoted(const std::string& text) { return '"' + text + '"'; }
};

TEST_F(ConverterProcess, GetsTheCommandLineLetterForLetter) {
    const std::vector<std::string> bases = {"",
                                            "http://host/a b?c=d&e=%PATH%",
                                            "C:\\folder\\",
                                            "\xD0\xB6 \xE6\xBC\xA2 \xF0\x9F\x93\x84",
                                            "  ",
                                            "a\"b"};
    for (const std::string& base : bases) {
        SCOPED_TRACE(base);
        input.converterBaseArg(base);
        generateLogged();
        EXPECT_EQ(std::vector<std::string>{"vellum -i " + quoted(html) + " -b " + quoted(base) +
                                           " -t html -o " + quoted(output)},
                  logged("command-line"));
    }
}

TEST_F(ConverterProcess, GetsThePathsAsTheHostWroteThem) {
    std::string path = folder.file("a b.pdf");
    for (char& character : path) {
        if (character == '\\') character = '/';
    }
    input.output(RGEN_OUTPUT_FILE, path);
    generateLogged();
    EXPECT_EQ(std::vector<std::string>{"vellum -i " + quoted(path + ".html") +
                                       " -b \"\" -t html -o " + quoted(path)},
              logged("command-line"));
}

TEST_F(ConverterProcess, IsStartedWithAHiddenWindow) {
    generateLogged();
    EXPECT_EQ(std::vector<std::string>{std::to_string(SW_HIDE)}, logged("show-window"));
}

// An inherited handle would keep the file from being deleted while the converter runs.
TEST_F(ConverterProcess, InheritsNoHandle) {
    SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
    const std::wstring path = std::filesystem::u8path(folder.file("held")).wstring();
    const HANDLE handle = CreateFileW(path.c_str(), GENERIC_WRITE, 0, &inheritable, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, handle);
    converter.obey(waiting({}));
    RunningGeneration conversion(generator, input);
    const bool started = waitForStarted();
    CloseHandle(handle);
    EXPECT_TRUE(started);
    EXPECT_NE(0, DeleteFileW(path.c_str()));
    release();
    EXPECT_EQ(statusHex(RGEN_OK), conversion.status());
}

TEST_F(ConverterProcess, AProgramFileThatIsNoProgramCannotBeRun) {
    writeFile(folder.file("programs/vellum.exe"), "no program");
    const ScopedEnvironmentText path("PATH", folder.file("programs"));
    EXPECT_EQ(statusHex(RGEN_E_RUN_EXTERNAL), generate(input));
    EXPECT_FALSE(exists(output));
    EXPECT_FALSE(exists(html));
}

}  // namespace
}  // namespace rgen_test
