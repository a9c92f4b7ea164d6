// SPDX-License-Identifier: MIT
#include "commands/status_advice.h"

namespace cli {
namespace {

struct Advice {
    RgenStatus status;
    const char* text;
};

constexpr Advice rows[] = {
    {RGEN_OK, "\"rgen report\" verifies a pdf by itself."},
    {RGEN_E_BAD_PARAMETER, "Give \"rgen dump\" at least one value."},
    {RGEN_E_DIR_NOT_FOUND,
     "Give the right folder to --data-dir, or make one with \"rgen init DIR\"."},
    {RGEN_E_CREATE_DIR, "Run the command again."},
    {RGEN_E_OPEN_PERSIST,
     "Store values with \"rgen persist set\"; only \"rgen persist replace\" overwrites a file that "
     "exists but cannot be read."},
    {RGEN_E_EMPTY_INPUT,
     "Give values with --data, --set or --pair, or store some with \"rgen persist set\"."},
    {RGEN_E_UNKNOWN_FORMAT, "Give the format to --format."},
    {RGEN_E_OVERWRITE_OUTPUT, "Give another path to --output."},
    {RGEN_E_CREATE_OUTPUT, "Give another path to --output."},
    {RGEN_E_WRITE_OUTPUT, "Make room, or use --mode bytes."},
    {RGEN_E_UNKNOWN_OUTPUT_MODE, "The modes are --mode file, delete-on-close and bytes."},
    {RGEN_E_WRITE_ALL_OUTPUT, "Make room, or use --mode bytes."},
    {RGEN_E_DELETE_PERSIST, "Repeat \"rgen persist\"; \"rgen types --json\" names the file."},
    {RGEN_E_CREATE_PERSIST, "\"rgen persist\" puts the old file back."},
    {RGEN_E_RUN_EXTERNAL, "Give --no-convert to do without the converter."},
    {RGEN_E_DELETE_DUMP, "Give \"rgen dump\" another path with --output."},
    {RGEN_E_XPATH_DOCUMENT, "\"rgen explain\" without a status lists all statuses."},
    {RGEN_E_NO_PERSIST_IN_CONFIG, "\"rgen explain\" without a status lists all statuses."},
    {RGEN_E_XPATH_NOT_NODE, "\"rgen explain\" without a status lists all statuses."},
    {RGEN_E_XPATH_NODE_EMPTY, "\"rgen explain\" without a status lists all statuses."},
    {RGEN_E_NO_PERSIST_VALUES, "Store values with \"rgen persist set\"."},
    {RGEN_E_NO_VALID_PERSIST_VALUES, "Store values with \"rgen persist set\"."},
    {RGEN_E_XSLT_PARSE, "Leave --lang out to make the report without translations."},
    {RGEN_E_XSLT_APPLY, "\"rgen dump -o -\" shows the values."},
    {RGEN_E_XSLT_RESULT, "\"rgen dump -o -\" and \"rgen persist get\" show the names."},
    {RGEN_E_UNKNOWN, "\"rgen explain\" without a status lists all statuses."},
};

}  // namespace

const char* adviceOfRgen(RgenStatus status) {
    for (const Advice& row : rows) {
        if (row.status == status) return row.text;
    }
    return "";
}

}  // namespace cli
