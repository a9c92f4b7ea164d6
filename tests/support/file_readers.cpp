// The readers of the three files.
//
// SPDX-License-Identifier: MIT
#include "support/file_readers.h"

#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace rgen_test {

bool operator==(const Outcome& left, const Outcome& right) {
    return left.status == right.status && left.text == right.text;
}

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    return stream << outcome.status << " \"" << outcome.text << "\"";
}

Outcome readText(const std::string& text) {
    return {statusHex(RGEN_OK), text};
}
Outcome failedRead(RgenStatus status) {
    return {statusHex(status), ""};
}

namespace {

// Stands for the statuses that the simulated input reader does not have.
constexpr RgenStatus nothingRead = -1;

Outcome readConfiguration(const std::string& content) {
    const TempFolder folder;
    writeFile(folder.dataFile("config.xml"), content);
    const Generator generator(folder.path());
    const RgenStatus status = storePairs(generator, defaultGuid(), {{"a", "b"}});
    std::string created;
    for (const std::string& name : namesIn(folder.dataDir())) {
        created = name == "config.xml" ? created : name;
    }
    return {statusHex(status), created};
}

Outcome readPersistentData(const std::string& content) {
    const TempFolder folder;
    writeFile(folder.dataFile("persist_data.xml"), content);
    const Generator generator(folder.path());
    const PersistentData data = persistentData(generator, defaultGuid());
    return {statusHex(data.status), data.pairs.count("n") == 0 ? "" : data.pairs.at("n")};
}

Outcome readSimulation(const std::string& content) {
    const TempFolder folder;
    writeFile(folder.file("simulation.xml"), content);
    const Generator generator;
    const SimulatedData data = simulatedData(generator, folder.file("simulation.xml"));
    return {statusHex(data.result == 1 ? RGEN_OK : nothingRead),
            data.values.count("n") == 0 ? "" : data.values.at("n").text};
}

}  // namespace

const std::vector<FileReader>& fileReaders() {
    static const std::vector<FileReader> readers = {
        {"configuration", "config",
         "<reportTypes><type guid='deadbabe-0000-0000-0000-000000000000'>"
         "<reportTypeFile>t.xsl</reportTypeFile><persistDataFile>",
         "</persistDataFile></type></reportTypes>", "</config>", RGEN_E_OPEN_CONFIG,
         RGEN_E_NO_TYPE_MAP, RGEN_E_NO_VALID_TYPE_MAP, readConfiguration},
        {"persistent data", "data", "<properties><property name='n'>", "</property></properties>",
         "</data>", RGEN_E_OPEN_PERSIST, RGEN_E_NO_PERSIST_VALUES, RGEN_E_NO_VALID_PERSIST_VALUES,
         readPersistentData},
        {"simulated input", "data", "<properties><property name='n' type='string' hint='Generic'>",
         "</property></properties>", "</data>", nothingRead, nothingRead, nothingRead,
         readSimulation}};
    return readers;
}

std::string repeated(const std::string& text, int count) {
    std::string result;
    result.reserve(text.size() * static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index) {
        result += text;
    }
    return result;
}

std::string laughs(const std::string& root, int levels) {
    std::string type = "<!DOCTYPE " + root + " [<!ENTITY e0 'ha'>";
    for (int level = 1; level <= levels; ++level) {
        type += "<!ENTITY e" + std::to_string(level) + " '" +
                repeated("&e" + std::to_string(level - 1) + ";", 10) + "'>";
    }
    return type + "]>";
}

}  // namespace rgen_test
