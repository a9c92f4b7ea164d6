// The peer "ctemplate". The modifier "h" of the templates escapes all values. The dictionary is
// built from the values for each report.
//
// SPDX-License-Identifier: MIT
#include <ctemplate/template.h>

#include <stdexcept>

#include "peer_program.h"

namespace peers {
namespace {

using ctemplate::Template;
using ctemplate::TemplateDictionary;

std::unique_ptr<Template> compile(const std::string& path) {
    std::unique_ptr<Template> compiled(
        Template::StringToTemplate(readFile(path), ctemplate::DO_NOT_STRIP));
    if (compiled == nullptr) throw std::runtime_error("the template cannot be compiled");
    return compiled;
}

class CTemplatePeer : public ReportMaker {
public:
    CTemplatePeer(const Options& options, std::vector<Value> values)
        : templatePath_(options.templatePath),
          output_(options.output),
          table_(readFile(options.templatePath).find("{{#ROW}}") != std::string::npos),
          values_(std::move(values)) {
        if (options.keepTemplate) kept_ = compile(templatePath_);
    }

    void report() override {
        std::unique_ptr<Template> compiled;
        if (kept_ == nullptr) compiled = compile(templatePath_);
        TemplateDictionary dictionary("report");
        if (table_) {
            fillRows(dictionary);
        } else {
            fillValues(dictionary);
        }
        std::string page;
        const Template& used = kept_ != nullptr ? *kept_ : *compiled;
        if (!used.Expand(&page, &dictionary)) {
            throw std::runtime_error("the template cannot be expanded");
        }
        writeFile(output_, page);
    }

private:
    void fillRows(TemplateDictionary& dictionary) const {
        for (const Value& value : values_) {
            TemplateDictionary* row = dictionary.AddSectionDictionary("ROW");
            row->SetValue("NAME", value.name);
            row->SetValue("VALUE", textOf(value));
        }
        dictionary.SetValue("COUNT", std::to_string(values_.size()));
    }

    void fillValues(TemplateDictionary& dictionary) const {
        for (const Value& value : values_) {
            const std::string text = textOf(value);
            dictionary.SetValue(value.name, text);
            if (value.name == "Remark" && !text.empty()) dictionary.ShowSection("HAS_REMARK");
        }
    }

    std::string templatePath_;
    std::string output_;
    bool table_;
    std::vector<Value> values_;
    std::unique_ptr<Template> kept_;
};

}  // namespace

std::unique_ptr<ReportMaker> makeReportMaker(const Options& options, std::vector<Value> values) {
    return std::make_unique<CTemplatePeer>(options, std::move(values));
}

}  // namespace peers
