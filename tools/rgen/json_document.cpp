// nlohmann-json behind a narrow door, so that few sources have to compile it.
//
// SPDX-License-Identifier: MIT
#include "json_document.h"

#include <nlohmann/json.hpp>

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

std::string JsonDocument::text() const {
    constexpr int indentation = 2;
    return object_->value.dump(indentation, ' ', false,
                               nlohmann::ordered_json::error_handler_t::replace) +
           "\n";
}

}  // namespace cli
