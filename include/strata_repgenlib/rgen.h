/*
 * strata_repgenlib: report generation for native applications. This is the one header a host
 * includes. It needs C99 or C++11 and nothing but <stdint.h>.
 *
 * A host creates a generator, names a data directory and asks for reports: it hands over named,
 * typed values, the GUID of a report type, a format ("html", "pdf", "txt") and an output mode. The
 * library merges the values with the report type's stored ones, renders each as text, applies the
 * report type's XSLT template and delivers a file, an open handle or bytes.
 *
 * The conventions below hold for every function; the functions refer to them by their headings.
 *
 * HANDLES
 *   rgen_newReportGenerator returns an opaque handle, rgen_freeReportGenerator ends it. Any number
 *   of generators may exist side by side. Freeing a handle while another call on it runs is
 *   forbidden.
 *
 * RECORDS AND WHO FREES
 *   A host owns every record (usually on its stack). The buffers inside a record come from the
 *   process heap (malloc of the C runtime that the library uses): create them with the
 *   rgen_create... functions or let the library fill them, and give them back with the matching
 *   rgen_free... function, never with the host's allocator, which may be another one.
 *   A create function does not free what its target held before; creating into a filled record
 *   leaks. The same holds for records that an operation fills: they are overwritten, not freed
 *   first. A zero-filled record is a valid empty one and may be freed.
 *
 * TEXTS
 *   Texts are byte strings, read up to their terminating zero byte; the length field of a record is
 *   not consulted on the way in. Paths and XML are UTF-8. A path that is not valid UTF-8 throws an
 *   exception (see EXCEPTIONS) before its file is touched; two output paths are not checked, that
 *   of mode 2, which is not looked at, and that of mode 1 on Windows, which is taken in the ANSI
 *   code page. A null text pointer inside a record is the empty text; a null buffer of a byte array
 *   is an empty array; a null array is an empty set.
 *
 *   The text of a value or pair is read as XML content: "&" starts an entity or character
 *   reference, so a plain "&" must be written "&amp;". "<" and ">" are safe. Names are taken as
 *   they are. What stands between "&" and the next ";" is the name of the reference, whatever it
 *   holds: in a report "x &a b; y" becomes "x  y". Without a ";" the "&" alone is lost. A number
 *   ("&#12", "&#x41") ends at its first character that is no digit: without a ";" there, "&#" (or
 *   "&#x") and the digits are lost, so "x &#x41 y; z" becomes "x  y; z". A reference with "<" in
 *   its name, such as "&<b>;", is taken out everywhere: of reports, persistent data and dumps,
 *   which would hold it as markup.
 *
 *   Persistent data goes through this twice before it stands in a report, once when it is stored
 *   and once with the other values, so there "&" must be written "&amp;amp;"; what
 *   rgen_getPersistentData gives is one level less ("&amp;"). A reference that XML does not know is
 *   written to persistent data and dumps as it stands and damages them: "x &a b; y" is read back as
 *   "x  b; y", and every reference after it in the file is lost, those of other entries included
 *   ("1 < 2 &amp;amp; 3" is read back as "1  2 amp; 3"). The same damage is done by bytes that are
 *   not valid UTF-8, by U+FFFE and U+FFFF, in names as well, and in texts by references to these
 *   two or to surrogates ("&#xFFFE;", "&#xD800;"). The library stores all of them with status 0: a
 *   host that stores texts of others checks them first.
 *
 *   Control characters and bytes that are not valid UTF-8 go into text and HTML output as they are.
 *   XML output, persistent data and dumps have U+FFFD, as the reference "&#xFFFD;", in the place of
 *   a control character (tab and line feed stay, a carriage return becomes "&#13;"); bytes that are
 *   not valid UTF-8 go into these, too.
 *
 * STATUSES AND THE SUCCESS TEST
 *   A status that is zero or positive is success, a negative one is failure (cancellation too).
 *   rgen_status.h lists all of them, rgen_getStatusCodeDescription describes them in English.
 *
 * THREADS AND THE LOCK
 *   Every function may be called from any thread. Functions that take a generator share its one
 *   lock, which is held while the configuration is read, while a report is transformed (the
 *   translate callback included), and for moments to read or store settings, to register and to
 *   cancel. So every function of a generator but the dump, the simulated input, the status
 *   description and the free may wait for a transformation that runs on it. A transformation takes
 *   as long as its template does and cannot be cancelled. Whoever waits in rgen_cancel gets the
 *   lock before all others that wait, so it waits for at most one transformation or one reading of
 *   the configuration; cancels without a pause keep the generator from all other work. The others
 *   get the lock in no particular order. The lock is not held while a report is
 *   delivered: several reports can be generated on one generator at once, and a waiting converter
 *   blocks nobody. Transformations on one generator run one after the other; use one generator for
 *   each thread to run them side by side. Record functions touch their arguments only.
 *   A calling thread or fiber needs 256 KiB of stack (Windows: 512 KiB), of which the host may use
 *   24 KiB before the call. A template that recurses into the last 200 KiB (Windows: 256 KiB) ends
 *   with RGEN_E_XSLT_APPLY. Linux does not know how large the stacks of fibers and coroutines are:
 *   there the library counts on 256 KiB, and a template that uses more than 96 KiB ends likewise.
 *
 * THE CALLBACK
 *   The translate callback runs on the generating thread with the generator's lock held. It must
 *   not call the library for the same generator (that would wait for ever), must not throw an
 *   exception and must not return null. Callbacks that use other generators do so in one order on
 *   all threads: two that use each other's generator wait for ever. A callback must not switch to
 *   another fiber of the thread that calls the library: the calls of one thread end in the reverse
 *   order of their beginnings.
 *   What it returns becomes part of the template: "&", "<" and ">" must be escaped. An unknown
 *   reference, "]]>" or a control character in it takes the references ("&lt;", "&amp;") of all
 *   that follows in the template, with status 0.
 *
 * EXCEPTIONS
 *   Failures that have no status leave a function as C++ exceptions: std::bad_alloc (memory),
 *   std::range_error (a path or converter argument that is not valid UTF-8),
 *   boost::filesystem::filesystem_error, a std::runtime_error (the file system refuses for a reason
 *   other than "not found": access denied, path too long, an empty data directory path), and
 *   std::system_error (the lock). A C++ host that is built with the same compiler family may catch
 *   them; a host in another language is ended by them. To avoid them: call rgen_setDataDirPath
 *   before anything else, pass valid UTF-8, and have the rights to read and write the data
 *   directory. A function whose comment says "Exceptions: none" never throws one.
 *
 *   Where host and library have a C++ runtime each, every exception of the library that the host
 *   catches lowers the host's std::uncaught_exceptions() by one, for good: compare two counts, do
 *   not compare one with 0. That is so on Windows, and on Linux in a host with a static runtime
 *   (-static-libstdc++) which loads the library with dlopen or hides the runtime's symbols. A Linux
 *   host that is linked with both -static-libstdc++ and -static-libgcc cannot catch the exceptions:
 *   they abort it.
 *
 * FILES THAT ARE READ
 *   config.xml, persistent data, simulated input and templates are ordinary files, links to such
 *   files, and on Windows files behind a reparse point of any kind. A folder cannot be opened, nor,
 *   on Linux, a pipe, device or socket, and nothing waits: as config.xml it gives
 *   RGEN_E_OPEN_CONFIG, as persistent data RGEN_E_OPEN_PERSIST (a report goes on without persistent
 *   data), as template RGEN_E_XSLT_PARSE, as simulated input no values.
 *
 * FILES THAT ARE REPLACED
 *   The output of mode 0, persistent data and dumps replace what stands at their path: it is
 *   removed first, and the new file is written in its place. Nothing is atomic. On Linux a pipe,
 *   device or socket stays, and gives the status of a file that cannot be removed:
 *   RGEN_E_OVERWRITE_OUTPUT, RGEN_E_DELETE_PERSIST, RGEN_E_DELETE_DUMP.
 *
 * CONFIGURATION STATUSES
 *   Functions that take a report type's GUID first load the configuration: they create the data
 *   directory and a default config.xml when missing and look the GUID up. All of them can return
 *   RGEN_E_CREATE_DIR, RGEN_E_CREATE_CONFIG, RGEN_E_OPEN_CONFIG, RGEN_E_GUID_NOT_IN_CONFIG,
 *   RGEN_E_XPATH_CONTEXT, RGEN_E_XPATH_SEARCH, RGEN_E_XPATH_NODE_EMPTY, RGEN_E_NO_TYPE_MAP and
 *   RGEN_E_NO_VALID_TYPE_MAP.
 *
 * SPDX-License-Identifier: MIT
 */
