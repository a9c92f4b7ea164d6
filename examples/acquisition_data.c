/*
 * The values of the acquisition report. Names of list entries have three parts, "Speed.010.Value":
 * the template sorts by the number in the middle, so the order of the values does not matter.
 *
 * SPDX-License-Identifier: MIT
 */
#include "acquisition_data.h"

#include <stdio.h>

#include "first_sector.h"

#define LENGTH_OF(array) (sizeof(array) / sizeof((array)[0]))

typedef struct TextEntry {
    const char* name;
    const char* text;
} TextEntry;

typedef struct NumberEntry {
    const char* name;
    int64_t number;
    uint64_t hint;
} NumberEntry;

typedef struct BadArea {
    int64_t sector;
    int64_t sectors;
    int64_t attempts;
    const char* cause;
} BadArea;

enum { SectorSize = 512, SpeedSampleDistance = 20 };

const RgenGuid acquisitionGuid = {
    0x5a0c6f1e, 0x3b74, 0x4e59, {0x9d, 0x21, 0x7c, 0x8e, 0x0f, 0x6a, 0x41, 0xb2}};

static const TextEntry persistentTexts[] = {
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

static const TextEntry pairTexts[] = {
    {"Report.Number", "AR-2026-0117-03"},
    {"Evidence.Item", "03"},
    {"Evidence.Description", "3.5-inch disk from bay 2, label \"A&B archive\""},
    {"Evidence.Seal", "00418, intact on receipt"},
    {"Evidence.Condition", "Case scratched, connector clean, no unusual noise"},
    {"Note.10.Lang", "en"},
    {"Note.10.Text",
     "The device was received in a sealed antistatic bag. Six small areas stayed unreadable after "
     "several attempts each; none of them touches the partition table. The label reads "
     "\"A&B archive, do not erase\"."},
    {"Note.20.Lang", "de"},
    {"Note.20.Text",
     "Das Gerät lief ohne auffällige Geräusche, höchste Temperatur 41 °C. Die nicht lesbaren "
     "Bereiche wurden zusätzlich rückwärts gelesen, ohne Erfolg. Rückgabe an den Auftraggeber in "
     "neuer Schutzhülle, Siegel 00433."},
    {"Note.30.Lang", "ru"},
    {"Note.30.Text",
     "Копия снята через аппаратный блокиратор записи. Нечитаемые секторы заполнены нулями, их "
     "адреса приведены в таблице. Рекомендуется хранить оригинал выключенным и без необходимости "
     "не подключать."},
};

static const TextEntry valueTexts[] = {
    {"Device.Model", "Tarnholm TH500-S7"},
    {"Device.Serial", "TH7K-40219-883C"},
    {"Device.Firmware", "S7.11"},
    {"Device.Interface", "SATA, 6 Gbit/s"},
    {"Acquisition.Tool", "Quillstone Imager 3.4.1"},
    {"Acquisition.WriteBlocker", "Hardware bridge WB-2, serial 00937"},
    {"Acquisition.Format", "Raw sectors in segments"},
    {"Acquisition.Path", "/evidence/2026-0117/item-03/disk.0001.img"},
    {"Acquisition.Result", "completed"},
    {"Hash.10.Name", "MD5"},
    {"Hash.10.Source", "060fa166607047dbc7db063c7eb46371"},
    {"Hash.10.Image", "060fa166607047dbc7db063c7eb46371"},
    {"Hash.20.Name", "SHA-1"},
    {"Hash.20.Source", "5916cf9e3d195c5e81bf767ab768431e05920076"},
    {"Hash.20.Image", "5916cf9e3d195c5e81bf767ab768431e05920076"},
    {"Hash.30.Name", "SHA-256"},
    {"Hash.30.Source", "e689f4050ddbc5efbed6ffad45c90f3cf270216da7e34486a58b1dfa07b1488c"},
    {"Hash.30.Image", "e689f4050ddbc5efbed6ffad45c90f3cf270216da7e34486a58b1dfa07b1488c"},
};

static const NumberEntry valueNumbers[] = {
    {"Report.Created", 1773072300, RGEN_HINT_DATE_TIME},
    {"Evidence.Received", 1772811600, RGEN_HINT_DATE_TIME},
    {"Device.Sectors", 976773168, RGEN_HINT_GENERIC},
    {"Device.SectorSize", SectorSize, RGEN_HINT_SIZE},
    {"Device.Capacity", INT64_C(500107862016), RGEN_HINT_SIZE},
    {"Acquisition.Start", 1773044047, RGEN_HINT_DATE_TIME},
    {"Acquisition.End", 1773047808, RGEN_HINT_DATE_TIME},
    {"Acquisition.Duration", 3761, RGEN_HINT_GENERIC},
    {"Acquisition.SegmentSize", INT64_C(4294967296), RGEN_HINT_SIZE},
    {"Acquisition.Segments", 117, RGEN_HINT_GENERIC},
};

/* Thousands of bytes per second, one sample every 20 GB. */
static const int64_t speeds[] = {
    201400, 200900, 199200, 198600, 195100, 181300, 192700, 189900, 187100,
    183600, 179800, 142500, 173900, 170200, 166800, 161500, 157900, 104600,
    91200,  146300, 140800, 134900, 128100, 112400, 114700, 106300,
};

static const BadArea badAreas[] = {
    {204818176, 16, 3, "uncorrectable"}, {431126528, 24, 3, "uncorrectable"},
    {431129600, 8, 3, "timeout"},        {688431104, 1024, 5, "uncorrectable"},
    {712903168, 256, 5, "not-found"},    {901775360, 48, 3, "uncorrectable"},
};

enum {
    NumberedNames = 2 * LENGTH_OF(speeds) + 5 * LENGTH_OF(badAreas),
    MostValues = LENGTH_OF(valueTexts) + LENGTH_OF(valueNumbers) + NumberedNames + 1
};

/* The values of a request, and what they point to. */
typedef struct Values {
    RgenhValue items[MostValues];
    uint64_t count;
    char names[NumberedNames][24];
    unsigned usedNames;
    uint8_t sector[FirstSectorSize];
} Values;

static void addNumber(Values* values, const char* name, int64_t number, uint64_t hint) {
    values->items[values->count++] = rgenh_integerValue(name, number, hint);
}

static void addText(Values* values, const char* name, const char* text) {
    values->items[values->count++] = rgenh_textValue(name, text);
}

/* "Err.5.Address" */
static const char* listName(Values* values, const char* list, unsigned number, const char* member) {
    char* name = values->names[values->usedNames++];
    snprintf(name, sizeof(values->names[0]), "%s.%u.%s", list, number, member);
    return name;
}

static void addSpeeds(Values* values) {
    for (unsigned i = 0; i < LENGTH_OF(speeds); ++i) {
        const int64_t position = INT64_C(1000000000) * SpeedSampleDistance * i;
        const unsigned number = (i + 1) * 10;
        addNumber(values, listName(values, "Speed", number, "Position"), position,
                  RGEN_HINT_ADDRESS);
        addNumber(values, listName(values, "Speed", number, "Value"), speeds[i] * 1000,
                  RGEN_HINT_SPEED);
    }
}

/* The numbers 5, 10, 15, ... leave room for areas that are found later. */
static void addBadAreas(Values* values) {
    for (unsigned i = 0; i < LENGTH_OF(badAreas); ++i) {
        const BadArea* area = &badAreas[i];
        const unsigned number = (i + 1) * 5;
        addNumber(values, listName(values, "Err", number, "Address"), area->sector * SectorSize,
                  RGEN_HINT_ADDRESS);
        addNumber(values, listName(values, "Err", number, "Sector"), area->sector,
                  RGEN_HINT_GENERIC);
        addNumber(values, listName(values, "Err", number, "Sectors"), area->sectors,
                  RGEN_HINT_GENERIC);
        addNumber(values, listName(values, "Err", number, "Attempts"), area->attempts,
                  RGEN_HINT_GENERIC);
        addText(values, listName(values, "Err", number, "Cause"), area->cause);
    }
}

static void fillValues(Values* values) {
    for (unsigned i = 0; i < LENGTH_OF(valueTexts); ++i) {
        addText(values, valueTexts[i].name, valueTexts[i].text);
    }
    for (unsigned i = 0; i < LENGTH_OF(valueNumbers); ++i) {
        addNumber(values, valueNumbers[i].name, valueNumbers[i].number, valueNumbers[i].hint);
    }
    addSpeeds(values);
    addBadAreas(values);
    makeFirstSector(values->sector);
    values->items[values->count++] =
        rgenh_bytesValue("Sector.First", values->sector, sizeof(values->sector));
}

static void fillTexts(RgenhValue* target, const TextEntry* entries, unsigned count) {
    for (unsigned i = 0; i < count; ++i) {
        target[i] = rgenh_textValue(entries[i].name, entries[i].text);
    }
}

RgenStatus storeAcquisitionData(RgenReportGenerator* generator, RgenhError* error) {
    RgenhValue texts[LENGTH_OF(persistentTexts)];
    fillTexts(texts, persistentTexts, LENGTH_OF(persistentTexts));
    return rgenh_setPersistentValues(generator, &acquisitionGuid, texts, LENGTH_OF(texts), error);
}

RgenhRequest* newAcquisitionRequest(const char* format, uint64_t mode, const char* path,
                                    RgenhError* error) {
    RgenhValue pairs[LENGTH_OF(pairTexts)];
    Values values = {.count = 0};
    RgenhRequestParts parts = {.size = sizeof(RgenhRequestParts)};
    fillTexts(pairs, pairTexts, LENGTH_OF(pairTexts));
    fillValues(&values);
    parts.templateGuid = acquisitionGuid;
    parts.format = format;
    parts.outputMode = mode;
    parts.outputPath = path;
    parts.values = values.items;
    parts.valueCount = values.count;
    parts.pairs = pairs;
    parts.pairCount = LENGTH_OF(pairs);
    return rgenh_newRequest(&parts, error);
}
