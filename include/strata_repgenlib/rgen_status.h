/*
 * The 37 status values of strata_repgenlib. rgen.h includes this file; a host includes rgen.h.
 * rgen_getStatusCodeDescription returns an English description of each.
 *
 * SPDX-License-Identifier: MIT
 */
#ifndef STRATA_REPGENLIB_RGEN_STATUS_H
#define STRATA_REPGENLIB_RGEN_STATUS_H

#include <stdint.h>

/**
 * Outcome of an operation: zero or positive is success, negative is failure.
 *
 * The upper half of the number is the group: 0x0000 success; 0xC000 arguments, directories, files
 * and the converter; 0xC001 reading the configuration and the persistent data; 0xC002 the template;
 * 0x8000 cancellation.
 */
typedef int32_t RgenStatus;

/**
 * The status with an unsigned number, as a constant of type RgenStatus; in C++ without a C cast.
 * The preprocessor, which knows no types, cannot compare statuses.
 */
#ifdef __cplusplus
#define RGEN_STATUS(number) (static_cast<RgenStatus>(number))
#else
#define RGEN_STATUS(number) ((RgenStatus)(number))
#endif

/** The operation did what was asked. */
#define RGEN_OK RGEN_STATUS(0x00000000U)
/** A required pointer argument is null. */
#define RGEN_E_BAD_PARAMETER RGEN_STATUS(0xC0000001U)
/** Nothing exists at the path passed to rgen_setDataDirPath. */
#define RGEN_E_DIR_NOT_FOUND RGEN_STATUS(0xC0000002U)
/** The data directory was missing, and somebody else has just created it; set the path again. */
#define RGEN_E_CREATE_DIR RGEN_STATUS(0xC0000003U)
/** The default config.xml cannot be written. */
#define RGEN_E_CREATE_CONFIG RGEN_STATUS(0xC0000004U)
/** config.xml cannot be opened, or no part of it can be parsed. */
#define RGEN_E_OPEN_CONFIG RGEN_STATUS(0xC0000005U)
/** The persistent data file is missing, or no part of it can be parsed. */
#define RGEN_E_OPEN_PERSIST RGEN_STATUS(0xC0000006U)
/** Values, pairs and persistent data together hold no property. */
#define RGEN_E_EMPTY_INPUT RGEN_STATUS(0xC0000007U)
/** config.xml has no usable entry for the GUID. */
#define RGEN_E_GUID_NOT_IN_CONFIG RGEN_STATUS(0xC0000008U)
/** There is no template file in the folder of the output format. */
#define RGEN_E_TEMPLATE_NOT_FOUND RGEN_STATUS(0xC0000009U)
/** The output format is not "html", "pdf" or "txt". */
#define RGEN_E_UNKNOWN_FORMAT RGEN_STATUS(0xC000000AU)
/** The output path is a directory, or the old output file cannot be removed. */
#define RGEN_E_OVERWRITE_OUTPUT RGEN_STATUS(0xC000000BU)
/** The output file, or the temporary HTML file next to it, cannot be created. */
#define RGEN_E_CREATE_OUTPUT RGEN_STATUS(0xC000000CU)
/** Writing the delete-on-close file failed. */
#define RGEN_E_WRITE_OUTPUT RGEN_STATUS(0xC000000DU)
/** The output mode is not 0, 1 or 2. */
#define RGEN_E_UNKNOWN_OUTPUT_MODE RGEN_STATUS(0xC000000EU)
/** Only a part of the bytes could be written to the delete-on-close file. */
#define RGEN_E_WRITE_ALL_OUTPUT RGEN_STATUS(0xC000000FU)
/** The old persistent data file cannot be removed. */
#define RGEN_E_DELETE_PERSIST RGEN_STATUS(0xC0000010U)
/** The persistent data file, or the dump file, cannot be written. */
#define RGEN_E_CREATE_PERSIST RGEN_STATUS(0xC0000011U)
/** The converter "vellum" cannot be started. */
#define RGEN_E_RUN_EXTERNAL RGEN_STATUS(0xC0000012U)
/** The exit code of the converter cannot be queried. */
#define RGEN_E_EXTERNAL_FAILED RGEN_STATUS(0xC0000013U)
/** The simulation file is missing, or no part of it can be parsed (used internally only). */
#define RGEN_E_OPEN_SIMULATION RGEN_STATUS(0xC0000014U)
/** The old dump file cannot be removed. */
#define RGEN_E_DELETE_DUMP RGEN_STATUS(0xC0000015U)
/** Described, but returned by no operation. */
#define RGEN_E_XPATH_DOCUMENT RGEN_STATUS(0xC0010001U)
/** libxml2 cannot create an XPath context (out of memory). */
#define RGEN_E_XPATH_CONTEXT RGEN_STATUS(0xC0010002U)
/** libxml2 cannot evaluate an XPath expression (out of memory). */
#define RGEN_E_XPATH_SEARCH RGEN_STATUS(0xC0010003U)
/** Described, but returned by no operation. */
#define RGEN_E_NO_PERSIST_IN_CONFIG RGEN_STATUS(0xC0010004U)
/** Described, but returned by no operation. */
#define RGEN_E_XPATH_NOT_NODE RGEN_STATUS(0xC0010005U)
/** A file name found in the configuration is empty (a safeguard that no file triggers). */
#define RGEN_E_XPATH_NODE_EMPTY RGEN_STATUS(0xC0010006U)
/** config.xml has no "type" element with a "guid" attribute under /config/reportTypes. */
#define RGEN_E_NO_TYPE_MAP RGEN_STATUS(0xC0010007U)
/** No "type" element of config.xml has a valid GUID and both file names. */
#define RGEN_E_NO_VALID_TYPE_MAP RGEN_STATUS(0xC0010008U)
/** The persistent data file has no named "property" element. */
#define RGEN_E_NO_PERSIST_VALUES RGEN_STATUS(0xC0010009U)
/** No "property" of the persistent data file has both a name and a text. */
#define RGEN_E_NO_VALID_PERSIST_VALUES RGEN_STATUS(0xC001000AU)
/** The template cannot be read, parsed or compiled. */
#define RGEN_E_XSLT_PARSE RGEN_STATUS(0xC0020001U)
/** The template failed while it was applied to the data. */
#define RGEN_E_XSLT_APPLY RGEN_STATUS(0xC0020002U)
/** The template produced no output. */
#define RGEN_E_XSLT_RESULT RGEN_STATUS(0xC0020003U)
/** Catch-all for a failure without a status of its own; returned by no operation. */
#define RGEN_E_UNKNOWN RGEN_STATUS(0xC000FFFFU)
/** rgen_cancel reached the generation. Negative, so it counts as a failure. */
#define RGEN_CANCELED RGEN_STATUS(0x80000001U)

#endif