#ifndef STRATA_REPGENLIB_RGEN_H
#define STRATA_REPGENLIB_RGEN_H

#include <stdint.h>

#include "strata_repgenlib/rgen_status.h"

/** Version of this header; the major number changes with every incompatible change. */
#define RGEN_VERSION_MAJOR 0
/** Minor number of the version. */
#define RGEN_VERSION_MINOR 1
/** Patch number of the version. */
#define RGEN_VERSION_PATCH 0

/*
 * RGEN_API marks an exported function, RGEN_CALL is its calling convention (the platform's standard
 * one; x86-64 knows just one on each system). RGEN_BUILDING is defined by the library's own build.
 */
#if defined(_WIN32)
#define RGEN_CALL __cdecl
#if defined(RGEN_BUILDING)
#define RGEN_API __declspec(dllexport)
#else
#define RGEN_API __declspec(dllimport)
#endif
#else
#define RGEN_CALL
#define RGEN_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Types ---------------------------------------------------------------------------------- */

/** The generator behind a handle; hosts only ever hold a pointer to it. See HANDLES. */
typedef struct RgenReportGenerator RgenReportGenerator;

/** A GUID in the platform's layout: the first three fields are little-endian numbers. 16 bytes. */
typedef struct RgenGuid {
    /** The first 8 digits of the text form, as a number. */
    uint32_t data1;
    /** The next 4 digits. */
    uint16_t data2;
    /** The next 4 digits. */
    uint16_t data3;
    /** The last 16 digits, byte by byte. */
    uint8_t data4[8];
} RgenGuid;

