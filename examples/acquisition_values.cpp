// With the C++ header values are plain containers and std::chrono time points, and texts need no
// escaping. Names of list entries have three parts, "Speed.010.Value"; the template sorts by the
// number in the middle.
//
// SPDX-License-Identifier: MIT
#include "acquisition_values.h"

#include <array>

extern "C" {
#include "first_sector.h"
}

using strata::repgen::Hint;
using strata::repgen::Texts;
using strata::repgen::Values;

namespace {

constexpr std::int64_t sectorSize = 512;

std::chrono::system_clock::time_point moment(std::time_t seconds) {
    return std::chrono::system_clock::from_time_t(seconds);
}

/// A sample every 20 GB, in thousands of bytes per second.
void addSpeeds(Values& values) {
    constexpr std::int64_t distance = 20'000'000'000;
    constexpr std::int64_t speeds[] = {
        201400, 200900, 199200, 198600, 195100, 181300, 192700, 189900, 187100,
        183600, 179800, 142500, 173900, 170200, 166800, 161500, 157900, 104600,
        91200,  146300, 140800, 134900, 128100, 112400, 114700, 106300,
    };
    std::int64_t number = 0;
    for (const std::int64_t speed : speeds) {
        const std::string name = "Speed." + std::to_string((number + 1) * 10);
        values[name + ".Position"] = {number * distance, Hint::Address};
        values[name + ".Value"] = {speed * 1000, Hint::Speed};
        ++number;
    }
}

/// The numbers 5, 10, 15, ... leave room for areas that are found later.
void addBadAreas(Values& values) {
    struct Area {
        std::int64_t sector;
        int sectors;
        int attempts;
        const char* cause;
    };
    constexpr Area areas[] = {
        {204818176, 16, 3, "uncorrectable"}, {431126528, 24, 3, "uncorrectable"},
        {431129600, 8, 3, "timeout"},        {688431104, 1024, 5, "uncorrectable"},
        {712903168, 256, 5, "not-found"},    {901775360, 48, 3, "uncorrectable"},
    };
    int number = 5;
    for (const Area& area : areas) {
        const std::string name = "Err." + std::to_string(number);
        values.add({{name + ".Address", {area.sector * sectorSize, Hint::Address}},
                    {name + ".Sector", area.sector},
                    {name + ".Sectors", area.sectors},
                    {name + ".Attempts", area.attempts},
                    {name + ".Cause", area.cause}});
        number += 5;
    }
}

void addHashes(Values& values) {
    constexpr std::array<const char*, 2> hashes[] = {
        {"MD5", "060fa166607047dbc7db063c7eb46371"},
        {"SHA-1", "5916cf9e3d195c5e81bf767ab768431e05920076"},
        {"SHA-256", "e689f4050ddbc5efbed6ffad45c90f3cf270216da7e34486a58b1dfa07b1488c"},
    };
    int number = 10;
    for (const auto& [algorithm, digest] : hashes) {
        const std::string name = "Hash." + std::to_string(number);
        values.add({{name + ".Name", algorithm}, {name + ".Source", digest}});
        values[name + ".Image"] = digest;
        number += 10;
    }
}

}  // namespace

Texts laboratoryData() {
    return {
        {"Lab.Name", "Brackwater & Lindqvell Data Forensics"},
        {"Lab.Address", "14 Tannery Quay, 3rd floor, Port Ellery"},
        {"Lab.Phone", "+1 555 0142"},
        {"Lab.Mail", "imaging@brackwater.example"},
        {"Case.Number", "2026-0117"},
        {"Case.Title", "Orrin & Vale Logistics: dispatch server"},
        {"Case.Client", "Orrin & Vale Logistics, legal department"},
        {"Case.Reference", "OV-LEG/4471"},
        {"Examiner.Name", "Marta Ellingrove"},
        {"Reviewer.Name", "Tomas Wendelkamp"},
    };
}

Texts acquisitionRemarks() {
    return {
        {"Report.Number", "AR-2026-0117-03"},
        {"Evidence.Item", "03"},
        {"Evidence.Description", "3.5-inch disk from bay 2, label \"A&B archive\""},
        {"Evidence.Seal", "00418, intact on receipt"},
        {"Evidence.Condition", "Case scratched, connector clean, no unusual noise"},
        {"Note.10.Lang", "en"},
        {"Note.10.Text",
         "The device was received in a sealed antistatic bag. Six small areas stayed unreadable "
         "after several attempts each; none of them touches the partition table. The label reads "
         "\"A&B archive, do not erase\"."},
        {"Note.20.Lang", "de"},
        {"Note.20.Text",
         "Das Gerät lief ohne auffällige Geräusche, höchste Temperatur 41 °C. Die nicht lesbaren "
         "Bereiche wurden zusätzlich rückwärts gelesen, ohne Erfolg. Rückgabe an den Auftraggeber "
         "in neuer Schutzhülle, Siegel 00433."},
        {"Note.30.Lang", "ru"},
        {"Note.30.Text",
         "Копия снята через аппаратный блокиратор записи. Нечитаемые секторы заполнены нулями, их "
         "адреса приведены в таблице. Рекомендуется хранить оригинал выключенным и без "
         "необходимости не подключать."},
    };
}

Values acquisitionValues() {
    Values values = {
        {"Device.Model", "Tarnholm TH500-S7"},
        {"Device.Serial", "TH7K-40219-883C"},
        {"Device.Firmware", "S7.11"},
        {"Device.Interface", "SATA, 6 Gbit/s"},
        {"Device.Sectors", 976773168},
        {"Device.SectorSize", {sectorSize, Hint::Size}},
        {"Device.Capacity", {500107862016, Hint::Size}},
        {"Acquisition.Tool", "Quillstone Imager 3.4.1"},
        {"Acquisition.WriteBlocker", "Hardware bridge WB-2, serial 00937"},
        {"Acquisition.Format", "Raw sectors in segments"},
        {"Acquisition.Path", "/evidence/2026-0117/item-03/disk.0001.img"},
        {"Acquisition.Start", moment(1773044047)},
        {"Acquisition.End", moment(1773047808)},
        {"Acquisition.Duration", 3761},
        {"Acquisition.SegmentSize", {4294967296, Hint::Size}},
        {"Acquisition.Segments", 117},
        {"Acquisition.Result", "completed"},
        {"Evidence.Received", moment(1772811600)},
        {"Report.Created", moment(1773072300)},
    };
    addSpeeds(values);
    addBadAreas(values);
    addHashes(values);
    std::array<std::uint8_t, FirstSectorSize> sector = {};
    makeFirstSector(sector.data());
    values["Sector.First"] = sector;
    return values;
}
