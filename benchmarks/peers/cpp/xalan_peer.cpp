// The peer "xalan": Xalan-C. The input document is built as its own tree, without parsing.
//
// SPDX-License-Identifier: MIT
#include <xalanc/XalanTransformer/XalanDocumentBuilder.hpp>
#include <xalanc/XalanTransformer/XalanTransformer.hpp>
#include <xercesc/framework/XMLRecognizer.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/ContentHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLUniDefs.hpp>

#include <stdexcept>

#include "peer_program.h"

namespace peers {
namespace {

using Text = std::basic_string<XMLCh>;

/// Initialises and terminates the libraries.
struct Libraries {
    Libraries() {
        xercesc::XMLPlatformUtils::Initialize();
        xalanc::XalanTransformer::initialize();
    }
    ~Libraries() {
        xalanc::XalanTransformer::terminate();
        xercesc::XMLPlatformUtils::Terminate();
    }
};

/// Converts UTF-8 to UTF-16, with one transcoder for all texts.
class Decoder {
public:
    Decoder() {
        xercesc::XMLTransService::Codes result{};
        transcoder_.reset(xercesc::XMLPlatformUtils::fgTransService->makeNewTranscoderFor(
            xercesc::XMLRecognizer::UTF_8, result, blockSize));
        if (transcoder_ == nullptr) throw std::runtime_error("there is no transcoder");
    }

    Text operator()(const std::string& text) {
        Text decoded(text.size(), 0);
        sizes_.resize(text.size() + 1);
        XMLSize_t eaten = 0;
        const XMLSize_t made =
            transcoder_->transcodeFrom(reinterpret_cast<const XMLByte*>(text.data()), text.size(),
                                       decoded.data(), decoded.size(), eaten, sizes_.data());
        if (eaten != text.size()) throw std::runtime_error("a text cannot be decoded");
        decoded.resize(made);
        return decoded;
    }

private:
    static constexpr XMLSize_t blockSize = 16 * 1024;
    std::unique_ptr<xercesc::XMLTranscoder> transcoder_;
    std::vector<unsigned char> sizes_;
};

const Text noText;
const Text nameText = u"name";
const Text attributeType = u"CDATA";

/// At most one attribute, which is called "name".
class NameAttribute : public xercesc::Attributes {
public:
    NameAttribute() = default;
    explicit NameAttribute(const Text& name) : name_(&name) {}

    XMLSize_t getLength() const override { return name_ != nullptr ? 1 : 0; }
    const XMLCh* getURI(const XMLSize_t) const override { return noText.c_str(); }
    const XMLCh* getLocalName(const XMLSize_t) const override { return nameText.c_str(); }
    const XMLCh* getQName(const XMLSize_t) const override { return nameText.c_str(); }
    const XMLCh* getType(const XMLSize_t) const override { return attributeType.c_str(); }
    const XMLCh* getValue(const XMLSize_t) const override { return name_->c_str(); }
    bool getIndex(const XMLCh*, const XMLCh*, XMLSize_t&) const override { return false; }
    int getIndex(const XMLCh*, const XMLCh*) const override { return -1; }
    bool getIndex(const XMLCh*, XMLSize_t&) const override { return false; }
    int getIndex(const XMLCh*) const override { return -1; }
    const XMLCh* getType(const XMLCh*, const XMLCh*) const override { return nullptr; }
    const XMLCh* getType(const XMLCh*) const override { return nullptr; }
    const XMLCh* getValue(const XMLCh*, const XMLCh*) const override { return nullptr; }
    const XMLCh* getValue(const XMLCh*) const override { return nullptr; }

private:
    const Text* name_ = nullptr;
};

/// Passes the document to the handler, as a parser does.
class DocumentWriter {
public:
    explicit DocumentWriter(xercesc::ContentHandler& handler) : handler_(handler) {}

    void write(const std::vector<Value>& values, Decoder& decode) {
        handler_.startDocument();
        start(data_, NameAttribute());
        start(properties_, NameAttribute());
        for (const Value& value : values) {
            const Text text = decode(textOf(value));
            start(property_, NameAttribute(decode(value.name)));
            handler_.characters(text.data(), text.size());
            end(property_);
        }
        end(properties_);
        end(data_);
        handler_.endDocument();
    }

private:
    void start(const Text& name, const NameAttribute& attributes) {
        handler_.startElement(noText.c_str(), name.c_str(), name.c_str(), attributes);
    }
    void end(const Text& name) { handler_.endElement(noText.c_str(), name.c_str(), name.c_str()); }

    const Text data_ = u"data";
    const Text properties_ = u"properties";
    const Text property_ = u"property";
    xercesc::ContentHandler& handler_;
};

class XalanPeer : public ReportMaker {
public:
    XalanPeer(const Options& options, std::vector<Value> values)
        : templatePath_(options.templatePath), output_(options.output), values_(std::move(values)) {
        if (!options.keepTemplate) return;
        check(transformer_.compileStylesheet(templatePath_.c_str(), kept_));
    }

    void report() override {
        xalanc::XalanDocumentBuilder* const data = transformer_.createDocumentBuilder();
        if (data == nullptr) throw std::runtime_error("there is no document");
        DocumentWriter(*data->getContentHandler()).write(values_, decode_);
        const xalanc::XSLTResultTarget target(output_.c_str());
        if (kept_ != nullptr) {
            check(transformer_.transform(*data, kept_, target));
        } else {
            const xalanc::XSLTInputSource stylesheet(templatePath_.c_str());
            check(transformer_.transform(*data, stylesheet, target));
        }
        transformer_.destroyDocumentBuilder(data);
    }

private:
    void check(int result) const {
        if (result != 0) throw std::runtime_error(transformer_.getLastError());
    }

    const Libraries libraries_;
    Decoder decode_;
    xalanc::XalanTransformer transformer_;
    std::string templatePath_;
    std::string output_;
    std::vector<Value> values_;
    const xalanc::XalanCompiledStylesheet* kept_ = nullptr;
};

}  // namespace

std::unique_ptr<ReportMaker> makeReportMaker(const Options& options, std::vector<Value> values) {
    return std::make_unique<XalanPeer>(options, std::move(values));
}

}  // namespace peers