/** A text with its own heap buffer. 16 bytes. */
typedef struct RgenAnsiString {
    /** Number of bytes, without the terminating zero byte. */
    uint32_t length;
    /** Buffer of length + 1 bytes, zero-terminated; null in a zero-filled or freed record. */
    char* data;
} RgenAnsiString;

/** Bytes with their own heap buffer. 16 bytes. */
typedef struct RgenByteArray {
    /** Number of bytes (the low 32 bits, where a caller passed more). */
    uint32_t size;
    /** Buffer of the bytes, without terminator; null in a zero-filled or freed record. */
    uint8_t* data;
} RgenByteArray;

/** Values of RgenCVariant::type. */
enum RgenVariantType {
    RGEN_TYPE_EMPTY = 0,      /**< Holds nothing (after a free). */
    RGEN_TYPE_INT64 = 1,      /**< A signed 64-bit integer. */
    RGEN_TYPE_STRING = 2,     /**< A text. */
    RGEN_TYPE_BYTE_ARRAY = 3, /**< Bytes. */
    RGEN_TYPE_HANDLE = 4      /**< A handle of the system. */
};

/**
 * Values of RgenCVariant::hint: how a 64-bit integer is shown in a report.
 *
 * Hints 2 to 7 are kept on the way into a report, every other one counts as RGEN_HINT_GENERIC.
 * Times below 0 and after the year 3000 UTC (above 32535215999) are shown as
 * "ERROR: BAD TIME_T INPUT". Texts and bytes do not depend on the hint: bytes are always shown as a
 * hex dump ("01 AB ").
 *
 * Linux: times and dates follow the time facet of the global C++ locale (of the system's C++
 * library: a host with a static one has another locale, which is not asked), all but the day, which
 * always has the form below. The standard facet gives the form below in every locale; a facet of
 * the host's own gives what it writes. Windows: always the form below; no facet is asked.
 */
enum RgenHint {
    RGEN_HINT_UNINITIALIZED = 0, /**< That of a zero-filled or freed record. */
    RGEN_HINT_GENERIC = 1,       /**< Signed decimal. */
    RGEN_HINT_TIME = 2,          /**< Seconds since 1970 UTC, shown as local time "23:59:59". */
    RGEN_HINT_DATE = 3,          /**< Same, local date " 1.01.1970": day with a leading blank. */
    RGEN_HINT_DATE_TIME = 4,     /**< Same, " 1.01.1970 23:59:59". */
    RGEN_HINT_SIZE = 5,          /**< Signed decimal. */
    RGEN_HINT_ADDRESS = 6,       /**< "0x" and lower-case hexadecimal digits. */
    RGEN_HINT_SPEED = 7,         /**< Signed decimal. */
    RGEN_HINT_DUMP = 8           /**< Marks byte arrays that come back from the library. */
};

/** Values of RgenCInputParams::outputMode. */
enum RgenOutputMode {
    RGEN_OUTPUT_FILE = 0, /**< Write the file outputPath. */
    RGEN_OUTPUT_DELETE_ON_CLOSE =
        1,                /**< Return the open handle of a file that vanishes on close. */
    RGEN_OUTPUT_BYTES = 2 /**< Return the bytes. */
};

/** The value of a RgenCVariant; RgenCVariant::type tells which member is meant. 16 bytes. */
typedef union RgenCVariantValue {
    /** With RGEN_TYPE_INT64. */
    int64_t int64Value;
    /** With RGEN_TYPE_STRING. */
    RgenAnsiString stringValue;
    /** With RGEN_TYPE_BYTE_ARRAY. */
    RgenByteArray byteArrayValue;
    /**
     * With RGEN_TYPE_HANDLE. Windows: a HANDLE. Linux: a file descriptor as a number. Never closed
     * by the library.
     */
    void* handleValue;
} RgenCVariantValue;

/** A named, typed, hinted value. 48 bytes. */
typedef struct RgenCVariant {
    /** The value's name, its key in the input set. */
    RgenAnsiString name;
    /** The value itself. */
    RgenCVariantValue value;
    /** One of RgenVariantType. */
    uint64_t type;
    /** One of RgenHint. */
    uint64_t hint;
} RgenCVariant;

/** An array of values. 16 bytes. */
typedef struct RgenCVariantSet {
    /** Array of count records, or null. */
    RgenCVariant* items;
    /** Number of entries. */
    uint64_t count;
} RgenCVariantSet;

