/*
 * The 37 status values of strata_repgenlib. rgen.h includes this file; a host includes rgen.h.
 * rgen_getStatusCodeDescription gives the English sentence for each of them.
 *
 * SPDX-License-Identifier: MIT
 */
#ifndef STRATA_REPGENLIB_RGEN_STATUS_H
#define STRATA_REPGENLIB_RGEN_STATUS_H

#include <stdint.h>

/**
 * Outcome of an operation: zero or positive is success, negative is failure.
 *
 * The upper half tells the group: 0x0000 success; 0xC000 arguments, directories, files and the
 * converter; 0xC001 reading the configuration and the persistent data; 0xC002 the template;
 * 0x8000 cancellation.
 */
typedef int32_t RgenStatus;

/** The operation did what was asked. */
#define RGEN_OK ((RgenStatus)0x00000000)
/** A required pointer argument is null. */
#define RGEN_E_BAD_PARAMETER ((RgenStatus)0xC0000001)
/** The path given to rgen_setDataDirPath names nothing. */
#define RGEN_E_DIR_NOT_FOUND ((RgenStatus)0xC0000002)
/** The data directory is missing and somebody else created it meanwhile; set the path again. */
#define RGEN_E_CREATE_DIR ((RgenStatus)0xC0000003)
/** The default config.xml cannot be written. */
#define RGEN_E_CREATE_CONFIG ((RgenStatus)0xC0000004)
/** config.xml cannot be opened, or nothing of it parses. */
#define RGEN_E_OPEN_CONFIG ((RgenStatus)0xC0000005)
/** The persistent data file is missing, or nothing of it parses. */
#define RGEN_E_OPEN_PERSIST ((RgenStatus)0xC0000006)
/** Values, pairs and persistent data together hold no property. */
#define RGEN_E_EMPTY_INPUT ((RgenStatus)0xC0000007)
/** config.xml has no usable entry for the GUID. */
#define RGEN_E_GUID_NOT_IN_CONFIG ((RgenStatus)0xC0000008)
/** No template file lies in the folder of the output format. */
#define RGEN_E_TEMPLATE_NOT_FOUND ((RgenStatus)0xC0000009)
/** The output format is not "html", "pdf" or "txt". */
#define RGEN_E_UNKNOWN_FORMAT ((RgenStatus)0xC000000A)
/** The output path is a directory, or the old output file cannot be removed. */
#define RGEN_E_OVERWRITE_OUTPUT ((RgenStatus)0xC000000B)
/** The output file, or the temporary HTML file beside it, cannot be created. */
#define RGEN_E_CREATE_OUTPUT ((RgenStatus)0xC000000C)
/** Writing the delete-on-close file failed. */
#define RGEN_E_WRITE_OUTPUT ((RgenStatus)0xC000000D)
/** The output mode is not 0, 1 or 2. */
#define RGEN_E_UNKNOWN_OUTPUT_MODE ((RgenStatus)0xC000000E)
/** The delete-on-close file took fewer bytes than it was given. */
#define RGEN_E_WRITE_ALL_OUTPUT ((RgenStatus)0xC000000F)
/** The old persistent data file cannot be removed. */
#define RGEN_E_DELETE_PERSIST ((RgenStatus)0xC0000010)
/** The persistent data file, or the dump file, cannot be written. */
#define RGEN_E_CREATE_PERSIST ((RgenStatus)0xC0000011)
/** The converter "vellum" cannot be started. */
#define RGEN_E_RUN_EXTERNAL ((RgenStatus)0xC0000012)
/** The exit code of the converter cannot be queried. */
#define RGEN_E_EXTERNAL_FAILED ((RgenStatus)0xC0000013)
/** The simulation file is missing, or nothing of it parses (seen inside the library only). */
#define RGEN_E_OPEN_SIMULATION ((RgenStatus)0xC0000014)
/** The old dump file cannot be removed. */
#define RGEN_E_DELETE_DUMP ((RgenStatus)0xC0000015)
/** Described, but returned by no operation. */
#define RGEN_E_XPATH_DOCUMENT ((RgenStatus)0xC0010001)
/** libxml2 cannot create an XPath context (out of memory). */
#define RGEN_E_XPATH_CONTEXT ((RgenStatus)0xC0010002)
/** libxml2 cannot evaluate an XPath expression (out of memory). */
#define RGEN_E_XPATH_SEARCH ((RgenStatus)0xC0010003)
/** Described, but returned by no operation. */
#define RGEN_E_NO_PERSIST_IN_CONFIG ((RgenStatus)0xC0010004)
/** Described, but returned by no operation. */
#define RGEN_E_XPATH_NOT_NODE ((RgenStatus)0xC0010005)
/** A file name found in the configuration is empty (a safeguard that no file triggers). */
#define RGEN_E_XPATH_NODE_EMPTY ((RgenStatus)0xC0010006)
/** config.xml has no "type" element with a "guid" attribute under /config/reportTypes. */
#define RGEN_E_NO_TYPE_MAP ((RgenStatus)0xC0010007)
/** No "type" element of config.xml has a valid GUID and both file names. */
#define RGEN_E_NO_VALID_TYPE_MAP ((RgenStatus)0xC0010008)
/** The persistent data file has no named "property" element. */
#define RGEN_E_NO_PERSIST_VALUES ((RgenStatus)0xC0010009)
/** No "property" of the persistent data file has both a name and a text. */
#define RGEN_E_NO_VALID_PERSIST_VALUES ((RgenStatus)0xC001000A)
/** The template cannot be read, parsed or compiled. */
#define RGEN_E_XSLT_PARSE ((RgenStatus)0xC0020001)
/** The template failed while it was applied to the data. */
#define RGEN_E_XSLT_APPLY ((RgenStatus)0xC0020002)
/** The template produced no output. */
#define RGEN_E_XSLT_RESULT ((RgenStatus)0xC0020003)
/** Catch-all for a failure without a status of its own; returned by no operation. */
#define RGEN_E_UNKNOWN ((RgenStatus)0xC000FFFF)
/** rgen_cancel reached the generation. Negative, so it counts as a failure. */
#define RGEN_CANCELED ((RgenStatus)0x80000001)

#endif
