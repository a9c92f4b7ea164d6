// The documents that --json prints: objects whose members stay in the order of set().
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace cli {

class JsonDocument {
public:
    JsonDocument();
    ~JsonDocument();
    JsonDocument(JsonDocument&& other) noexcept;
    JsonDocument& operator=(JsonDocument&& other) noexcept;

    void set(const std::string& name, const std::string& text);
    void set(const std::string& name, const char* text) { set(name, std::string(text)); }
    void set(const std::string& name, bool flag);
    void set(const std::string& name, std::int64_t number);
    void set(const std::string& name, double number);
    void set(const std::string& name, const std::vector<std::string>& texts);
    void set(const std::string& name, const JsonDocument& object);
    void set(const std::string& name, const std::vector<JsonDocument>& objects);

    /// The object as indented text with a line end. Bytes that are not UTF-8 become U+FFFD.
    std::string text() const;

private:
    struct Object;
    std::unique_ptr<Object> object_;
};

}  // namespace cli
