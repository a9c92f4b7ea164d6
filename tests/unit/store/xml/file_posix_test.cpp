// XML files on Linux: names that start with a scheme, and a full disk.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <string>

#include "store/xml/file.h"
#include "store/xml/parser_context.h"
#include "store/xml/property_document.h"
#include "support/temp_folder.h"
#include "support/working_folder.h"

namespace rgen_test {
namespace {

// While it lives, no file of this process can grow beyond a size: further writes fail.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t size) : previousHandler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &previous_);
        const rlimit limit = {size, previous_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &previous_);
        std::signal(SIGXFSZ, previousHandler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit previous_ = {};
    void (*previousHandler_)(int);
};

TEST(SaveXmlFile, FullDiskIsAFailureThatLeavesNoFile) {
    const rgen::XmlSilence silence;
    const TempFolder folder;
    for (const std::size_t size : {std::size_t{100}, std::size_t{100000}}) {
        const auto document = rgen::buildPropertyDocument({{"a", std::string(size, 'x')}});
        bool saved = true;
        {
            const FileSizeLimit limit(64);
            saved = rgen::saveXmlFile(folder.file("a.xml"), document.get());
        }
        EXPECT_FALSE(saved) << size;
        EXPECT_FALSE(exists(folder.file("a.xml"))) << size;
    }
}

TEST(XmlFileNames, SchemesAreFolderNames) {
    const rgen::XmlSilence silence;
    const TempFolder folder;
    const WorkingFolder working(folder.path());
    const auto document = rgen::buildPropertyDocument({{"a", "1"}});
    createFolder(folder.file("file:"));
    createFolder(folder.file("http:/host"));
    for (const std::string name : {"file:a.xml", "file:/b.xml", "file:///c.xml",
                                   "http://host/d.xml", "a\\b%5C.xml", "file:%2Fe.xml"}) {
        EXPECT_TRUE(rgen::saveXmlFile(name, document.get())) << name;
        EXPECT_TRUE(exists(folder.file(name))) << name;
        EXPECT_NE(nullptr, rgen::readXmlFile(name)) << name;
    }
    EXPECT_FALSE(exists("/b.xml"));
}

}  // namespace
}  // namespace rgen_test
