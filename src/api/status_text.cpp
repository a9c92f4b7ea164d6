// The descriptions of the statuses in rgen_status.h, and the function that exports them. The texts
// are part of the interface, including their spelling ("is not exist", "intput", "occured"). The
// table is constant data: it needs no initialisation, so exit functions and destructors of a host's
// global objects can still use it.
//
// SPDX-License-Identifier: MIT
#include "api/status_text.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "strata_repgenlib/rgen.h"

namespace rgen {
namespace {

struct DescribedStatus {
    Status status;
    const char* text;
};

// On purpose: misspelt texts stay as they are, hosts compare them.
constexpr DescribedStatus describedStatuses[] = {
    {RGEN_OK, "Operation completed successfully"},
    {RGEN_E_BAD_PARAMETER, "Bad function parameter passed"},
    {RGEN_E_DIR_NOT_FOUND, "Given dir path is not exist"},
    {RGEN_E_CREATE_DIR, "Cannot create directory"},
    {RGEN_E_CREATE_CONFIG, "Cannot create config file"},
    {RGEN_E_OPEN_CONFIG, "Cannot open config file"},
    {RGEN_E_OPEN_PERSIST, "Cannot open persistent data file"},
    {RGEN_E_EMPTY_INPUT, "Resulting intput dataset is empty"},
    {RGEN_E_GUID_NOT_IN_CONFIG, "Given guid(template) is not found in config"},
    {RGEN_E_TEMPLATE_NOT_FOUND, "Template is not found in folder"},
    {RGEN_E_UNKNOWN_FORMAT, "Given output format is unknown"},
    {RGEN_E_OVERWRITE_OUTPUT, "Cannot overwrite output file"},
    {RGEN_E_CREATE_OUTPUT, "Cannot create output file"},
    {RGEN_E_WRITE_OUTPUT, "Cannot write to output file"},
    {RGEN_E_UNKNOWN_OUTPUT_MODE, "Unknown output mode"},
    {RGEN_E_WRITE_ALL_OUTPUT, "Cannot write all data to output file"},
    {RGEN_E_DELETE_PERSIST, "Cannot delete persistent data file"},
    {RGEN_E_CREATE_PERSIST, "Cannot create persistent data file"},
    {RGEN_E_RUN_EXTERNAL, "Cannot run external program"},
    {RGEN_E_EXTERNAL_FAILED, "An error occured during external program run"},
    {RGEN_E_OPEN_SIMULATION, "Cannot open external simulation raw data file"},
    {RGEN_E_DELETE_DUMP, "Cannot delete existing raw data dump file"},
    {RGEN_E_XPATH_DOCUMENT, "Cannot create xpath document"},
    {RGEN_E_XPATH_CONTEXT, "Cannot create xpath context"},
    {RGEN_E_XPATH_SEARCH, "Cannot create xpath search"},
    {RGEN_E_NO_PERSIST_IN_CONFIG, "No persistent data in config"},
    {RGEN_E_XPATH_NOT_NODE, "Returned xpath result is not node"},
    {RGEN_E_XPATH_NODE_EMPTY, "Xpath node found but empty"},
    {RGEN_E_NO_TYPE_MAP, "No report type map is found in config"},
    {RGEN_E_NO_VALID_TYPE_MAP, "No valid values in reports type map in config"},
    {RGEN_E_NO_PERSIST_VALUES, "No values in persistent data map"},
    {RGEN_E_NO_VALID_PERSIST_VALUES, "No valid values in persistent data map"},
    {RGEN_E_XSLT_PARSE, "Cannot proceed xslt template file"},
    {RGEN_E_XSLT_APPLY, "Cannot apply xslt template to xml"},
    {RGEN_E_XSLT_RESULT, "Cannot make result xpath-xslt string"},
    {RGEN_E_UNKNOWN, "Unknown error"},
    {RGEN_CANCELED, "Canceled by request"},
};

}  // namespace

const char* statusText(Status status) noexcept {
    const auto* end = std::end(describedStatuses);
    const auto* found =
        std::find_if(std::begin(describedStatuses), end,
                     [status](const DescribedStatus& row) { return row.status == status; });
    if (found != end) return found->text;
    constexpr std::uint32_t failureBits = 0xC0000000;
    if ((static_cast<std::uint32_t>(status) & failureBits) != 0) return "Undescribed error";
    return unknownCodeText(status);
}

const char* unknownCodeText(Status status) noexcept {
    // On purpose: no negative number comes this far, so no host ever sees the first text.
    return failed(status) ? "Unknown message code" : "Unknown code.";
}

}  // namespace rgen

const char* rgen_getStatusCodeDescription(const RgenReportGenerator* generator, RgenStatus status) {
    return generator == nullptr ? "bad function parameter" : rgen::statusText(status);
}