/** Name/text pairs in two arrays: keys[i] belongs to values[i]. 24 bytes. */
typedef struct RgenCAnsiStringPairSet {
    /** Array of count names, or null. */
    RgenAnsiString* keys;
    /** Array of count texts, or null. */
    RgenAnsiString* values;
    /** Number of entries in each of the two arrays. */
    uint64_t count;
} RgenCAnsiStringPairSet;

/** The input of one report. 120 bytes. */
typedef struct RgenCInputParams {
    /** Typed values; they win over pairs and persistent data of the same name. */
    RgenCVariantSet variants;
    /** Name/text pairs; they win over persistent data of the same name. */
    RgenCAnsiStringPairSet pairs;
    /** Selects the report type in config.xml. */
    RgenGuid templateGuid;
    /** One of RgenOutputMode; anything else ends with RGEN_E_UNKNOWN_OUTPUT_MODE. */
    uint64_t outputMode;
    /** Not zero: a "pdf" report is written as the template made it, without the converter. */
    uint64_t skipExternalConversion;
    /** "html", "pdf" or "txt"; also names the template's folder. */
    RgenAnsiString outputFormat;
    /**
     * Path of the output file in modes 0 and 1; not looked at in mode 2. For a "pdf" that is
     * converted it must not contain a double quote.
     */
    RgenAnsiString outputPath;
    /** Handed to the converter after " -b "; it must not contain a double quote. */
    RgenAnsiString converterBaseArg;
} RgenCInputParams;

/**
 * Translates one marked text of a template.
 *
 * @param text     Zero-terminated UTF-8 text, valid during the call.
 * @param context  The pointer given to rgen_setTranslateFunction.
 * @return         Zero-terminated UTF-8 text, never null; may be text itself. The library copies it
 *                 as soon as the callback returns and never frees it.
 */
typedef const char*(RGEN_CALL* RgenTranslateFunction)(const char* text, void* context);

/* ---- Generator: lifetime and settings ------------------------------------------------------- */

/**
 * Creates a generator.
 *
 * It starts without a data directory, with a translate callback that returns its text unchanged.
 * The first call in the process initialises the XML libraries (libxml2, libxslt).
 *
 * Between two reports a generator keeps the memory of the last one for the next: at most 32 MiB,
 * and up to 256 MiB after larger reports, which the system may take back from it at any time.
 *
 * A generator may be made, used and ended until the process is gone: in exit functions and in the
 * destructors of global objects, too, whether or not other generators exist then.
 *
 * @return  The handle, or null when memory is exhausted.
 *
 * Ownership: the caller ends the handle with rgen_freeReportGenerator.
 * Threads: any; two first calls at once are safe.
 * Exceptions: none.
 */
RGEN_API RgenReportGenerator* RGEN_CALL rgen_newReportGenerator(void);

/**
 * Ends a generator and releases everything it holds.
 *
 * @param generator  The handle, or null (nothing happens). Invalid after the call.
 *
 * Threads: no other call on this handle may be running; the function takes no lock and waits for
 * nobody.
 * Exceptions: none.
 */
RGEN_API void RGEN_CALL rgen_freeReportGenerator(RgenReportGenerator* generator);

/**
 * Names the folder in which the generator keeps its data directory ".rgen".
 *
 * The data directory is the folder ".rgen" inside the given one; it is created by the first call
 * that needs the configuration, nothing is created here. Windows: "/" becomes "\". The path may
 * name any existing file system object; a path that already ends in ".rgen" gets a second level.
 *
 * @param generator  The handle; null gives RGEN_E_BAD_PARAMETER.
 * @param path       UTF-8 path of an existing folder, copied; null gives RGEN_E_BAD_PARAMETER.
 * @return           RGEN_OK; RGEN_E_BAD_PARAMETER; RGEN_E_DIR_NOT_FOUND when nothing exists at the
 *                   path (the previous data directory stays in force).
 *
 * Threads: any; running generations may see the old or the new directory.
 * Exceptions: std::range_error, boost::filesystem::filesystem_error, std::bad_alloc,
 * std::system_error.
 */
RGEN_API RgenStatus RGEN_CALL rgen_setDataDirPath(RgenReportGenerator* generator, const char* path);

/**
 * Sets the callback that translates the marked texts of templates.
 *
 * A marked text is written QT_TRANSLATE_NOOP("QObject", "text") in a template, with exactly one
 * blank after the comma. Before a template is compiled, every such call is replaced by what the
 * callback returns for text. The setting applies to generations that start to translate after it.
 *
 * @param generator  The handle; with null nothing happens.
 * @param translate  The callback, see THE CALLBACK; with null nothing happens, the previous
 *                   callback and context stay.
 * @param context    Passed to every call of the callback; may be null. The caller keeps what it
 *                   points to alive while generations can run.
 *
 * Threads: any; waits while a transformation runs on the same generator.
 * Exceptions: std::system_error.
 */
RGEN_API void RGEN_CALL rgen_setTranslateFunction(RgenReportGenerator* generator,
                                                  RgenTranslateFunction translate, void* context);

