// The peer "xsltproc": a host that writes the values into an XML file and starts the program for
// each report. Nothing can be reused between two reports. The memory is that of the started
// program.
//
// SPDX-License-Identifier: MIT
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <stdexcept>

#include "peer_program.h"

extern char** environ;

namespace peers {
namespace {

std::string escaped(const std::string& text) {
    std::string result;
    for (const char letter : text) {
        switch (letter) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '"':
                result += "&quot;";
                break;
            default:
                result += letter;
        }
    }
    return result;
}

class XsltprocPeer : public ReportMaker {
public:
    XsltprocPeer(const Options& options, std::vector<Value> values)
        : templatePath_(options.templatePath),
          output_(options.output),
          input_(options.output + ".xml"),
          values_(std::move(values)) {
        if (options.keepTemplate) throw std::runtime_error("xsltproc keeps no template");
    }

    void report() override {
        writeFile(input_, buildDocument());
        std::string program = "xsltproc";
        std::string option = "-o";
        char* arguments[] = {program.data(),       option.data(), output_.data(),
                             templatePath_.data(), input_.data(), nullptr};
        pid_t child = 0;
        if (posix_spawnp(&child, program.c_str(), nullptr, nullptr, arguments, environ) != 0) {
            throw std::runtime_error("xsltproc cannot be started");
        }
        int status = 0;
        rusage usage{};
        if (wait4(child, &status, 0, &usage) != child || status != 0) {
            throw std::runtime_error("xsltproc fails");
        }
        peakKib_ = std::max(peakKib_, usage.ru_maxrss);
    }

    long peakKib() const override { return peakKib_; }

private:
    std::string buildDocument() const {
        std::string document = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<data><properties>";
        for (const Value& value : values_) {
            document += "<property name=\"" + escaped(value.name) + "\">" + escaped(textOf(value)) +
                        "</property>\n";
        }
        return document + "</properties></data>\n";
    }

    std::string templatePath_;
    std::string output_;
    std::string input_;
    std::vector<Value> values_;
    long peakKib_ = 0;
};

}  // namespace

std::unique_ptr<ReportMaker> makeReportMaker(const Options& options, std::vector<Value> values) {
    return std::make_unique<XsltprocPeer>(options, std::move(values));
}

}  // namespace peers
