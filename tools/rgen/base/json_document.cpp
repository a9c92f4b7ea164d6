// Hides nlohmann-json, which takes long to compile.
//
// SPDX-License-Identifier: MIT
#include "base/json_document.h"

#include <nlohmann/json.hpp>
#include <string_view>

#include "text/printable_text.h"
#include "text/utf8.h"

namespace cli {

struct JsonDocument::Object {
    nlohmann::ordered_json value = nlohmann::ordered_json::object();
};

JsonDocument::JsonDocument() : object_(std::make_unique<Object>()) {}
JsonDocument::~JsonDocument() = default;
JsonDocument::JsonDocument(JsonDocument&& other) noexcept = default;
JsonDocument& JsonDocument::operator=(JsonDocument&& other) noexcept = default;

void JsonDocument::set(const std::string& name, const std::string& text) {
    object_->value[name] = text;
}

void JsonDocument::set(const std::string& name, bool flag) {
    object_->value[name] = flag;
}

void JsonDocument::set(const std::string& name, std::int64_t number) {
    object_->value[name] = number;
}

void JsonDocument::set(const std::string& name, double number) {
    object_->value[name] = number;
}

void JsonDocument::set(const std::string& name, const std::vector<std::string>& texts) {
    object_->value[name] = texts;
}

void JsonDocument::set(const std::string& name, const JsonDocument& object) {
    object_->value[name] = object.object_->value;
}

void JsonDocument::set(const std::string& name, const std::vector<JsonDocument>& objects) {
    auto array = nlohmann::ordered_json::array();
    for (const JsonDocument& object : objects)
        array.push_back(object.object_->value);
    object_->value[name] = std::move(array);
}

namespace {

/// Escapes characters that control a terminal or change the writing direction. They occur in
/// strings only, where "\u009b" means the same.
std::string withoutSteering(const std::string& json) {
    std::string result;
    for (std::size_t i = 0; i < json.size();) {
        const std::size_t length = tools::sequenceLength(std::string_view(json).substr(i));
        const std::string letter = json.substr(i, length == 0 ? 1 : length);
        const bool isAscii = letter.size() == 1 && letter != "\x7f";
        const bool isPlain = isAscii || tools::printable(letter) == letter;
        result += isPlain ? letter : nlohmann::json(letter).dump(-1, ' ', true).substr(1, 6);
        i += letter.size();
    }
    return result;
}

}  // namespace

std::string JsonDocument::text() const {
    constexpr int indentation = 2;
    const auto replace = nlohmann::ordered_json::error_handler_t::replace;
    return withoutSteering(object_->value.dump(indentation, ' ', false, replace)) + "\n";
}

}  // namespace cli
