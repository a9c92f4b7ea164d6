// The host of the soak: its folders, the sequence, and the steps that succeed.
//
// SPDX-License-Identifier: MIT
#include "robustness/soak/soak_host.h"

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <sstream>

#include "support/test_platform.h"

namespace rgen_test {
namespace {

// An attribute that only a CDATA section makes.
const std::string cdataAttribute =
    "<xsl:variable name=\"c\"><e><xsl:attribute name=\"a\"><![CDATA[x]]></xsl:attribute></e>"
    "</xsl:variable>";
const std::string marker = "QT_TRANSLATE_NOOP(\"QObject\", \"end\")";

std::string typeElement(const char* guid, const std::string& store, const std::string& sheet) {
    return std::string("<type guid=\"") + guid + "\"><persistDataFile>" + store +
           "</persistDataFile><reportTypeFile>" + sheet + "</reportTypeFile></type>\n";
}

std::string addressText(std::uint64_t number) {
    std::ostringstream text;
    text << "0x" << std::hex << number;
    return text.str();
}

// Texts that stay where they are: a callback's context must.
char* somePrefix(unsigned number) {
    static char prefixes[][8] = {"", "one ", "two ", "three "};
    return prefixes[number % 4];
}

}  // namespace

const char* const goodType = "11111111-0000-0000-0000-000000000001";
const char* const brokenType = "11111111-0000-0000-0000-000000000002";
const char* const failingType = "11111111-0000-0000-0000-000000000003";
const char* const silentType = "11111111-0000-0000-0000-000000000004";
const char* const templatelessType = "11111111-0000-0000-0000-000000000005";
const char* const storelessType = "11111111-0000-0000-0000-000000000006";
const char* const blockedStoreType = "11111111-0000-0000-0000-000000000007";
const char* const unknownType = "11111111-0000-0000-0000-000000000008";

SoakPlace::SoakPlace(const std::string& placeName) : name(placeName) {
    writeFile(folder.dataFile("config.xml"),
              "<config><reportTypes>" + typeElement(goodType, "good_data.xml", "good.xsl") +
                  typeElement(brokenType, "no_data.xml", "broken.xsl") +
                  typeElement(failingType, "no_data.xml", "failing.xsl") +
                  typeElement(silentType, "no_data.xml", "silent.xsl") +
                  typeElement(templatelessType, "no_data.xml", "nowhere.xsl") +
                  typeElement(storelessType, "no_data.xml", "good.xsl") +
                  typeElement(blockedStoreType, "templates", "good.xsl") +
                  "</reportTypes></config>");
    for (const std::string format : {"html", "txt", "pdf", "doc"}) {
        writeFile(folder.dataFile("templates/" + format + "/good.xsl"),
                  textStylesheet(cdataAttribute + name + "." + format + ":" + valueOf("v") + "/" +
                                 valueOf("p") + "/" + valueOf("n") + "/" + marker));
    }
    writeFile(folder.dataFile("templates/html/broken.xsl"), "<xsl:stylesheet><unfinished");
    writeFile(folder.dataFile("templates/html/failing.xsl"),
              textStylesheet("before<xsl:message terminate=\"yes\">stop</xsl:message>"));
    writeFile(folder.dataFile("templates/html/silent.xsl"), textStylesheet(""));
}

SoakHost::SoakHost(unsigned seed)
    : random_(seed),
      converter_(outputs_),
      prefix_(somePrefix(0)),
      generator_(first_.folder.path()) {
    createFolder(outputs_.file("folder"));
    createFolder(outputs_.file("blocked.pdf.html"));
    createFolder(outputs_.file("no programs"));
    createFolder(outputs_.file("waiting"));
    createFolder(outputs_.file("fresh"));
    rgen_setTranslateFunction(generator_.get(), translateWithPrefix, prefix_);
    for (SoakPlace* at : places_) {
        const Generator setting(at->folder.path());
        const RgenGuid guid = guidFromText(goodType);
        EXPECT_EQ(RGEN_OK, storePairs(setting, guid, {{"p", "first"}}));
        at->stored = "first";
    }
}

const std::vector<SoakHost::Step>& SoakHost::steps() {
    static const std::vector<Step> all = {
        {"report as bytes", 520, &SoakHost::reportAsBytes},
        {"report as file", 80, &SoakHost::reportAsFile},
        {"report as handle", 70, &SoakHost::reportAsHandle},
        {"pdf without conversion", 20, &SoakHost::reportWithoutConversion},
        {"large report", 2, &SoakHost::largeReport},
        {"converted pdf", 2, &SoakHost::convertedReport},
        {"missing converter", 2, &SoakHost::missingConverter},
        {"failing report", 110, &SoakHost::failingReport},
        {"failing operation", 30, &SoakHost::failingOperation},
        {"raising operation", 10, &SoakHost::raisingOperation},
        {"late cancel", 8, &SoakHost::lateCancel},
        {"cancel storm", 4, &SoakHost::cancelStorm},
        {"pairs stored and read", 25, &SoakHost::storePairsAndRead},
        {"values stored and read", 15, &SoakHost::storeValuesAndRead},
        {"dump", 15, &SoakHost::dump},
        {"simulation", 15, &SoakHost::simulate},
        {"data directory changed", 40, &SoakHost::changePlace},
        {"translation changed", 30, &SoakHost::changeTranslation},
        {"generator made and freed", 20, &SoakHost::generatorThatGoes},
        {"thread begun and ended", 5, &SoakHost::threadThatGoes},
        {"fresh data directory", 3, &SoakHost::freshDataDirectory},
        {"records", 30, &SoakHost::records},
        {"status texts", 10, &SoakHost::statusTexts}};
    return all;
}

void SoakHost::step() {
    static const unsigned sum =
        std::accumulate(steps().begin(), steps().end(), 0U,
                        [](unsigned soFar, const Step& each) { return soFar + each.weight; });
    unsigned choice = upTo(sum);
    for (const Step& each : steps()) {
        if (choice < each.weight) {
            SCOPED_TRACE(each.name);
            ++counts_[each.name];
            (this->*each.take)();
            return;
        }
        choice -= each.weight;
    }
}

void SoakHost::makeReports(long count) {
    const long end = reports_ + count;
    while (reports_ < end && !testing::Test::HasFailure())
        step();
}

void SoakHost::removeReports() {
    for (const std::string number : {"0", "1", "2", "3"}) {
        for (const std::string ending : {".html", ".txt"})
            removeAll(outputs_.file("report" + number + ending));
    }
    removeAll(outputs_.file("dump.xml"));
}

std::vector<std::string> SoakHost::files() const {
    std::vector<std::string> names;
    for (const TempFolder* folder : {&outputs_, &first_.folder, &second_.folder}) {
        const auto top = std::filesystem::u8path(folder->path());
        for (const auto& entry : std::filesystem::recursive_directory_iterator(top))
            names.push_back(entry.path().lexically_relative(top).generic_u8string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string SoakHost::someText(std::size_t longest) {
    std::string text(1 + upTo(static_cast<unsigned>(longest)), ' ');
    for (char& character : text)
        character = static_cast<char>('a' + upTo(26));
    return text;
}

std::string SoakHost::expectedBytes(const std::string& format, const std::string& value,
                                    std::uint64_t number) {
    return place().name + "." + format + ":" + value + "/" + place().stored + "/" +
           addressText(number) + "/" + prefix_ + "end";
}

void SoakHost::fill(Request& request) {
    static const char* const formats[] = {"html", "txt", "pdf"};
    const std::string value = someText(60);
    const std::uint64_t number = random_();
    request.format = formats[upTo(3)];
    request.expected = expectedBytes(request.format, value, number);
    request.input.guid(guidFromText(goodType)).format(request.format);
    request.input.variants()
        .addString("v", value)
        .addInt64("n", static_cast<std::int64_t>(number), RGEN_HINT_ADDRESS)
        .addInt64("t", upTo(2000000000), RGEN_HINT_DATE_TIME)
        .addBytes("b", {1, 2, 3});
    request.input.pairs().add("v", "hidden").add("q", someText(20));
}

RgenStatus SoakHost::generateOn(const Generator& used, InputParams& input, Result& result) {
    ++reports_;
    const RgenStatus status = rgen_generateReport(used.get(), input.get(), result.get());
    ++counts_["status " + statusHex(status)];
    return status;
}

void SoakHost::expectStatus(RgenStatus expected, RgenStatus actual, const std::string& what) {
    EXPECT_EQ(statusHex(expected), statusHex(actual)) << what;
}

void SoakHost::expectBytes(Request& request, const Generator& used) {
    Result result;
    expectStatus(RGEN_OK, generateOn(used, request.input, result), request.format);
    EXPECT_EQ(request.expected, result.bytes());
}

std::string SoakHost::outputFile(const std::string& ending) {
    return outputs_.file("report" + std::to_string(upTo(4)) + "." + ending);
}

void SoakHost::reportAsBytes() {
    Request request;
    fill(request);
    expectBytes(request, generator_);
}

void SoakHost::reportAsFile() {
    Request request;
    fill(request);
    if (request.format == "pdf") return;
    const std::string path = outputFile(request.format);
    request.input.output(RGEN_OUTPUT_FILE, path);
    Result result;
    expectStatus(RGEN_OK, generateOn(generator_, request.input, result), path);
    EXPECT_EQ(request.expected, readFile(path));
    // Half of the files stay and are replaced by a later report.
    if (upTo(2) == 0) removeAll(path);
}

void SoakHost::reportAsHandle() {
    Request request;
    fill(request);
    const std::string path = outputs_.file("handle.tmp");
    request.input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, path);
    Result result;
    expectStatus(RGEN_OK, generateOn(generator_, request.input, result), path);
    ASSERT_EQ(std::uint64_t{RGEN_TYPE_HANDLE}, result.record().type);
    EXPECT_TRUE(closesOnBytes(result.record().value.handleValue, request.expected));
    EXPECT_FALSE(exists(path));
}

void SoakHost::reportWithoutConversion() {
    Request request;
    fill(request);
    const std::string path = outputFile("raw");
    request.input.skipExternalConversion(1).output(RGEN_OUTPUT_FILE, path);
    Result result;
    expectStatus(RGEN_OK, generateOn(generator_, request.input, result), path);
    EXPECT_EQ(request.expected, readFile(path));
    removeAll(path);
}

void SoakHost::largeReport() {
    const std::string value(300000 + upTo(300000), 'l');
    InputParams input;
    input.guid(guidFromText(goodType)).variants().addString("v", value).addInt64("n", 0, 6);
    Result result;
    expectStatus(RGEN_OK, generateOn(generator_, input, result), "large");
    EXPECT_TRUE(expectedBytes("html", value, 0) == result.bytes());
}

void SoakHost::convertedReport() {
    Request request;
    fill(request);
    const std::string path = outputFile("pdf");
    const std::string seen = outputs_.file("seen");
    const bool crashes = upTo(4) == 0;
    converter_.obey({{"copy", path + ".html", seen},
                     {"write", path, "converted"},
                     {crashes ? "crash" : "exit", "3"}});
    request.input.format("pdf").output(RGEN_OUTPUT_FILE, path);
    request.expected.replace(2, request.format.size(), "pdf");
    Result result;
    expectStatus(RGEN_OK, generateOn(generator_, request.input, result), path);
    EXPECT_EQ(request.expected, readFile(seen));
    EXPECT_EQ("converted", readFile(path));
    EXPECT_FALSE(exists(path + ".html"));
    removeAll(seen);
    removeAll(path);
}

void SoakHost::storePairsAndRead() {
    const RgenGuid guid = guidFromText(goodType);
    const TextMap pairs = {{"p", someText(200)}, {"other", someText(20)}};
    expectStatus(RGEN_OK, storePairs(generator_, guid, pairs), "pairs");
    place().stored = pairs.at("p");
    const PersistentData data = persistentData(generator_, guid);
    expectStatus(RGEN_OK, data.status, "read back");
    EXPECT_EQ(pairs, data.pairs);
}

void SoakHost::storeValuesAndRead() {
    const RgenGuid guid = guidFromText(goodType);
    const std::string text = someText(200);
    const std::uint64_t number = random_();
    VariantSet values;
    values.addString("p", text).addInt64("a", static_cast<std::int64_t>(number), 6);
    expectStatus(RGEN_OK,
                 rgen_setPersistentDataFromCVariantSet(generator_.get(), &guid, values.get()),
                 "values");
    place().stored = text;
    const PersistentData data = persistentData(generator_, guid);
    expectStatus(RGEN_OK, data.status, "read back");
    EXPECT_EQ((TextMap{{"p", text}, {"a", addressText(number)}}), data.pairs);
}

void SoakHost::dump() {
    const std::string path = outputs_.file("dump.xml");
    const std::string text = someText(100);
    InputParams input;
    input.variants().addString("v", text);
    expectStatus(RGEN_OK, rgen_dumpRawInputDataToFile(generator_.get(), input.get(), path.c_str()),
                 path);
    EXPECT_EQ(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<data>\n  <properties>\n    "
        "<property name=\"v\">" +
            text + "</property>\n  </properties>\n</data>\n",
        readFile(path));
    if (upTo(2) == 0) removeAll(path);
}

void SoakHost::simulate() {
    const std::string path = outputs_.file("simulation.xml");
    const std::string text = someText(100);
    const auto number = static_cast<std::int64_t>(random_());
    writeFile(path, "<data><properties><property name='s' type='string' hint='Generic'>" + text +
                        "</property><property name='n' type='int64' hint='Size'>" +
                        std::to_string(number) +
                        "</property><property name='b' type='byte_array' hint='Dump'>0x01, "
                        "0xAB</property><property name='x'>no type</property></properties></data>");
    const SimulatedData data = simulatedData(generator_, path);
    removeAll(path);
    ASSERT_EQ(1, data.result);
    ASSERT_EQ(3U, data.values.size());
    EXPECT_EQ(text, data.values.at("s").text);
    EXPECT_EQ(number, data.values.at("n").number);
    EXPECT_EQ((std::vector<std::uint8_t>{1, 0xAB}), data.values.at("b").bytes);
}

void SoakHost::changePlace() {
    current_ = 1 - current_;
    expectStatus(RGEN_OK, rgen_setDataDirPath(generator_.get(), place().folder.path().c_str()),
                 "change");
    reportAsBytes();
}

void SoakHost::changeTranslation() {
    prefix_ = somePrefix(upTo(4));
    rgen_setTranslateFunction(generator_.get(), translateWithPrefix, prefix_);
    reportAsBytes();
}

}  // namespace rgen_test
