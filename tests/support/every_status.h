/*
 * All statuses with the number and the text that each has forever, in the order of rgen_status.h.
 * For C and C++.
 *
 * SPDX-License-Identifier: MIT
 */
#ifndef RGEN_TESTS_SUPPORT_EVERY_STATUS_H
#define RGEN_TESTS_SUPPORT_EVERY_STATUS_H

#include <stdint.h>

#include "strata_repgenlib/rgen_status.h"

typedef struct RgenDescribedStatus {
    RgenStatus status;
    uint32_t number;
    const char* name;
    const char* text;
} RgenDescribedStatus;

#ifdef __cplusplus
constexpr
#else
static const
#endif
    RgenDescribedStatus everyStatus[37] = {
        {RGEN_OK, 0x00000000U, "RGEN_OK", "Operation completed successfully"},
        {RGEN_E_BAD_PARAMETER, 0xC0000001U, "RGEN_E_BAD_PARAMETER",
         "Bad function parameter passed"},
        {RGEN_E_DIR_NOT_FOUND, 0xC0000002U, "RGEN_E_DIR_NOT_FOUND", "Given dir path is not exist"},
        {RGEN_E_CREATE_DIR, 0xC0000003U, "RGEN_E_CREATE_DIR", "Cannot create directory"},
        {RGEN_E_CREATE_CONFIG, 0xC0000004U, "RGEN_E_CREATE_CONFIG", "Cannot create config file"},
        {RGEN_E_OPEN_CONFIG, 0xC0000005U, "RGEN_E_OPEN_CONFIG", "Cannot open config file"},
        {RGEN_E_OPEN_PERSIST, 0xC0000006U, "RGEN_E_OPEN_PERSIST",
         "Cannot open persistent data file"},
        {RGEN_E_EMPTY_INPUT, 0xC0000007U, "RGEN_E_EMPTY_INPUT",
         "Resulting intput dataset is empty"},
        {RGEN_E_GUID_NOT_IN_CONFIG, 0xC0000008U, "RGEN_E_GUID_NOT_IN_CONFIG",
         "Given guid(template) is not found in config"},
        {RGEN_E_TEMPLATE_NOT_FOUND, 0xC0000009U, "RGEN_E_TEMPLATE_NOT_FOUND",
         "Template is not found in folder"},
        {RGEN_E_UNKNOWN_FORMAT, 0xC000000AU, "RGEN_E_UNKNOWN_FORMAT",
         "Given output format is unknown"},
        {RGEN_E_OVERWRITE_OUTPUT, 0xC000000BU, "RGEN_E_OVERWRITE_OUTPUT",
         "Cannot overwrite output file"},
        {RGEN_E_CREATE_OUTPUT, 0xC000000CU, "RGEN_E_CREATE_OUTPUT", "Cannot create output file"},
        {RGEN_E_WRITE_OUTPUT, 0xC000000DU, "RGEN_E_WRITE_OUTPUT", "Cannot write to output file"},
        {RGEN_E_UNKNOWN_OUTPUT_MODE, 0xC000000EU, "RGEN_E_UNKNOWN_OUTPUT_MODE",
         "Unknown output mode"},
        {RGEN_E_WRITE_ALL_OUTPUT, 0xC000000FU, "RGEN_E_WRITE_ALL_OUTPUT",
         "Cannot write all data to output file"},
        {RGEN_E_DELETE_PERSIST, 0xC0000010U, "RGEN_E_DELETE_PERSIST",
         "Cannot delete persistent data file"},
        {RGEN_E_CREATE_PERSIST, 0xC0000011U, "RGEN_E_CREATE_PERSIST",
         "Cannot create persistent data file"},
        {RGEN_E_RUN_EXTERNAL, 0xC0000012U, "RGEN_E_RUN_EXTERNAL", "Cannot run external program"},
        {RGEN_E_EXTERNAL_FAILED, 0xC0000013U, "RGEN_E_EXTERNAL_FAILED",
         "An error occured during external program run"},
        {RGEN_E_OPEN_SIMULATION, 0xC0000014U, "RGEN_E_OPEN_SIMULATION",
         "Cannot open external simulation raw data file"},
        {RGEN_E_DELETE_DUMP, 0xC0000015U, "RGEN_E_DELETE_DUMP",
         "Cannot delete existing raw data dump file"},
        {RGEN_E_XPATH_DOCUMENT, 0xC0010001U, "RGEN_E_XPATH_DOCUMENT",
         "Cannot create xpath document"},
        {RGEN_E_XPATH_CONTEXT, 0xC0010002U, "RGEN_E_XPATH_CONTEXT", "Cannot create xpath context"},
        {RGEN_E_XPATH_SEARCH, 0xC0010003U, "RGEN_E_XPATH_SEARCH", "Cannot create xpath search"},
        {RGEN_E_NO_PERSIST_IN_CONFIG, 0xC0010004U, "RGEN_E_NO_PERSIST_IN_CONFIG",
         "No persistent data in config"},
        {RGEN_E_XPATH_NOT_NODE, 0xC0010005U, "RGEN_E_XPATH_NOT_NODE",
         "Returned xpath result is not node"},
        {RGEN_E_XPATH_NODE_EMPTY, 0xC0010006U, "RGEN_E_XPATH_NODE_EMPTY",
         "Xpath node found but empty"},
        {RGEN_E_NO_TYPE_MAP, 0xC0010007U, "RGEN_E_NO_TYPE_MAP",
         "No report type map is found in config"},
        {RGEN_E_NO_VALID_TYPE_MAP, 0xC0010008U, "RGEN_E_NO_VALID_TYPE_MAP",
         "No valid values in reports type map in config"},
        {RGEN_E_NO_PERSIST_VALUES, 0xC0010009U, "RGEN_E_NO_PERSIST_VALUES",
         "No values in persistent data map"},
        {RGEN_E_NO_VALID_PERSIST_VALUES, 0xC001000AU, "RGEN_E_NO_VALID_PERSIST_VALUES",
         "No valid values in persistent data map"},
        {RGEN_E_XSLT_PARSE, 0xC0020001U, "RGEN_E_XSLT_PARSE", "Cannot proceed xslt template file"},
        {RGEN_E_XSLT_APPLY, 0xC0020002U, "RGEN_E_XSLT_APPLY", "Cannot apply xslt template to xml"},
        {RGEN_E_XSLT_RESULT, 0xC0020003U, "RGEN_E_XSLT_RESULT",
         "Cannot make result xpath-xslt string"},
        {RGEN_E_UNKNOWN, 0xC000FFFFU, "RGEN_E_UNKNOWN", "Unknown error"},
        {RGEN_CANCELED, 0x80000001U, "RGEN_CANCELED", "Canceled by request"},
};

#endif
