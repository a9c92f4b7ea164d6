// Failures that hosts meet in ordinary use, with or without a status in rgen.h: each is an
// error of the right kind, and the generator goes on.
//
// SPDX-License-Identifier: MIT
#include "host_library/ordinary_failures_fixture.h"

namespace rgen_test {
namespace {

TEST_F(OrdinaryFailures, OfTextsThatAreNotUtf8AreErrorsOfEncoding) {
    const std::string bad = folder.file(badText);
    const char* const path = bad.c_str();
    expectFailures({
        {"data directory", [&] { return rgenh_setDataDirPath(host, path, &error); },
         RGENH_ERROR_ENCODING},
        {"output path", [&] { return generateInto("html", bad); }, RGENH_ERROR_ENCODING},
        {"output path of a pdf", [&] { return generateInto("pdf", bad); }, RGENH_ERROR_ENCODING},
        {"format", [&] { return generateInto(badText, output); }, RGENH_ERROR_ENCODING},
        {"converter base",
         [&] {
             input.converterBaseArg(badText);
             return generateInto("pdf", output);
         },
         RGENH_ERROR_ENCODING},
        {"dump", [&] { return rgenh_dumpRawInputDataToFile(host, input.get(), path, &error); },
         RGENH_ERROR_ENCODING},
        {"simulated input",
         [&] {
             RgenCVariantSet set = {};
             return rgenh_getSimulatedRawDataFromFile(host, path, &set, &error);
         },
         RGENH_ERROR_ENCODING},
    });
}

TEST_F(OrdinaryFailures, OfEncodingNameTheArgumentAndTheText) {
    ASSERT_GT(0, generateInto("html", folder.file(badText)));
    EXPECT_EQ("3 2", kindAndArgument());
    EXPECT_STREQ("the output path is not valid UTF-8", error.message);
    EXPECT_EQ(folder.file("a\xEF\xBF\xBD"), error.path);
    ASSERT_GT(0, rgenh_setDataDirPath(host, "\xFF", &error));
    EXPECT_EQ("3 2", kindAndArgument());
}

TEST_F(OrdinaryFailures, WithoutADataDirectoryAreErrorsOfTheFileSystem) {
    RgenReportGenerator* fresh = rgenh_newReportGenerator(&error);
    RgenCAnsiStringPairSet pairs = {};
    Result result;
    PairSet none;
    VariantSet values;
    expectFailures({
        {"report", [&] { return rgenh_generateReport(fresh, input.get(), result.get(), &error); },
         RGENH_ERROR_FILE_SYSTEM},
        {"get", [&] { return rgenh_getPersistentData(fresh, &guid, &pairs, &error); },
         RGENH_ERROR_FILE_SYSTEM},
        {"get texts", [&] { return rgenh_getPersistentTexts(fresh, &guid, &pairs, &error); },
         RGENH_ERROR_FILE_SYSTEM},
        {"set pairs",
         [&] {
             return rgenh_setPersistentDataFromAnsiStringPairSet(fresh, &guid, none.get(), &error);
         },
         RGENH_ERROR_FILE_SYSTEM},
        {"set values",
         [&] { return rgenh_setPersistentDataFromCVariantSet(fresh, &guid, values.get(), &error); },
         RGENH_ERROR_FILE_SYSTEM},
        {"set bulk", [&] { return rgenh_setPersistentValues(fresh, &guid, nullptr, 0, &error); },
         RGENH_ERROR_FILE_SYSTEM},
    });
    ASSERT_GT(0, rgenh_generateReport(fresh, input.get(), result.get(), &error));
    EXPECT_EQ(0U, std::string(error.message).find("the data directory is not set: "));
    rgenh_freeReportGenerator(fresh, nullptr);
}

TEST_F(OrdinaryFailures, OfFoldersAndFilesAtTheWrongPlace) {
    const std::string parent = folder.file("parent");
    createFolder(parent);
    writeFile(parent + nativePath("/.rgen"), "a file");
    const std::string gone = folder.file("gone");
    createFolder(gone);
    expectFailures({
        {"missing data directory",
         [&] { return rgenh_setDataDirPath(host, folder.file("none").c_str(), &error); },
         RGENH_ERROR_STATUS},
        {"the output is a folder", [&] { return generateInto("html", folder.path()); },
         RGENH_ERROR_STATUS},
        {"the output's folder is missing",
         [&] { return generateInto("html", folder.file("none/o.html")); }, RGENH_ERROR_STATUS},
        {"the template is a folder",
         [&] {
             putTemplateName("folder.xsl");
             createFolder(folder.dataFile("templates/html/folder.xsl"));
             return generate();
         },
         RGENH_ERROR_STATUS},
        {"the template is missing",
         [&] {
             putTemplateName("none.xsl");
             return generate();
         },
         RGENH_ERROR_STATUS},
        {"config.xml is empty",
         [&] {
             replaceFile(folder.dataFile("config.xml"), "");
             return generate();
         },
         RGENH_ERROR_STATUS},
        {"the data directory's parent has vanished",
         [&] {
             RgenReportGenerator* other = rgenh_newReportGenerator(&error);
             EXPECT_EQ(RGEN_OK, rgenh_setDataDirPath(other, gone.c_str(), &error));
             removeAll(gone);
             Result result;
             const RgenStatus status =
                 rgenh_generateReport(other, input.get(), result.get(), &error);
             rgenh_freeReportGenerator(other, nullptr);
             return status;
         },
         RGENH_ERROR_FILE_SYSTEM},
        {"no persistent data",
         [&] {
             RgenCAnsiStringPairSet pairs = {};
             return rgenh_getPersistentData(host, &guid, &pairs, &error);
         },
         RGENH_ERROR_STATUS},
        {"the converter is missing",
         [&] {
             const ScopedEnvironmentText noPrograms("PATH", folder.file("none"));
             return generateInto("pdf", output);
         },
         RGENH_ERROR_STATUS},
    });
    EXPECT_GT(0, generateIn(parent));
    restore();
}

// Windows limits paths differently; there such names are not found.
TEST_F(OrdinaryFailures, OfNamesThatAreTooLong) {
    const std::string longName = folder.file(tooLong(400));
    const std::string longPath = folder.file(tooLong(200) + "/" + tooLong(5000));
    RgenCVariantSet set = {};
    const std::vector<FailureCase> cases = {
        {"data directory",
         [&] { return rgenh_setDataDirPath(host, longPath.c_str(), &error); },
         {}},
        {"output path", [&] { return generateInto("html", longName); }, {}},
        {"output path of a pdf", [&] { return generateInto("pdf", longName); }, {}},
        {"format", [&] { return generateInto(tooLong(400), output); }, {}},
        {"template name",
         [&] {
             putTemplateName(tooLong(300) + ".xsl");
             return generate();
         },
         {}},
        {"dump",
         [&] { return rgenh_dumpRawInputDataToFile(host, input.get(), longPath.c_str(), &error); },
         {}},
    };
    for (const FailureCase& each : cases) {
        SCOPED_TRACE(each.label);
        EXPECT_GT(0, each.call());
        EXPECT_TRUE(error.kind == RGENH_ERROR_FILE_SYSTEM || error.kind == RGENH_ERROR_STATUS);
        EXPECT_STRNE("", error.message);
        restore();
    }
    putTemplateName("test_stylesheet.xsl", tooLong(300) + ".xml");
    PairSet none;
    EXPECT_GT(0, rgenh_setPersistentDataFromAnsiStringPairSet(host, &guid, none.get(), &error));
    EXPECT_GE(0, rgenh_getSimulatedRawDataFromFile(host, longPath.c_str(), &set, &error));
    restore();
}

TEST_F(OrdinaryFailures, GoOnWithManyInARow) {
    for (int round = 0; round < 200; ++round)
        ASSERT_EQ(RGEN_E_UNKNOWN, rgenh_setDataDirPath(host, badText.c_str(), &error));
    EXPECT_EQ(0, std::uncaught_exceptions());
    restore();
}

}  // namespace
}  // namespace rgen_test