/**
 * Asks running generations of a generator to stop.
 *
 * Cancellation is cooperative: a generation that sees the request at its next check ends with
 * RGEN_CANCELED, one that is past its last check returns its own status. A request that is made
 * while a generation reads its configuration is always seen by it, unless reading the configuration
 * fails. While the converter runs,
 * the request is seen within about one second; the converter itself is not ended and may still
 * write its file afterwards. Generations that start later are not affected, nor is one that still
 * waits for the lock to begin with.
 *
 * @param generator  The handle; with null nothing happens.
 * @param guid       Stops the generations of this report type, or null: all of this generator.
 *
 * Threads: made to be called from another thread than the generating one; waits for at most one
 * transformation that runs on the same generator, and precedes everything else that waits for it.
 * Exceptions: std::bad_alloc, std::system_error.
 */
RGEN_API void RGEN_CALL rgen_cancel(RgenReportGenerator* generator, const RgenGuid* guid);

/* ---- Generator: reports and data ------------------------------------------------------------ */

/**
 * Generates one report.
 *
 * Merges persistent data, pairs and values (later ones win), applies the template
 * "templates/<format>/<file>" of the data directory and delivers the result as outputMode says:
 *
 * Mode 0 replaces an existing file, which is removed before anything is written: it is gone when a
 * later step of the delivery fails. For "pdf" the program "vellum", found by the system's program
 * search, converts the temporary file outputPath + ".html", which is removed afterwards. Its exit
 * code is not examined: look for the file. A cancel during the conversion removes what the
 * converter has written to outputPath until then. Writing is not atomic, and a full disk goes
 * unnoticed.
 *
 * Mode 1 creates outputPath as a file that the system deletes when its handle is closed. Windows:
 * the handle is for writing only and not shared, and the path is taken in the ANSI code page.
 * Linux: a descriptor open for reading and writing, closed on exec, whose file offset is at the end
 * of the report (lseek to 0 before reading) and whose name is gone already; other names of an
 * existing file that is overwritten (hard links, the target of a symbolic link) stay, and so does a
 * pipe or device, whose descriptor does not wait (O_NONBLOCK): a pipe gets what it has room for at
 * once.
 *
 * Mode 2 returns the bytes; outputPath is not looked at. Modes 1 and 2 never convert.
 *
 * @param generator  The handle; null gives RGEN_E_BAD_PARAMETER.
 * @param input      The request, read only; null gives RGEN_E_BAD_PARAMETER. Entries of type handle
 *                   or of an unknown type are left out; of two entries of one name the later wins.
 * @param result     Receives the result of modes 1 and 2 on success, under the name
 *                   "Return stub name": mode 1 a handle (hint 1), mode 2 a byte array (hint 8).
 *                   Untouched in mode 0, on failure, and in mode 2 for a report without bytes, so
 *                   zero it before the call. When memory for the record is exhausted, the name or
 *                   the bytes are left empty (data is null); a handle arrives all the same.
 *                   Null gives RGEN_E_BAD_PARAMETER.
 * @return           RGEN_OK; RGEN_E_BAD_PARAMETER; one of the CONFIGURATION STATUSES;
 *                   RGEN_E_EMPTY_INPUT; RGEN_E_TEMPLATE_NOT_FOUND (also for an unknown or empty
 *                   format); RGEN_E_UNKNOWN_FORMAT (a template was found for it);
 *                   RGEN_E_XSLT_PARSE, RGEN_E_XSLT_APPLY, RGEN_E_XSLT_RESULT;
 *                   RGEN_E_OVERWRITE_OUTPUT, RGEN_E_CREATE_OUTPUT, RGEN_E_WRITE_OUTPUT,
 *                   RGEN_E_WRITE_ALL_OUTPUT, RGEN_E_UNKNOWN_OUTPUT_MODE, RGEN_E_RUN_EXTERNAL,
 *                   RGEN_E_EXTERNAL_FAILED; RGEN_CANCELED.
 *
 * Ownership: free a filled result with rgen_freeRgenCVariant; a mode 1 handle is the caller's to
 * close (CloseHandle; Linux: close) and is not closed by that.
 * Threads: any, several at once; see THREADS AND THE LOCK. The converter is waited for without the
 * lock and without a time limit.
 * Exceptions: std::bad_alloc, std::range_error, boost::filesystem::filesystem_error,
 * std::system_error. Whatever leaves the call, the generation is over and nothing stays locked.
 */
RGEN_API RgenStatus RGEN_CALL rgen_generateReport(RgenReportGenerator* generator,
                                                  const RgenCInputParams* input,
                                                  RgenCVariant* result);

