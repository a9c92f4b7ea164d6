// The data directory path, and what the configuration load makes of the disk.
//
// SPDX-License-Identifier: MIT
#include "store/data_directory.h"

#include <boost/filesystem/exception.hpp>
#include <string>

#include "platform/platform.h"
#include "support/expression_oracles.h"
#include "support/fault_injection.h"
#include "unit/random_text.h"
#include "unit/unit_fixture.h"

namespace rgen_test {
namespace {

// The rule of endsInSeparator: the whole path is anything without a line break, followed by a
// separator of the platform.
void expectSameAsExpression(const std::string& path) {
    // Separators are the platform's before the rule is asked.
    if (rgen::platform::pathSeparator == '\\' && path.find('/') != std::string::npos) return;
    ASSERT_EQ(endsInSeparatorByExpression(path, rgen::platform::pathSeparator),
              rgen::endsInSeparator(path))
        << testing::PrintToString(path);
}

TEST(EndsInSeparator, AgreesWithTheExpressionOnShortTexts) {
    visitSequences({"/", "\\", "\n", "\r", "a", " ", ".", "\xE2\x80\xA8"}, 5,
                   expectSameAsExpression);
}

TEST(EndsInSeparator, AgreesWithTheExpressionOnLongerTexts) {
    visitRandomTexts({"/", "\\", "\n", "\r", "ab", ":", std::string(1, '\0'), "\xFF", "\xC2\x85"},
                     20, 20000, expectSameAsExpression);
}

TEST(EndsInSeparator, LongPathNeedsNoStack) {
    const std::string separator(1, rgen::platform::pathSeparator);
    EXPECT_TRUE(rgen::endsInSeparator(std::string(1000000, 'a') + separator));
    EXPECT_FALSE(rgen::endsInSeparator(std::string(1000000, 'a')));
    EXPECT_FALSE(rgen::endsInSeparator(std::string(1000000, 'a') + "\n" + separator));
}

class DataDirectoryTest : public UnitTest {
protected:
    std::string load(const rgen::Guid& guid = rgen::defaultReportTypeGuid) {
        return statusHex(rgen::loadReportType(generator, guid, entry));
    }

    const std::string configPath = folder.dataFile("config.xml");
    rgen::ReportTypeEntry entry;
};

TEST_F(DataDirectoryTest, PathGetsOneSeparatorAndTheFolderName) {
    const std::string expected = nativePath(folder.path() + "/.rgen/");
    for (const std::string& given :
         {folder.path(), folder.path() + "/", nativePath(folder.path() + "/")}) {
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen::setDataDir(generator, given)));
        EXPECT_EQ(expected, generator.dataDirPath);
        EXPECT_EQ(expected, rgen::dataDirPathOf(generator));
    }
    EXPECT_TRUE(namesIn(folder.path()).empty());
}

TEST_F(DataDirectoryTest, SecondSeparatorAndSecondLevelAreKept) {
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen::setDataDir(generator, folder.path() + "//")));
    EXPECT_EQ(nativePath(folder.path() + "//.rgen/"), generator.dataDirPath);
    createFolder(folder.dataDir());
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen::setDataDir(generator, folder.dataDir())));
    EXPECT_EQ(nativePath(folder.path() + "/.rgen/.rgen/"), generator.dataDirPath);
}

TEST_F(DataDirectoryTest, ConfigurationThatDoesNotParseAtAll) {
    writeFile(configPath, "");
    EXPECT_EQ(statusHex(RGEN_E_OPEN_CONFIG), load());
    removeAll(configPath);
    createFolder(configPath);
    EXPECT_EQ(statusHex(RGEN_E_OPEN_CONFIG), load());
    EXPECT_TRUE(isUnlocked(generator));
}

TEST_F(DataDirectoryTest, DirectoryThatCannotBeMadeIsForgotten) {
    const FailingCall failure(Call::CreateDirectory);
    EXPECT_EQ(statusHex(RGEN_E_CREATE_DIR), load());
    EXPECT_TRUE(failure.reached());
    EXPECT_EQ("", generator.dataDirPath);
    EXPECT_TRUE(namesIn(folder.path()).empty());
    EXPECT_TRUE(isUnlocked(generator));
    EXPECT_THROW(load(), boost::filesystem::filesystem_error);
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen::setDataDir(generator, folder.path())));
    EXPECT_EQ(statusHex(RGEN_OK), load());
}

TEST_F(DataDirectoryTest, ConfigurationThatCannotBeSavedLeavesNoFile) {
    for (const Call call :
         {Call::NewXmlDocument, Call::NewXmlNode, Call::NewOutputBuffer, Call::SaveXmlDocument}) {
        const FailingCall failure(call);
        EXPECT_EQ(statusHex(RGEN_E_CREATE_CONFIG), load());
        EXPECT_TRUE(failure.reached());
        EXPECT_FALSE(exists(configPath));
    }
    EXPECT_EQ(statusHex(RGEN_OK), load());
}

TEST_F(DataDirectoryTest, ElementsForWhichMemoryIsExhausted) {
    {
        const FailingCall failure(Call::NewXmlAttribute);
        EXPECT_EQ(statusHex(RGEN_E_CREATE_CONFIG), load());
        EXPECT_TRUE(failure.reached());
        EXPECT_FALSE(exists(configPath));
    }
    // The children are reportTypes, type, persistDataFile and reportTypeFile.
    for (const int number : {1, 2, 3, 4}) {
        SCOPED_TRACE(number);
        const FailingCall failure(Call::NewXmlChild, number);
        EXPECT_EQ(statusHex(RGEN_E_CREATE_CONFIG), load());
        EXPECT_TRUE(failure.reached());
        EXPECT_FALSE(exists(configPath));
    }
}

TEST_F(DataDirectoryTest, XPathFailuresHaveTheirStatus) {
    putConfig();
    {
        const FailingCall failure(Call::NewXPathContext);
        EXPECT_EQ(statusHex(RGEN_E_XPATH_CONTEXT), load());
    }
    {
        const FailingCall failure(Call::EvaluateXPath);
        EXPECT_EQ(statusHex(RGEN_E_XPATH_SEARCH), load());
    }
    EXPECT_EQ(statusHex(RGEN_OK), load());
}

TEST_F(DataDirectoryTest, MutexIsHeldForTheWholeLoad) {
    putConfig();
    bool unlocked = true;
    const InterceptedCall reading(Call::ReadXmlFile, [&] { unlocked = isUnlocked(generator); });
    EXPECT_EQ(statusHex(RGEN_OK), load());
    EXPECT_TRUE(reading.reached());
    EXPECT_FALSE(unlocked);
    EXPECT_TRUE(isUnlocked(generator));
}

}  // namespace
}  // namespace rgen_test
