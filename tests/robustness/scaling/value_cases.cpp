// Values: the names of hints and kinds, records on their way in and out, display texts.
//
// SPDX-License-Identifier: MIT
#include <memory>

#include "api/record_conversions.h"
#include "robustness/scaling/scaling_case.h"
#include "support/host_records.h"
#include "variant/hinted_convertors.h"
#include "variant/simulated_input.h"

namespace rgen_test {
namespace {

// Keeps the compiler from removing the work.
volatile std::size_t sink;

std::string numbered(const std::string& name, std::size_t number, bool isNumbered) {
    return isNumbered ? name + std::to_string(number) : name;
}

void addNameCases(std::vector<ScalingCase>& cases) {
    for (const std::string part : {"Generic", "string", " ", "x"}) {
        const auto make = [part](std::size_t size) {
            return [text = repeatedText(part, size)] {
                sink = static_cast<std::size_t>(rgen::hintFromName(text));
                sink = rgen::canonicalTypeName(text).size();
            };
        };
        cases.push_back({"names of hints and kinds: \"" + part + "\"", usualBytes, make});
    }
    for (const std::string part : {"7", " ", "0", "x"}) {
        const auto make = [part](std::size_t size) {
            return [text = repeatedText(part, size)] {
                rgen::Variant value;
                sink = rgen::parseVariant(text, "int64_t", rgen::VariantHint::Generic, value);
            };
        };
        cases.push_back({"integer: \"" + part + "\"", usualBytes, make});
    }
}

std::shared_ptr<VariantSet> manyValues(std::size_t count, bool areNumbered) {
    auto values = std::make_shared<VariantSet>();
    for (std::size_t i = 0; i < count; ++i) {
        const std::string name = numbered("name", i, areNumbered);
        values->addString(name + "a", "text");
        values->addInt64(name + "b", 7, RGEN_HINT_DATE_TIME);
        values->addBytes(name + "c", {1, 2});
        values->addHandle(name + "d", nullptr);
    }
    return values;
}

void addRecordCases(std::vector<ScalingCase>& cases) {
    for (const bool areNumbered : {false, true}) {
        const std::string names = areNumbered ? "many names" : "one name";
        cases.push_back({"records of values: " + names, usualEntries, [=](std::size_t count) {
                             return [values = manyValues(count, areNumbered)] {
                                 sink = rgen::toVariantMap(*values->get()).size();
                             };
                         }});
        cases.push_back({"records of pairs: " + names, usualEntries, [=](std::size_t count) {
                             auto pairs = std::make_shared<PairSet>();
                             for (std::size_t i = 0; i < count; ++i)
                                 pairs->add(numbered("name", i, areNumbered), "text");
                             return [pairs] { sink = rgen::toPropertyMap(*pairs->get()).size(); };
                         }});
    }
    cases.push_back({"records for the host", usualEntries, [](std::size_t count) {
                         const auto values = manyValues(count, true);
                         return [map = rgen::toVariantMap(*values->get())] {
                             RgenCVariantSet set{};
                             sink = rgen::fillVariantSet(map, set) ? set.count : 0;
                             rgen_freeRgenCVariantSet(&set);
                         };
                     }});
}

std::function<void()> showing(const rgen::Variant& value) {
    return [value] { sink = rgen::variantText(value).size(); };
}

void addDisplayCases(std::vector<ScalingCase>& cases) {
    cases.push_back({"display text of bytes", usualBytes, [](std::size_t size) {
                         return showing({rgen::ByteVector(size), rgen::VariantHint::Dump});
                     }});
    cases.push_back({"display text of a text", usualBytes, [](std::size_t size) {
                         return showing({std::string(size, '%'), rgen::VariantHint::DateTime});
                     }});
}

}  // namespace

std::vector<ScalingCase> valueCases() {
    std::vector<ScalingCase> cases;
    addNameCases(cases);
    addRecordCases(cases);
    addDisplayCases(cases);
    return cases;
}

}  // namespace rgen_test