/**
 * Reads the persistent data of a report type.
 *
 * Names and texts come back without white space at their edges; entries without a name or text are
 * left out. The order of the entries is not defined. One bad entry damages others, see TEXTS.
 *
 * @param generator  The handle; null gives RGEN_E_BAD_PARAMETER.
 * @param guid       The report type; must not be null (not checked).
 * @param pairs      Receives the pairs when there is at least one; may be null. Untouched
 *                   otherwise, also when memory for any part of them is exhausted.
 * @return           RGEN_OK; RGEN_E_BAD_PARAMETER; one of the CONFIGURATION STATUSES;
 *                   RGEN_E_OPEN_PERSIST (missing or unreadable file), RGEN_E_NO_PERSIST_VALUES,
 *                   RGEN_E_NO_VALID_PERSIST_VALUES.
 *
 * Ownership: free filled pairs with rgen_freeRgenCAnsiStringSet.
 * Threads: any; the file is read without a lock, a writer at the same time may be seen half way.
 * Exceptions: std::bad_alloc, std::range_error, boost::filesystem::filesystem_error,
 * std::system_error.
 */
RGEN_API RgenStatus RGEN_CALL rgen_getPersistentData(RgenReportGenerator* generator,
                                                     const RgenGuid* guid,
                                                     RgenCAnsiStringPairSet* pairs);

/**
 * Replaces the persistent data of a report type by name/text pairs.
 *
 * The stored set becomes exactly the given one; there is no merging. The old file, or an empty
 * folder at its path, is removed before the new one is written. Report types whose configuration
 * names the same file share their data. Texts are not checked: see TEXTS for those that damage the
 * whole set.
 *
 * @param generator  The handle; must not be null (not checked).
 * @param guid       The report type; must not be null (not checked).
 * @param pairs      The pairs, read only; null gives RGEN_E_BAD_PARAMETER. Of two pairs of one name
 *                   the later wins. An empty set empties the store.
 * @return           RGEN_OK; RGEN_E_BAD_PARAMETER; one of the CONFIGURATION STATUSES;
 *                   RGEN_E_DELETE_PERSIST; RGEN_E_CREATE_PERSIST (the old data is gone by then).
 *
 * Threads: any; two writers at once may interleave, the last one wins.
 * Exceptions: std::bad_alloc, std::range_error, boost::filesystem::filesystem_error,
 * std::system_error.
 */
RGEN_API RgenStatus RGEN_CALL rgen_setPersistentDataFromAnsiStringPairSet(
    RgenReportGenerator* generator, const RgenGuid* guid, const RgenCAnsiStringPairSet* pairs);

/**
 * Replaces the persistent data of a report type by the display texts of typed values.
 *
 * As rgen_setPersistentDataFromAnsiStringPairSet, with the text that a report would show for each
 * value; types and hints are not stored. Handles and unknown types are left out.
 *
 * @param generator  The handle; must not be null (not checked).
 * @param guid       The report type; must not be null (not checked).
 * @param variants   The values, read only; null gives RGEN_E_BAD_PARAMETER.
 * @return           As rgen_setPersistentDataFromAnsiStringPairSet.
 *
 * Threads: any; two writers at once may interleave, the last one wins.
 * Exceptions: std::bad_alloc, std::range_error, boost::filesystem::filesystem_error,
 * std::system_error.
 */
RGEN_API RgenStatus RGEN_CALL rgen_setPersistentDataFromCVariantSet(
    RgenReportGenerator* generator, const RgenGuid* guid, const RgenCVariantSet* variants);

/**
 * Writes the typed values of a request as an XML file of names and display texts.
 *
 * Pairs, GUID and output fields are not written, handles are left out. The order of the values is
 * not defined. The file carries no types and hints, so rgen_getSimulatedRawDataFromFile finds no
 * values in it.
 *
 * @param generator  The handle; null gives RGEN_E_BAD_PARAMETER.
 * @param input      The request, read only; null, or a null variants.items, gives
 *                   RGEN_E_BAD_PARAMETER.
 * @param path       UTF-8 path of the file, which is replaced, as is an empty folder; null gives
 *                   RGEN_E_BAD_PARAMETER.
 * @return           RGEN_OK; RGEN_E_BAD_PARAMETER; RGEN_E_DELETE_DUMP when what exists there cannot
 *                   be removed (Linux: also a pipe, device or socket, which stays);
 *                   RGEN_E_CREATE_PERSIST when the file cannot be written (an old one is gone by
 *                   then).
 *
 * Threads: any; no lock is taken.
 * Exceptions: std::bad_alloc, std::range_error, boost::filesystem::filesystem_error.
 */
RGEN_API RgenStatus RGEN_CALL rgen_dumpRawInputDataToFile(RgenReportGenerator* generator,
                                                          const RgenCInputParams* input,
                                                          const char* path);

