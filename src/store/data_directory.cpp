// Data directory and configuration. setDataDir sets the path, loadReportType creates the files.
//
// SPDX-License-Identifier: MIT
#include "store/data_directory.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "platform/platform.h"
#include "store/base/file_system.h"
#include "store/xml/file.h"
#include "store/xml/parser_context.h"

namespace rgen {
namespace {

constexpr const char* dataDirName = ".rgen";
constexpr const char* configFileName = "config.xml";

std::string formDataDirPath(std::string path) {
    std::replace(path.begin(), path.end(), '/', platform::pathSeparator);
    if (!endsInSeparator(path)) path += platform::pathSeparator;
    path += dataDirName;
    path += platform::pathSeparator;
    return path;
}

XmlPtr<xmlDoc> buildDefaultConfiguration() {
    XmlPtr<xmlDoc> document(xmlNewDoc(xmlText("1.0")));
    XmlPtr<xmlNode> root(xmlNewNode(nullptr, xmlText("config")));
    if (!document || !root) return nullptr;
    xmlDocSetRootElement(document.get(), root.get());
    xmlNode* types = xmlNewChild(root.release(), nullptr, xmlText("reportTypes"), nullptr);
    xmlNode* type = xmlNewChild(types, nullptr, xmlText("type"), nullptr);
    if (type == nullptr) return nullptr;
    const std::string guid = formatGuid(defaultReportTypeGuid);
    const bool complete =
        xmlNewProp(type, xmlText("guid"), xmlText(guid.c_str())) != nullptr &&
        xmlNewChild(type, nullptr, xmlText("persistDataFile"), xmlText("persist_data.xml")) &&
        xmlNewChild(type, nullptr, xmlText("reportTypeFile"), xmlText("test_stylesheet.xsl"));
    if (!complete) document.reset();
    return document;
}

/// The body of loadReportType; the caller holds the mutex.
Status loadReportTypeLocked(ReportGenerator& generator, const Guid& guid, ReportTypeEntry& entry) {
    if (!pathExists(generator.dataDirPath) && !createDirectory(generator.dataDirPath)) {
        // On purpose: the path is cleared; the host must set the data directory again.
        generator.dataDirPath.clear();
        return RGEN_E_CREATE_DIR;
    }
    const std::string configPath = generator.dataDirPath + configFileName;
    if (!pathExists(configPath) && !saveXmlFile(configPath, buildDefaultConfiguration().get())) {
        return RGEN_E_CREATE_CONFIG;
    }
    const XmlPtr<xmlDoc> configuration = readXmlFile(configPath);
    if (!configuration) return RGEN_E_OPEN_CONFIG;
    const Status found = lookupReportType(generator, configuration.get(), guid, entry);
    return failed(found) ? found : RGEN_OK;
}

}  // namespace

bool endsInSeparator(const std::string& path) {
    if (path.empty() || path.back() != platform::pathSeparator) return false;
    // On purpose: a path with a line break gets one more separator.
    return path.find_first_of("\r\n") == std::string::npos;
}

Status setDataDir(ReportGenerator& generator, const std::string& path) {
    if (!pathExists(path)) return RGEN_E_DIR_NOT_FOUND;
    std::string formed = formDataDirPath(path);
    const std::lock_guard lock(generator.mutex);
    generator.dataDirPath = std::move(formed);
    return RGEN_OK;
}

std::string dataDirPathOf(ReportGenerator& generator) {
    const std::lock_guard lock(generator.mutex);
    return generator.dataDirPath;
}

Status loadReportType(ReportGenerator& generator, const Guid& guid, ReportTypeEntry& entry) {
    const XmlSilence silence;
    const std::lock_guard lock(generator.mutex);
    return loadReportTypeLocked(generator, guid, entry);
}

}  // namespace rgen
