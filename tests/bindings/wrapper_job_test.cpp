// Jobs of rgen.hpp: results, waiting, cancelling, exceptions and lifetimes.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>

#include "support/conversion_fixture.h"
#include "support/test_platform.h"
#include "wrapper_fixture.h"

namespace rgen_test {
namespace {

using namespace std::chrono_literals;

std::string textOf(const repgen::Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

class WrapperJob : public WrapperTest {
protected:
    void putTranslatedTemplate() {
        putTemplate(textStylesheet("QT_TRANSLATE_NOOP(\"QObject\", \"a\")" + valueOf("v")));
    }

    const repgen::Request request{type, "html", {{"v", "x & y"}}};
};

TEST_F(WrapperJob, EachModeHasItsResult) {
    const std::string path = folder.file("report.html");
    repgen::Job<std::filesystem::path> file = own.startFile(request, path);
    EXPECT_EQ(path, repgen::Path(file.get()).utf8());
    EXPECT_EQ("[x & y]", readFile(path));
    EXPECT_EQ("[x & y]", textOf(own.startBytes(request).get()));
    repgen::Job<repgen::OpenFile> open = own.startOpenFile(request, path);
    EXPECT_TRUE(closesOnBytes(open.get().release(), "[x & y]"));
    EXPECT_FALSE(exists(path));
}

TEST_F(WrapperJob, AnOpenFileThatNobodyTakesIsDeleted) {
    const std::string path = folder.file("report.html");
    own.startOpenFile(request, path).wait();
    EXPECT_FALSE(exists(path));
}

TEST_F(WrapperJob, ErrorsLeaveGet) {
    repgen::Job<repgen::Bytes> job = own.startBytes({type, "txt", {{"v", 1}}});
    job.wait();
    EXPECT_EQ("RGEN_E_TEMPLATE_NOT_FOUND", statusOf([&] { job.get(); }));
    EXPECT_EQ("RGEN_E_TEMPLATE_NOT_FOUND", statusOf([&] { job.get(); }));
    repgen::Generator withoutFolder;
    EXPECT_THROW(withoutFolder.startBytes(request), repgen::ArgumentError);
    EXPECT_EQ("[x & y]", textOf(own.startBytes(request).get()));
}

TEST_F(WrapperJob, AnEndedJobIsNotWaitedFor) {
    const repgen::Job<repgen::Bytes> job = own.startBytes(request);
    job.wait();
    for (const auto limit : {0ms, -5ms, 1ms, std::chrono::milliseconds::max()})
        EXPECT_TRUE(job.waitFor(limit));
    job.cancel();
}

TEST_F(WrapperJob, ExceptionsOfATranslatorLeaveTheJobThatTheyAreOf) {
    putTranslatedTemplate();
    own.setTranslator([count = 0](std::string_view text) mutable {
        const int number = ++count;
        if (number % 2 == 0) throw number;
        return std::string(text);
    });
    constexpr int jobs = 8;
    std::vector<repgen::Job<repgen::Bytes>> all;
    for (int i = 0; i < jobs; ++i)
        all.push_back(own.startBytes(request));
    int sum = 0;
    int whole = 0;
    for (repgen::Job<repgen::Bytes>& job : all) {
        try {
            EXPECT_EQ("ax & y", textOf(job.get()));
            ++whole;
        } catch (int number) {
            sum += number;
        }
    }
    EXPECT_EQ(jobs / 2, whole);
    EXPECT_EQ(2 + 4 + 6 + 8, sum);
}

TEST_F(WrapperJob, AJobKeepsItsTranslatorAndOutlivesItsGenerator) {
    putTranslatedTemplate();
    std::promise<void> begun;
    std::promise<void> mayEnd;
    auto held = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = held;
    auto other = std::make_unique<repgen::Generator>(folder.path());
    other->setTranslator([&, held = std::move(held)](std::string_view) {
        begun.set_value();
        mayEnd.get_future().wait();
        return "old";
    });
    {
        repgen::Job<repgen::Bytes> job = other->startBytes(request);
        begun.get_future().wait();
        other->setTranslator([](std::string_view) { return "new"; });
        EXPECT_EQ("newx & y", textOf(other->generateBytes(request)));
        EXPECT_FALSE(job.waitFor(0ms));
        other.reset();
        EXPECT_FALSE(watched.expired());
        mayEnd.set_value();
        EXPECT_EQ("oldx & y", textOf(job.get()));
    }
    EXPECT_TRUE(watched.expired());
}

TEST_F(WrapperJob, ATranslatorThatUsesItsGeneratorGetsAnError) {
    putTranslatedTemplate();
    int kind = 0;
    own.setTranslator([&](std::string_view) -> std::string {
        try {
            own.setTranslator([](std::string_view) { return "b"; });
        } catch (const repgen::Error& error) {
            kind = error.kind();
        }
        own.generateBytes(request);
        return "never";
    });
    const auto kindOf = [&](const auto& call) {
        try {
            call();
        } catch (const repgen::Error& error) {
            return error.kind();
        }
        return 0;
    };
    EXPECT_EQ(RGENH_ERROR_REENTERED, kindOf([&] { own.generateBytes(request); }));
    EXPECT_EQ(RGENH_ERROR_REENTERED, kind);
    EXPECT_EQ(RGENH_ERROR_REENTERED, kindOf([&] { own.startBytes(request).get(); }));
    own.clearTranslator();
    EXPECT_EQ("ax & y", textOf(own.generateBytes(request)));
}

TEST_F(WrapperJob, ATranslatorThatWaitsForItsOwnJobGetsAnError) {
    putTranslatedTemplate();
    std::promise<repgen::Job<repgen::Bytes>*> started;
    int kind = 0;
    own.setTranslator([&](std::string_view text) {
        try {
            started.get_future().get()->get();
        } catch (const repgen::Error& error) {
            kind = error.kind();
        }
        return text;
    });
    repgen::Job<repgen::Bytes> job = own.startBytes(request);
    started.set_value(&job);
    EXPECT_EQ("ax & y", textOf(job.get()));
    EXPECT_EQ(RGENH_ERROR_REENTERED, kind);
}

class WrapperJobConversion : public ConversionTest {
protected:
    WrapperJobConversion() : own(folder.path()) {}

    repgen::Generator own;
    const repgen::Request pdf{repgen::Guid(defaultGuidText), "pdf", {{"v", "value"}}};
};

TEST_F(WrapperJobConversion, OneJobIsCancelledAndNoOther) {
    const std::string otherOutput = folder.file("page.html");
    converter.obey(waiting({}));
    repgen::Job<std::filesystem::path> first = own.startFile(pdf, output);
    ASSERT_TRUE(waitForStarted());
    EXPECT_FALSE(first.waitFor(0ms));
    repgen::Request page = pdf;
    page.convert = false;
    repgen::Job<std::filesystem::path> second = own.startFile(page, otherOutput);
    first.cancel();
    try {
        first.get();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const repgen::StatusError& error) {
        EXPECT_TRUE(error.isCancellation());
        EXPECT_EQ(output, error.path());
    }
    second.get();
    EXPECT_TRUE(exists(otherOutput));
}

TEST_F(WrapperJobConversion, AJobThatNobodyHasAnyMoreIsCancelled) {
    converter.obey(waiting({}));
    {
        repgen::Job<std::filesystem::path> job = own.startFile(pdf, output);
        repgen::Job<std::filesystem::path> moved(std::move(job));
        ASSERT_TRUE(waitForStarted());
    }
    EXPECT_FALSE(exists(output));
}

TEST_F(WrapperJobConversion, AMissingPdfIsAConversionError) {
    converter.obey({{"write", output + ".error.txt", "no engine"}});
    try {
        own.startFile(pdf, output).get();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const repgen::ConversionError& error) {
        EXPECT_EQ("no engine", error.reason());
        EXPECT_EQ(output, error.path());
    }
}

}  // namespace
}  // namespace rgen_test