/**
 * Reads typed values from an XML file, so that a host can run with simulated input.
 *
 * The file is <data><properties><property name="n" type="t" hint="h">text</property>...: type is
 * "string", "int64" or "byte_array" (text such as "0x01, 0xAB"), hint one of the names of RgenHint:
 * "Generic", "Time", "Date", "DateTime", "Size", "Address", "Speed", "Dump". All four are trimmed
 * of white space. Properties that do not fit, or are empty then, are skipped; of two with one name
 * the later that fits wins. A number is read by the rules of strtoll, base 10: "12:30:00" is 12,
 * letters are 0, and what does not fit into 64 bits becomes the nearest number that does. An
 * invalid byte array writes "input byte dump string is invalid" to standard output, the only thing
 * this library ever prints.
 *
 * @param generator  The handle; null gives 0.
 * @param path       UTF-8 path of the file; null gives 0.
 * @param variants   Receives the values on success, otherwise untouched; null gives 0. The order of
 *                   the entries is not defined.
 *                   Texts come with hint 1 and bytes with hint 8, whatever the file says, and an
 *                   integer with "Dump" comes with hint 1.
 * @return           1 when the set was filled, 0 when it was not (a missing or unreadable file,
 *                   Linux: also a pipe, device or socket; no valid property; or no memory for any
 *                   part of the set). Not a status.
 *
 * Ownership: free a filled set with rgen_freeRgenCVariantSet.
 * Threads: any; no lock is taken.
 * Exceptions: std::bad_alloc, std::range_error, boost::filesystem::filesystem_error.
 */
RGEN_API int32_t RGEN_CALL rgen_getSimulatedRawDataFromFile(RgenReportGenerator* generator,
                                                            const char* path,
                                                            RgenCVariantSet* variants);

/**
 * Describes a status in English.
 *
 * @param generator  Any handle; only whether it is null matters, then the text is
 *                   "bad function parameter".
 * @param status     Any number. Numbers without a description give "Undescribed error" when one of
 *                   the two highest bits is set and "Unknown code." otherwise.
 * @return           A static, zero-terminated text; the same pointer for the same number each time.
 *                   Never fails and takes no memory.
 *
 * Ownership: the library's; the text is constant and lives as long as the library is loaded, in
 * exit functions and in the destructors of global objects, too.
 * Threads: any, at any time; touches no generator.
 * Exceptions: none.
 */
RGEN_API const char* RGEN_CALL rgen_getStatusCodeDescription(const RgenReportGenerator* generator,
                                                             RgenStatus status);

/* ---- Records: creation ---------------------------------------------------------------------- */

/**
 * Creates a text record from a zero-terminated text.
 *
 * @param text    The text, copied; must not be null (not checked).
 * @param target  Overwritten; must not be null (not checked).
 * @return        1, or 0 when memory is exhausted (target is then null and 0).
 *
 * Ownership: free with rgen_freeRgenAnsiString, or with the record it becomes part of.
 * Threads: any. Exceptions: none.
 */
RGEN_API int32_t RGEN_CALL rgen_createRgenAnsiString(const char* text, RgenAnsiString* target);

/**
 * Creates a byte array record.
 *
 * @param bytes   The bytes, copied; must not be null unless size is 0 (not checked).
 * @param size    Number of bytes; all are copied, the record's size keeps the low 32 bits.
 * @param target  Overwritten; must not be null (not checked).
 * @return        1, or 0 when memory is exhausted (target is then null and 0).
 *
 * Ownership: free with rgen_freeRgenByteArray, or with the record it becomes part of.
 * Threads: any. Exceptions: none. Units: bytes.
 */
RGEN_API int32_t RGEN_CALL rgen_createRgenByteArray(const uint8_t* bytes, uint64_t size,
                                                    RgenByteArray* target);

/**
 * Creates a set of name/text pairs, all empty. The lower-case "pair" in the name is no slip.
 *
 * @param target  Overwritten; null gives 0.
 * @param count   Number of entries; 0 gives 0 and leaves target untouched.
 * @return        1; 0 for a null target, a count of 0, or when memory is exhausted (target is then
 *                null, null and 0).
 *
 * Ownership: fill entries with rgen_createRgenAnsiString; free with rgen_freeRgenCAnsiStringSet.
 * Threads: any. Exceptions: none. Units: entries.
 */
RGEN_API int32_t RGEN_CALL rgen_createRgenCAnsiStringpairSet(RgenCAnsiStringPairSet* target,
                                                             uint64_t count);

/**
 * Creates a set of values, all empty.
 *
 * @param target  Overwritten; null gives 0.
 * @param count   Number of entries; 0 gives 0 and leaves target untouched.
 * @return        1; 0 for a null target, a count of 0, or when memory is exhausted (target is then
 *                null and 0).
 *
 * Ownership: fill entries with the rgen_createRgenCVariant... functions; free with
 * rgen_freeRgenCVariantSet.
 * Threads: any. Exceptions: none. Units: entries.
 */
RGEN_API int32_t RGEN_CALL rgen_createRgenCVariantSet(RgenCVariantSet* target, uint64_t count);

