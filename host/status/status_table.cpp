// The texts are for every host: they name functions and files. rgen has texts of its own about its
// options.
//
// SPDX-License-Identifier: MIT
#include "status/status_table.h"

#include <iterator>

namespace rgenh {
namespace {

constexpr StatusExplanation rows[] = {
    {RGEN_OK,
     "RGEN_OK",
     {"The operation did what was asked",
      "The library looks neither at the converter's exit code nor at its file, so a pdf can be "
      "missing all the same",
      "A disk that is full while a report file is written goes unnoticed, too"},
     "Look at the file; rgenh_verifyPdf checks a pdf."},
    {RGEN_E_BAD_PARAMETER,
     "RGEN_E_BAD_PARAMETER",
     {"The host passes a null pointer as generator, request, result, path or set",
      "A raw input dump was asked for without any value",
      "The generator could not be created because memory is exhausted, and its null handle is "
      "used"},
     "Compare the arguments with the comments in rgen.h or rgen_host.h, and pass at least one "
     "value to a raw input dump."},
    {RGEN_E_DIR_NOT_FOUND,
     "RGEN_E_DIR_NOT_FOUND",
     {"The path of the data folder is misspelt",
      "The path is relative, and the program runs in another folder",
      "The folder is on a drive that is not connected"},
     "Pass rgen_setDataDirPath the folder that contains \".rgen\", best as an absolute path; "
     "\"rgen init DIR\" makes such a folder."},
    {RGEN_E_CREATE_DIR,
     "RGEN_E_CREATE_DIR",
     {"Another program created the data directory \".rgen\" at the same moment"},
     "Call rgen_setDataDirPath again, because the generator has forgotten the path."},
    {RGEN_E_CREATE_CONFIG,
     "RGEN_E_CREATE_CONFIG",
     {"There is no right to write into the data directory, where config.xml is missing",
      "The disk is full or can only be read",
      "config.xml is a symbolic link to a place that does not exist"},
     "Check the rights and the free space of the data directory, which \"rgen doctor\" examines; "
     "\"rgen init DIR\" makes a new one."},
    {RGEN_E_OPEN_CONFIG,
     "RGEN_E_OPEN_CONFIG",
     {"config.xml is empty", "There is no right to read config.xml", "config.xml is a folder"},
     "Check the rights of config.xml, and compare it with the one that \"rgen init DIR\" makes in "
     "a new folder."},
    {RGEN_E_OPEN_PERSIST,
     "RGEN_E_OPEN_PERSIST",
     {"No persistent data has been stored yet, so its file is missing",
      "There is no right to read the file", "The file is empty, or a folder has its name"},
     "Store values, for example with rgenh_setPersistentValues; if the file exists, check its "
     "rights first."},
    {RGEN_E_EMPTY_INPUT,
     "RGEN_E_EMPTY_INPUT",
     {"No values were given, and the report type has no persistent data",
      "The persistent data file cannot be read, which a report ignores without an error",
      "The host passed only handles, which reports leave out"},
     "Pass at least one value or pair with the request, or store some, for example with "
     "rgenh_setPersistentValues."},
    {RGEN_E_GUID_NOT_IN_CONFIG,
     "RGEN_E_GUID_NOT_IN_CONFIG",
     {"The data directory is another one than intended, and its config.xml lacks the report type",
      "The GUID has a typing error, or a host filled the numbers of RgenGuid in the wrong byte "
      "order",
      "The entry in config.xml lacks a file name, or its GUID is written with braces"},
     "Compare the GUID with those in config.xml, which \"rgen types\" lists."},
    {RGEN_E_TEMPLATE_NOT_FOUND,
     "RGEN_E_TEMPLATE_NOT_FOUND",
     {"The report type has no template for this format in templates/<format> of the data directory",
      "config.xml names another file; on Linux upper and lower case count",
      "The format is empty or misspelt, so its folder is empty or missing"},
     "Choose a format that \"rgen types\" lists for the report type, or put the template into the "
     "folder of the format."},
    {RGEN_E_UNKNOWN_FORMAT,
     "RGEN_E_UNKNOWN_FORMAT",
     {"The format is written in capitals, which is the same folder on Windows",
      "The templates folder has a subfolder of a format that the library does not know"},
     "Pass the format as html, pdf or txt, in small letters."},
    {RGEN_E_OVERWRITE_OUTPUT,
     "RGEN_E_OVERWRITE_OUTPUT",
     {"Another program has the old report open", "The output path is a folder, a device or a pipe",
      "There is no right to remove the old report"},
     "Close the program that shows the old report, or choose another output path."},
    {RGEN_E_CREATE_OUTPUT,
     "RGEN_E_CREATE_OUTPUT",
     {"The folder of the output file does not exist",
      "There is no right to write into that folder, or another program holds the file open",
      "The path has characters that the file system does not allow, or for a delete-on-close file "
      "the code page of Windows"},
     "Make the folder, check the rights, or choose another output path."},
    {RGEN_E_WRITE_OUTPUT,
     "RGEN_E_WRITE_OUTPUT",
     {"The disk is full, or a quota is used up, before the first byte of a delete-on-close file",
      "The output path is a device or pipe that takes no bytes"},
     "Make room on the disk of the output path, or use the output mode RGEN_OUTPUT_BYTES."},
    {RGEN_E_UNKNOWN_OUTPUT_MODE,
     "RGEN_E_UNKNOWN_OUTPUT_MODE",
     {"The host passes an output mode other than 0, 1 or 2",
      "The host declares RgenCInputParams with another layout than rgen.h"},
     "Set outputMode to a value of RgenOutputMode."},
    {RGEN_E_WRITE_ALL_OUTPUT,
     "RGEN_E_WRITE_ALL_OUTPUT",
     {"The disk ran full, or a quota was used up, in the middle of a delete-on-close file",
      "The output path is a device or pipe that takes no more bytes"},
     "Make room on the disk of the output path, or use the output mode RGEN_OUTPUT_BYTES."},
    {RGEN_E_DELETE_PERSIST,
     "RGEN_E_DELETE_PERSIST",
     {"Another program has the persistent data file open",
      "There is no right to remove the old file",
      "The path of the file is a device, a pipe or a folder that is not empty"},
     "Close the other program and store the values again; config.xml names the file."},
    {RGEN_E_CREATE_PERSIST,
     "RGEN_E_CREATE_PERSIST",
     {"The folder does not exist in which the dump or the persistent data file belongs",
      "There is no right to write into that folder", "The disk is full"},
     "Make the folder, or make room, and repeat the call with all values: the library has removed "
     "the old file by then."},
    {RGEN_E_RUN_EXTERNAL,
     "RGEN_E_RUN_EXTERNAL",
     {"The converter \"vellum\" is not on the program search path of the host",
      "The program of that name is for another system or may not be run",
      "The output path and the base together are too long for a command line"},
     "Run \"rgen doctor\", which looks for the converter, or set skipExternalConversion."},
    {RGEN_E_EXTERNAL_FAILED,
     "RGEN_E_EXTERNAL_FAILED",
     {"A function of rgen_host.h has found no whole pdf; the converter's message says why",
      "The system does not tell how the converter ended, which is rare",
      "The host interferes with its child processes"},
     "Make the report again; if this comes back, read the message of the error record and run "
     "\"rgen doctor\"."},
    {RGEN_E_OPEN_SIMULATION,
     "RGEN_E_OPEN_SIMULATION",
     {"No operation returns this status: rgen_getSimulatedRawDataFromFile returns 0 instead",
      "The simulated input is missing or empty"},
     "Make a file that can be read with \"rgen simulate\"."},
    {RGEN_E_DELETE_DUMP,
     "RGEN_E_DELETE_DUMP",
     {"Another program has the old dump open", "The path is a device, a pipe or a folder in use",
      "There is no right to remove the old dump"},
     "Close the other program, or choose another path for the dump."},
    {RGEN_E_XPATH_DOCUMENT,
     "RGEN_E_XPATH_DOCUMENT",
     {"No operation returns this status"},
     "Check the number; rgen_status.h lists all statuses."},
    {RGEN_E_XPATH_CONTEXT,
     "RGEN_E_XPATH_CONTEXT",
     {"Memory is exhausted while config.xml or the persistent data is read"},
     "Close other programs, or look for what takes up the memory of the host, and try again."},
    {RGEN_E_XPATH_SEARCH,
     "RGEN_E_XPATH_SEARCH",
     {"Memory is exhausted while config.xml or the persistent data is read"},
     "Close other programs, or look for what takes up the memory of the host, and try again."},
    {RGEN_E_NO_PERSIST_IN_CONFIG,
     "RGEN_E_NO_PERSIST_IN_CONFIG",
     {"No operation returns this status"},
     "Check the number; rgen_status.h lists all statuses."},
    {RGEN_E_XPATH_NOT_NODE,
     "RGEN_E_XPATH_NOT_NODE",
     {"No operation returns this status"},
     "Check the number; rgen_status.h lists all statuses."},
    {RGEN_E_XPATH_NODE_EMPTY,
     "RGEN_E_XPATH_NODE_EMPTY",
     {"No configuration leads to this status: it is a safeguard against an empty file name"},
     "Check the number; rgen_status.h lists all statuses."},
    {RGEN_E_NO_TYPE_MAP,
     "RGEN_E_NO_TYPE_MAP",
     {"config.xml has no <type guid=\"...\"> inside <config><reportTypes>, or is no XML",
      "An element of config.xml is misspelt; upper and lower case count",
      "config.xml has a default namespace (xmlns), so its elements have other names"},
     "Compare config.xml with the one that \"rgen init DIR\" makes in a new folder."},
    {RGEN_E_NO_VALID_TYPE_MAP,
     "RGEN_E_NO_VALID_TYPE_MAP",
     {"No <type> of config.xml has both a <persistDataFile> and a <reportTypeFile> with a text",
      "The GUIDs are not written as 8-4-4-4-12 hexadecimal digits without braces"},
     "Compare config.xml with the one that \"rgen init DIR\" makes in a new folder."},
    {RGEN_E_NO_PERSIST_VALUES,
     "RGEN_E_NO_PERSIST_VALUES",
     {"The last persistent value has been removed",
      "The file has no <property name=\"...\"> inside <data><properties>, or is no XML"},
     "Store values, for example with rgenh_setPersistentValues."},
    {RGEN_E_NO_VALID_PERSIST_VALUES,
     "RGEN_E_NO_VALID_PERSIST_VALUES",
     {"Every value in the persistent data lacks its text, or has nothing but blanks",
      "Every value lacks its name"},
     "Store values that have a name and a text, for example with rgenh_setPersistentValues."},
    {RGEN_E_XSLT_PARSE,
     "RGEN_E_XSLT_PARSE",
     {"An XPath expression of the template has an error, or an xsl:import or xsl:include names "
      "a file by a relative path",
      "The template is empty, cannot be read, or is no XSLT stylesheet",
      "A translation with an apostrophe breaks the XPath text that it is inserted into"},
     "Make the report without a translate callback to rule out the translations, then undo the "
     "last change of the template."},
    {RGEN_E_XSLT_APPLY,
     "RGEN_E_XSLT_APPLY",
     {"The template uses a variable, a function or a named template that does not exist; the "
      "functions of EXSLT do not",
      "Templates call one another 3,000 levels deep (1,500 from inside xsl:if or xsl:choose), or "
      "too deep for the stack of the thread; on a fiber on Linux that is about forty levels",
      "The template ends itself with <xsl:message terminate=\"yes\">"},
     "Undo the last change of the template; rgen_dumpRawInputDataToFile writes the values as it "
     "sees them."},
    {RGEN_E_XSLT_RESULT,
     "RGEN_E_XSLT_RESULT",
     {"The template produces nothing, often because the values that it shows are missing",
      "The XML of the template has a flaw, and what follows it is left out"},
     "Compare the names in the template with those of the passed values, which "
     "rgen_dumpRawInputDataToFile writes, and of the stored values."},
    {RGEN_E_UNKNOWN,
     "RGEN_E_UNKNOWN",
     {"A function of rgen_host.h failed for a reason without a status: memory, the file system, a "
      "text that is not UTF-8, a translator",
      "No function of rgen.h returns this status"},
     "Read the kind and the message of the error record."},
    {RGEN_CANCELED,
     "RGEN_CANCELED",
     {"The host called rgen_cancel or rgenh_cancelJob", "Ctrl-C interrupted \"rgen report\""},
     "Make the report again; a converter that was running may have left a file."},
};

}  // namespace

std::size_t statusCount() {
    return std::size(rows);
}

const StatusExplanation& statusAt(std::size_t index) {
    return rows[index];
}

const StatusExplanation* findStatus(RgenStatus status) {
    for (const StatusExplanation& row : rows) {
        if (row.status == status) return &row;
    }
    return nullptr;
}

const char* statusText(RgenStatus status) {
    // The function only compares the handle with null.
    static const char anyHandle = 0;
    return rgen_getStatusCodeDescription(reinterpret_cast<const RgenReportGenerator*>(&anyHandle),
                                         status);
}

}  // namespace rgenh
