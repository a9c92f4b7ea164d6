// The soak's steps with threads and cancellation, and those that make and free what others keep.
//
// SPDX-License-Identifier: MIT
#include <chrono>
#include <thread>

#include "robustness/soak/soak_host.h"
#include "support/process_figures.h"

namespace rgen_test {
namespace {

const char* const defaultConfiguration =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<config>\n  <reportTypes>\n"
    "    <type guid=\"deadbabe-0000-0000-0000-000000000000\">\n"
    "      <persistDataFile>persist_data.xml</persistDataFile>\n"
    "      <reportTypeFile>test_stylesheet.xsl</reportTypeFile>\n"
    "    </type>\n  </reportTypes>\n</config>\n";

// What a translate callback needs that lets another thread cancel the report it belongs to.
struct LateCancel {
    RgenReportGenerator* generator;
    Companion& companion;
    bool everything;
};

const char* RGEN_CALL translateAndCancel(const char* text, void* context) {
    auto* call = static_cast<LateCancel*>(context);
    // The companion waits for the lock that this report holds, and has no effect on it.
    call->companion.begin([call] {
        const RgenGuid guid = guidFromText(goodType);
        rgen_cancel(call->generator, call->everything ? nullptr : &guid);
    });
    return text;
}

}  // namespace

void SoakHost::lateCancel() {
    LateCancel call = {generator_.get(), companion_, upTo(2) == 0};
    rgen_setTranslateFunction(generator_.get(), translateAndCancel, &call);
    char* const prefix = prefix_;
    char none[] = "";
    prefix_ = none;
    reportAsBytes();
    companion_.finish();
    prefix_ = prefix;
    rgen_setTranslateFunction(generator_.get(), translateWithPrefix, prefix_);
}

void SoakHost::cancelStorm() {
    constexpr int cancels = 200;
    constexpr int storedReports = 4;
    companion_.begin([this] {
        const RgenGuid good = guidFromText(goodType);
        const RgenGuid other = guidFromText(brokenType);
        const RgenGuid* const targets[] = {&good, nullptr, &other};
        for (int call = 0; call < cancels; ++call)
            rgen_cancel(generator_.get(), targets[call % 3]);
    });
    for (int number = 0; number < storedReports; ++number) {
        Request request;
        fill(request);
        Result result;
        const RgenStatus status = generateOn(generator_, request.input, result);
        if (status == RGEN_CANCELED) {
            EXPECT_EQ(std::uint64_t{RGEN_TYPE_EMPTY}, result.record().type);
        } else {
            expectStatus(RGEN_OK, status, "in a storm");
            EXPECT_EQ(request.expected, result.bytes());
        }
    }
    companion_.finish();
    reportAsBytes();
}

void SoakHost::abandonConverter() {
    const std::string path = outputs_.file("abandoned.pdf");
    converter_.obey({{"write", path, "partial"},
                     {"mark", outputs_.file("waiting/started")},
                     {"await", outputs_.file("waiting/released")},
                     {"hold", outputs_.file("waiting/ended"), ""}});
    Request request;
    fill(request);
    request.input.format("pdf").output(RGEN_OUTPUT_FILE, path);
    companion_.begin([this] {
        waitForFile(outputs_.file("waiting/started"));
        rgen_cancel(generator_.get(), nullptr);
    });
    Result result;
    expectStatus(RGEN_CANCELED, generateOn(generator_, request.input, result), path);
    companion_.finish();
    EXPECT_FALSE(exists(path));
    EXPECT_FALSE(exists(path + ".html"));
    EXPECT_LT(0, allChildren());
    writeFile(outputs_.file("waiting/released"), "");
    waitForFile(outputs_.file("waiting/ended"));
    // The converter has that file open until its end; Windows removes none that is open.
    collectConverters();
    for (const std::string& name : namesIn(outputs_.file("waiting")))
        removeAll(outputs_.file("waiting/" + name));
}

void SoakHost::collectConverters() {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (allChildren() > 0 && std::chrono::steady_clock::now() < limit)
        reportAsBytes();
    EXPECT_EQ(0, allChildren());
}

void SoakHost::generatorThatGoes() {
    const Generator fresh(place().folder.path());
    rgen_setTranslateFunction(fresh.get(), translateWithPrefix, prefix_);
    Request request;
    fill(request);
    expectBytes(request, fresh);
}

void SoakHost::threadThatGoes() {
    std::thread([this] { reportAsBytes(); }).join();
}

void SoakHost::freshDataDirectory() {
    const std::string path = outputs_.file("fresh");
    const Generator fresh(path);
    InputParams input;
    input.variants().addString("v", "value");
    Result result;
    expectStatus(RGEN_E_TEMPLATE_NOT_FOUND, generateOn(fresh, input, result), "fresh");
    EXPECT_EQ(defaultConfiguration, readFile(path + nativePath("/.rgen/config.xml")));
    removeAll(path + nativePath("/.rgen"));
}

void SoakHost::records() {
    RgenCVariantSet values{};
    ASSERT_EQ(1, rgen_createRgenCVariantSet(&values, 3));
    const std::string text = someText(500);
    const std::vector<std::uint8_t> bytes(1 + upTo(2000), 7);
    EXPECT_EQ(1, rgen_createRgenCVariantString("s", text.c_str(), 1, &values.items[0]));
    EXPECT_EQ(
        1, rgen_createRgenCVariantByteArray("b", bytes.data(), bytes.size(), 8, &values.items[1]));
    EXPECT_EQ(1, rgen_createRgenCVariantHandle("h", this, 1, &values.items[2]));
    EXPECT_EQ(text, readVariant(values.items[0]).text);
    EXPECT_EQ(bytes, readVariant(values.items[1]).bytes);
    EXPECT_EQ(this, values.items[2].value.handleValue);
    rgen_freeRgenCVariantSet(&values);
    EXPECT_EQ(nullptr, values.items);
    RgenCAnsiStringPairSet pairs{};
    ASSERT_EQ(1, rgen_createRgenCAnsiStringpairSet(&pairs, 2));
    EXPECT_EQ(1, rgen_createRgenAnsiString(text.c_str(), &pairs.keys[0]));
    EXPECT_EQ(1, rgen_createRgenAnsiString("value", &pairs.values[0]));
    EXPECT_EQ(text, toText(pairs.keys[0]));
    rgen_freeRgenCAnsiStringSet(&pairs);
    RgenByteArray array{};
    EXPECT_EQ(1, rgen_createRgenByteArray(bytes.data(), bytes.size(), &array));
    EXPECT_EQ(bytes, toBytes(array));
    rgen_freeRgenByteArray(&array);
    RgenCInputParams input{};
    EXPECT_EQ(1, rgen_createRgenAnsiString("html", &input.outputFormat));
    EXPECT_EQ(1, rgen_createRgenCVariantSet(&input.variants, 1));
    rgen_freeRgenCInputParams(&input);
    EXPECT_EQ(nullptr, input.outputFormat.data);
}

void SoakHost::statusTexts() {
    const auto describe = [this](RgenStatus status) {
        return std::string(rgen_getStatusCodeDescription(generator_.get(), status));
    };
    EXPECT_EQ("Operation completed successfully", describe(RGEN_OK));
    EXPECT_EQ("Canceled by request", describe(RGEN_CANCELED));
    EXPECT_EQ("Template is not found in folder", describe(RGEN_E_TEMPLATE_NOT_FOUND));
}

}  // namespace rgen_test