/**
 * Creates a named 64-bit integer.
 *
 * @param name    Zero-terminated, copied; must not be null (not checked).
 * @param value   The number; seconds since 1970 UTC under the hints time, date and date-time.
 * @param hint    One of RgenHint; stored as the smaller of it and 9.
 * @param target  Overwritten; null gives 0.
 * @return        1, or 0 for a null target. When memory for the name is exhausted, the result is 1
 *                and the name empty (data is null).
 *
 * Ownership: free with rgen_freeRgenCVariant.
 * Threads: any. Exceptions: none.
 */
RGEN_API int32_t RGEN_CALL rgen_createRgenCVariantInt64(const char* name, int64_t value,
                                                        uint64_t hint, RgenCVariant* target);

/**
 * Creates a named handle. Reports, dumps and persistent data leave handles out.
 *
 * @param name    Zero-terminated, copied; must not be null (not checked).
 * @param handle  Any pointer-sized value; never dereferenced, closed or freed.
 * @param hint    One of RgenHint; stored as the smaller of it and 9.
 * @param target  Overwritten; null gives 0.
 * @return        As rgen_createRgenCVariantInt64.
 *
 * Ownership: free with rgen_freeRgenCVariant; the handle stays the caller's.
 * Threads: any. Exceptions: none.
 */
RGEN_API int32_t RGEN_CALL rgen_createRgenCVariantHandle(const char* name, void* handle,
                                                         uint64_t hint, RgenCVariant* target);

/**
 * Creates a named text.
 *
 * @param name    Zero-terminated, copied; must not be null (not checked).
 * @param text    Zero-terminated, copied; must not be null (not checked). See TEXTS for "&".
 * @param hint    Accepted and ignored; RGEN_HINT_GENERIC is stored.
 * @param target  Overwritten; null gives 0.
 * @return        1, or 0 for a null target and when memory for the text is exhausted: the record
 *                then holds the name and an empty text (data is null) and may be freed. A name for
 *                which memory is exhausted is left empty, with the result 1.
 *
 * Ownership: free with rgen_freeRgenCVariant.
 * Threads: any. Exceptions: none.
 */
RGEN_API int32_t RGEN_CALL rgen_createRgenCVariantString(const char* name, const char* text,
                                                         uint64_t hint, RgenCVariant* target);

/**
 * Creates a named byte array.
 *
 * @param name    Zero-terminated, copied; must not be null (not checked).
 * @param bytes   The bytes, copied; null gives 0.
 * @param size    Number of bytes; all are copied, the record's size keeps the low 32 bits.
 * @param hint    Accepted and ignored; RGEN_HINT_DUMP is stored.
 * @param target  Overwritten; null gives 0.
 * @return        1, or 0 for a null target, null bytes and when memory for the bytes is exhausted:
 *                the record then holds the name and an empty array (data is null) and may be freed.
 *                A name for which memory is exhausted is left empty, with the result 1.
 *
 * Ownership: free with rgen_freeRgenCVariant.
 * Threads: any. Exceptions: none. Units: bytes.
 */
RGEN_API int32_t RGEN_CALL rgen_createRgenCVariantByteArray(const char* name, const uint8_t* bytes,
                                                            uint64_t size, uint64_t hint,
                                                            RgenCVariant* target);

/* ---- Records: release ----------------------------------------------------------------------- */

/**
 * Frees the buffer of a text record and empties the record.
 *
 * @param record  May be null.
 *
 * Threads: any. Exceptions: none.
 */
RGEN_API void RGEN_CALL rgen_freeRgenAnsiString(RgenAnsiString* record);

/**
 * Frees the buffer of a byte array record and empties the record.
 *
 * @param record  May be null.
 *
 * Threads: any. Exceptions: none.
 */
RGEN_API void RGEN_CALL rgen_freeRgenByteArray(RgenByteArray* record);

/**
 * Frees the buffers of a value and empties the record; a handle in it is not closed.
 *
 * @param record  May be null. Afterwards its type is 0 (empty), its hint 0 and its name empty.
 *
 * Threads: any. Exceptions: none.
 */
RGEN_API void RGEN_CALL rgen_freeRgenCVariant(RgenCVariant* record);

/**
 * Frees all values of a set, the array, and empties the record.
 *
 * @param set  May be null. With null items nothing happens; count then keeps its number.
 *
 * Threads: any. Exceptions: none.
 */
RGEN_API void RGEN_CALL rgen_freeRgenCVariantSet(RgenCVariantSet* set);

/**
 * Frees all texts of a set of pairs, both arrays, and empties the record. The counterpart of
 * rgen_createRgenCAnsiStringpairSet, in spite of its name.
 *
 * @param set  May be null.
 *
 * Threads: any. Exceptions: none.
 */
RGEN_API void RGEN_CALL rgen_freeRgenCAnsiStringSet(RgenCAnsiStringPairSet* set);

/**
 * Frees everything inside a request and fills the record with zeros.
 *
 * @param input  May be null.
 *
 * Threads: any. Exceptions: none.
 */
RGEN_API void RGEN_CALL rgen_freeRgenCInputParams(RgenCInputParams* input);

#ifdef __cplusplus
}
#endif

#endif
