// XML files. libxml2 interprets some file names ("-" is a standard stream, "file:" a scheme, "%20"
// a blank when it saves). So files are read by a spelling that it takes literally, and saved
// through a C++ stream by xmlSaveFormatFileTo, which writes the same bytes as xmlSaveFormatFileEnc.
//
// SPDX-License-Identifier: MIT
#include "store/xml/file.h"

#include <libxml/parser.h>
#include <libxml/xmlIO.h>
#include <libxml/xmlsave.h>

#include <fstream>

#include "platform/platform.h"
#include "store/base/file_system.h"

namespace rgen {
namespace {

constexpr const char* encoding = "UTF-8";

/// Prepends "./" to a path that is neither absolute nor has a drive.
std::string literalSpelling(const std::string& path) {
    return toNativePath(path).has_root_path() ? path : "./" + path;
}

int writeToStream(void* stream, const char* bytes, int size) {
    auto& file = *static_cast<std::ofstream*>(stream);
    return file.write(bytes, size) ? size : -1;
}

int closeStream(void* stream) {
    auto& file = *static_cast<std::ofstream*>(stream);
    file.close();
    return file ? 0 : -1;
}

bool saveToStream(std::ofstream& file, xmlDoc* document) {
    xmlOutputBuffer* buffer =
        xmlOutputBufferCreateIO(writeToStream, closeStream, &file, /*encoder=*/nullptr);
    if (buffer == nullptr) return false;
    constexpr int indented = 1;
    // Always closes the buffer. Any negative result is a failure: for a full disk it is not -1.
    return xmlSaveFormatFileTo(buffer, document, encoding, indented) >= 0;
}

}  // namespace

XmlPtr<xmlDoc> readXmlFile(const std::string& path) {
    if (platform::namesSpecialFile(path)) return nullptr;
    return XmlPtr<xmlDoc>(xmlReadFile(literalSpelling(path).c_str(), encoding, XML_PARSE_RECOVER));
}

bool saveXmlFile(const std::string& path, xmlDoc* document) {
    if (document == nullptr) return false;
    // Declared first, so that it removes the file after the stream is closed.
    FileRemover halfFile(path);
    std::ofstream file;
    const bool isOpen = openForWriting(halfFile, [&file](const auto* nativePath) {
        file.open(nativePath, std::ios::binary | std::ios::trunc);
        return file.is_open();
    });
    if (!isOpen) return false;
    halfFile.arm();
    const bool isSaved = saveToStream(file, document);
    if (isSaved) halfFile.disarm();
    return isSaved;
}

}  // namespace rgen
