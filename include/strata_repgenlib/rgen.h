/*
 * strata_repgenlib: report generation for native applications. A C host includes this header only.
 * It needs C99 or C++11; it includes only <stdint.h> and rgen_status.h.
 *
 * A host creates a generator, sets a data directory and requests reports: it passes named, typed
 * values, the GUID of a report type, a format ("html", "pdf", "txt") and an output mode. The
 * library merges the values with the values stored for the report type, converts each to text,
 * applies the report type's XSLT template and returns a file, an open handle or bytes.
 *
 * The conventions below hold for every function; the functions refer to them by their headings.
 *
 * HANDLES
 *   rgen_newReportGenerator returns an opaque handle, rgen_freeReportGenerator frees it. Any number
 *   of generators may exist at the same time. Do not free a handle while another call uses it.
 *
 * RECORDS AND OWNERSHIP
 *   The host owns every record (usually on its stack). The buffers inside a record are on the
 *   process heap (malloc of the C runtime that the library uses): create them with the
 *   rgen_create... functions or let the library fill them, and free them with the matching
 *   rgen_free... function, never with the host's allocator, which may be a different one.
 *   A create function does not free the previous content of its target: creating into a filled
 *   record leaks. The same holds for records that an operation fills: they are overwritten without
 *   being freed. A zero-filled record is a valid empty record and may be freed.
 *
 * TEXTS
 *   Texts are null-terminated byte strings; the library ignores the length field of a record that
 *   is passed to it. Paths and XML are UTF-8. A path that is not valid UTF-8 throws an exception
 *   (see EXCEPTIONS) before its file is touched. Two output paths are not checked: that of mode 2,
 *   which is ignored, and that of mode 1 on Windows, which is in the ANSI code page. A null text
 *   pointer inside a record is the empty text; a null buffer of a byte array is an empty array; a
 *   null array is an empty set, whatever its count says (rgen_dumpRawInputDataToFile refuses it).
 *
 *   The text of a value or pair is read as XML content: "&" starts an entity or character
 *   reference, so a plain "&" must be written "&amp;". "<" and ">" are safe. Names are used
 *   unchanged. All characters between "&" and the next ";" form the name of the reference: in a
 *   report "x &a b; y" becomes "x  y". Without a ";" only the "&" is lost. A numeric reference
 *   ("&#12", "&#x41") ends at its first character that is not a digit; if that is not a ";", "&#"
 *   (or "&#x") and the digits are lost: "x &#x41 y; z" becomes "x  y; z". A reference with "<" in
 *   its name, such as "&<b>;", is removed everywhere: from reports, and from persistent data and
 *   dumps, which would otherwise contain it as markup.
 *
 *   Persistent data is read as XML content twice before it appears in a report: when it is stored,
 *   and again together with the other values. In persistent data "&" must therefore be written
 *   "&amp;amp;"; rgen_getPersistentData returns it with one level less ("&amp;"). A reference that
 *   XML does not know is written to persistent data and dumps unchanged and damages them:
 *   "x &a b; y" is read back as "x  b; y", and every reference after it in the file is lost, in
 *   other entries as well ("1 < 2 &amp;amp; 3" is read back as "1  2 amp; 3"). The same damage is
 *   done by bytes that are not valid UTF-8 and by U+FFFE and U+FFFF, in names as well, and in texts
 *   by references to these two characters or to surrogates ("&#xFFFE;", "&#xD800;"). The library
 *   stores all of them and returns status 0: a host that stores texts from elsewhere must check
 *   them first.
 *
 *   Control characters and bytes that are not valid UTF-8 are copied to text and HTML output
 *   unchanged. In XML output, persistent data and dumps a control character is replaced by U+FFFD,
 *   written as the reference "&#xFFFD;" (tab and line feed stay, a carriage return becomes
 *   "&#13;"); bytes that are not valid UTF-8 are copied to these unchanged, too.
 *
 * STATUSES AND THE SUCCESS TEST
 *   A status that is zero or positive is success, a negative one is failure (cancellation too).
 *   rgen_status.h lists all of them, rgen_getStatusCodeDescription describes them in English.
 *
 * THREADS AND THE LOCK
 *   Every function may be called from any thread. Each generator has one lock, shared by all
 *   functions that take this generator. It is held while the configuration is read, while a report
 *   is transformed (translate callback included), and briefly to read or store settings, to
 *   register a generation and to cancel. So every function of a generator may wait for a
 *   transformation that runs on it, except the dump, the simulated input, the status description
 *   and the free. A transformation takes as long as its template needs and cannot be cancelled. A
 *   waiting rgen_cancel gets the lock before all other waiting calls, so it waits for at most one
 *   transformation or one reading of the configuration; an uninterrupted series of cancels keeps
 *   the generator from all other work. Other calls get the lock in no particular order. The lock is
 *   not held while a report is delivered: several reports can be generated on one generator at
 *   once, and a call that waits for the converter blocks no other call. Transformations on one
 *   generator run one after the other; for parallel transformations use one generator per thread.
 *   Record functions access their arguments only.
 *   A calling thread or fiber needs 256 KiB of stack (Windows: 512 KiB), of which the host may have
 *   used 24 KiB before the call. A template whose recursion reaches the last 200 KiB (Windows: 256
 *   KiB) ends with RGEN_E_XSLT_APPLY. On Linux the size of the stack of a fiber or coroutine is
 *   not known: the library assumes 256 KiB there, and a template that uses more than 96 KiB ends
 *   with the same status.
 *
 * THE CALLBACK
 *   The translate callback runs on the generating thread with the generator's lock held. It must
 *   not call the library for the same generator (deadlock), must not throw an exception and must
 *   not return null. Callbacks that use other generators must do so in the same order on all
 *   threads: two that use each other's generator deadlock. A callback must not switch to another
 *   fiber of the same thread that calls the library: the calls of one thread must end in the
 *   reverse order in which they began.
 *   The returned text becomes part of the template: "&", "<" and ">" must be escaped. An unknown
 *   reference, "]]>" or a control character in it removes the references ("&lt;", "&amp;") from the
 *   rest of the template, with status 0.
 *
 * EXCEPTIONS
 *   Failures without a status leave a function as C++ exceptions: std::bad_alloc (memory),
 *   std::range_error (a path or converter argument that is not valid UTF-8),
 *   boost::filesystem::filesystem_error, a std::runtime_error (the file system refuses for a reason
 *   other than "not found": access denied, path too long, an empty data directory path), and
 *   std::system_error (the lock). A C++ host built with the same compiler family may catch them; a
 *   host in another language is terminated by them. To avoid them: call rgen_setDataDirPath before
 *   anything else, pass valid UTF-8, and have the rights to read and write the data directory. A
 *   function whose comment says "Exceptions: none" never throws.
 *
 *   If host and library have separate C++ runtimes, every exception of the library that the host
 *   catches permanently lowers the host's std::uncaught_exceptions() by one: compare two counts,
 *   never one count with 0. This applies to Windows, and on Linux to a host with a static runtime
 *   (-static-libstdc++) that loads the library with dlopen or hides the runtime's symbols. A Linux
 *   host linked with both -static-libstdc++ and -static-libgcc cannot catch the exceptions: they
 *   abort it.
 *
 * FILES THAT ARE READ
 *   config.xml, persistent data, simulated input and templates must be regular files, links to
 *   regular files, or on Windows files with a reparse point of any kind. A folder cannot be opened,
 *   nor, on Linux, a pipe, device or socket; the library does not block on them. The results are:
 *   config.xml RGEN_E_OPEN_CONFIG; persistent data RGEN_E_OPEN_PERSIST (a report is generated
 *   without persistent data); a template RGEN_E_XSLT_PARSE; simulated input no values.
 *
 * FILES THAT ARE REPLACED
 *   The output of mode 0, persistent data and dumps replace an existing file: it is removed first,
 *   and the new file is written at its path. Nothing is atomic. On Linux a pipe, device or socket
 *   stays, and the status is that of a file that cannot be removed: RGEN_E_OVERWRITE_OUTPUT,
 *   RGEN_E_DELETE_PERSIST or RGEN_E_DELETE_DUMP.
 *
 * CONFIGURATION STATUSES
 *   Functions that take a report type's GUID first load the configuration: they create the data
 *   directory and a default config.xml if these are missing, and look up the GUID. All of them can
 *   return RGEN_E_CREATE_DIR, RGEN_E_CREATE_CONFIG, RGEN_E_OPEN_CONFIG, RGEN_E_GUID_NOT_IN_CONFIG,
 *   RGEN_E_XPATH_CONTEXT, RGEN_E_XPATH_SEARCH, RGEN_E_XPATH_NODE_EMPTY, RGEN_E_NO_TYPE_MAP and
 *   RGEN_E_NO_VALID_TYPE_MAP.
 *
 * SPDX-License-Identifier: MIT
 */
#ifndef STRATA_REPGENLIB_RGEN_H
#define STRATA_REPGENLIB_RGEN_H

#include <stdint.h>

#include "strata_repgenlib/rgen_status.h"

/** Major version of this header; it changes with every incompatible change. */
#define RGEN_VERSION_MAJOR 0
/** Minor version. */
#define RGEN_VERSION_MINOR 1
/** Patch version. */
#define RGEN_VERSION_PATCH 0

/*
 * RGEN_API marks an exported function, RGEN_CALL is its calling convention (the platform's
 * default). Only the build of the library itself defines RGEN_BUILDING.
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

/** Opaque generator; hosts use pointers to it only. See HANDLES. */
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

/** A text in a heap buffer. 16 bytes. */
typedef struct RgenAnsiString {
    /** Number of bytes, without the terminating zero byte. */
    uint32_t length;
    /** Buffer of length + 1 bytes, null-terminated; null in a zero-filled or freed record. */
    char* data;
} RgenAnsiString;

/** Bytes in a heap buffer. 16 bytes. */
typedef struct RgenByteArray {
    /** Number of bytes (the low 32 bits if a caller passed more). */
    uint32_t size;
    /** Buffer of the bytes, without terminator; null in a zero-filled or freed record. */
    uint8_t* data;
} RgenByteArray;

/** Values of RgenCVariant::type. */
enum RgenVariantType {
    RGEN_TYPE_EMPTY = 0,      /**< No value (after a free). */
    RGEN_TYPE_INT64 = 1,      /**< A signed 64-bit integer. */
    RGEN_TYPE_STRING = 2,     /**< A text. */
    RGEN_TYPE_BYTE_ARRAY = 3, /**< Bytes. */
    RGEN_TYPE_HANDLE = 4      /**< A handle of the operating system. */
};

/**
 * Values of RgenCVariant::hint: how a 64-bit integer is shown in a report.
 *
 * In a report, hints other than 2 to 7 count as RGEN_HINT_GENERIC. Times below 0 and after the year
 * 3000 UTC (above 32535215999) are shown as "ERROR: BAD TIME_T INPUT". Texts and bytes do not
 * depend on the hint: bytes are always shown as a hex dump ("01 AB ").
 *
 * Linux: times and dates follow the time facet of the global C++ locale, except the day, which
 * always has the form below. (This is the locale of the shared C++ library of the system; a host
 * that links its C++ library statically has a different one, which is not used.) The standard
 * facet writes the form below in every locale; a facet of the host writes its own form. Windows:
 * always the form below; no facet is used.
 */
enum RgenHint {
    RGEN_HINT_UNINITIALIZED = 0, /**< The hint of a zero-filled or freed record. */
    RGEN_HINT_GENERIC = 1,       /**< Signed decimal. */
    RGEN_HINT_TIME = 2,          /**< Seconds since 1970 UTC, shown as local time "23:59:59". */
    RGEN_HINT_DATE = 3,          /**< Same, local date " 1.01.1970": day with a leading blank. */
    RGEN_HINT_DATE_TIME = 4,     /**< Same, " 1.01.1970 23:59:59". */
    RGEN_HINT_SIZE = 5,          /**< Signed decimal. */
    RGEN_HINT_ADDRESS = 6,       /**< "0x" and lower-case hexadecimal digits. */
    RGEN_HINT_SPEED = 7,         /**< Signed decimal. */
    RGEN_HINT_DUMP = 8           /**< Marks byte arrays that the library returns. */
};

/** Values of RgenCInputParams::outputMode. */
enum RgenOutputMode {
    RGEN_OUTPUT_FILE = 0, /**< Write the file outputPath. */
    RGEN_OUTPUT_DELETE_ON_CLOSE =
        1,                /**< Return the open handle of a file that is deleted on close. */
    RGEN_OUTPUT_BYTES = 2 /**< Return the bytes. */
};

/** The value of a RgenCVariant; RgenCVariant::type tells which member is valid. 16 bytes. */
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

/** A value with name, type and hint. 48 bytes. */
typedef struct RgenCVariant {
    /** The value's name, its key in the input set. */
    RgenAnsiString name;
    /** The value, in the member that type selects. */
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
    /** Typed values; they replace pairs and persistent data of the same name. */
    RgenCVariantSet variants;
    /** Name/text pairs; they replace persistent data of the same name. */
    RgenCAnsiStringPairSet pairs;
    /** Selects the report type in config.xml. */
    RgenGuid templateGuid;
    /** One of RgenOutputMode; any other value results in RGEN_E_UNKNOWN_OUTPUT_MODE. */
    uint64_t outputMode;
    /** Not zero: a "pdf" report is the unconverted output of the template. */
    uint64_t skipExternalConversion;
    /** "html", "pdf" or "txt"; also the name of the template's folder. */
    RgenAnsiString outputFormat;
    /**
     * Path of the output file in modes 0 and 1; ignored in mode 2. For a "pdf" that is converted
     * it must not contain a double quote.
     */
    RgenAnsiString outputPath;
    /** Passed to the converter after " -b "; it must not contain a double quote. */
    RgenAnsiString converterBaseArg;
} RgenCInputParams;

/**
 * Translates one marked text of a template.
 *
 * @param text     Null-terminated UTF-8 text, valid during the call.
 * @param context  The pointer passed to rgen_setTranslateFunction.
 * @return         Null-terminated UTF-8 text, never null; may be text itself. The library copies it
 *                 as soon as the callback returns and never frees it.
 */
typedef const char*(RGEN_CALL* RgenTranslateFunction)(const char* text, void* context);

/* ---- Generator: lifetime and settings ------------------------------------------------------- */

/**
 * Creates a generator.
 *
 * It has no data directory at first, and its translate callback returns each text unchanged. The
 * first call in the process initialises the XML libraries (libxml2, libxslt).
 *
 * Between two reports a generator keeps memory for the next one: at most 32 MiB, and after larger
 * reports up to 256 MiB, which the operating system may reclaim at any time.
 *
 * Generators may be created, used and freed until the process has ended, also in exit functions and
 * in the destructors of global objects, whether or not other generators exist at that time.
 *
 * @return  The handle, or null if memory is exhausted.
 *
 * Ownership: the caller frees the handle with rgen_freeReportGenerator.
 * Threads: any; two first calls at once are safe.
 * Exceptions: none.
 */
RGEN_API RgenReportGenerator* RGEN_CALL rgen_newReportGenerator(void);

/**
 * Frees a generator and everything it owns.
 *
 * @param generator  The handle; if null, nothing happens. Invalid after the call.
 *
 * Threads: no other call on this handle may be running; the function takes no lock and does not
 * wait.
 * Exceptions: none.
 */
RGEN_API void RGEN_CALL rgen_freeReportGenerator(RgenReportGenerator* generator);

/**
 * Sets the folder that contains the generator's data directory ".rgen".
 *
 * This function creates nothing: the first call that needs the configuration creates the data
 * directory, the folder ".rgen" inside the given folder. Windows: "/" becomes "\". Only the
 * existence of the path is checked, not that it is a folder. If the path already ends in ".rgen",
 * the data directory is ".rgen/.rgen".
 *
 * @param generator  The handle; if null: RGEN_E_BAD_PARAMETER.
 * @param path       UTF-8 path of an existing folder, copied; if null: RGEN_E_BAD_PARAMETER.
 * @return           RGEN_OK; RGEN_E_BAD_PARAMETER; RGEN_E_DIR_NOT_FOUND if nothing exists at the
 *                   path (the previous data directory stays in use).
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
 * space after the comma. Before a template is compiled, every such expression is replaced by the
 * text that the callback returns for it. The setting applies to generations that reach their
 * translation after this call.
 *
 * @param generator  The handle; if null, nothing happens.
 * @param translate  The callback, see THE CALLBACK; if null, nothing happens: the previous callback
 *                   and context stay.
 * @param context    Passed to every call of the callback; may be null. The object it points to must
 *                   stay valid while generations can run.
 *
 * Threads: any; waits while a transformation runs on the same generator.
 * Exceptions: std::system_error.
 */
RGEN_API void RGEN_CALL rgen_setTranslateFunction(RgenReportGenerator* generator,
                                                  RgenTranslateFunction translate, void* context);

/**
 * Asks running generations of a generator to stop.
 *
 * Cancellation is cooperative: a generation that sees the request at its next check returns
 * RGEN_CANCELED, one that is past its last check returns its own status. A generation that is
 * reading its configuration always sees the request, unless reading the configuration fails. While
 * the converter runs, the request is seen within about one second; the converter itself is not
 * terminated and may still write its file afterwards. Generations that start later are not
 * affected, nor are those that are still waiting for the lock at their start.
 *
 * @param generator  The handle; if null, nothing happens.
 * @param guid       The report type whose generations stop; if null, all of this generator.
 *
 * Threads: intended for a thread other than the generating one; waits for at most one
 * transformation that runs on the same generator, and gets the lock before all other waiting calls.
 * Exceptions: std::bad_alloc, std::system_error.
 */
RGEN_API void RGEN_CALL rgen_cancel(RgenReportGenerator* generator, const RgenGuid* guid);

/* ---- Generator: reports and data ------------------------------------------------------------ */

/**
 * Generates one report.
 *
 * Merges persistent data, pairs and values (later ones replace earlier ones of the same name),
 * applies the template "templates/<format>/<file>" of the data directory and delivers the result
 * according to outputMode:
 *
 * Mode 0 writes the file outputPath. An existing file is removed before anything is written, so it
 * is lost if a later step of the delivery fails. For "pdf" the program "vellum", found by the
 * system's program search, converts the temporary file outputPath + ".html", which is removed
 * afterwards. The exit code of the converter is ignored: check that the file exists. A cancel
 * during the conversion removes what the converter has written to outputPath up to then. Writing is
 * not atomic, and a full disk is not detected.
 *
 * Mode 1 creates outputPath as a file that the system deletes when its handle is closed. Windows:
 * the handle is write-only and not shared, and the path is in the ANSI code page. Linux: the handle
 * is a descriptor for reading and writing, with close-on-exec, whose file offset is at the end of
 * the report (lseek to 0 before reading). The file name is removed before the call returns. Other
 * names of an overwritten file (hard links, the target of a symbolic link) stay, as does a pipe or
 * device; its descriptor is non-blocking (O_NONBLOCK), so a pipe receives only as many bytes as it
 * has room for.
 *
 * Mode 2 returns the bytes; outputPath is ignored. Modes 1 and 2 never convert.
 *
 * @param generator  The handle; if null: RGEN_E_BAD_PARAMETER.
 * @param input      The request, read only; if null: RGEN_E_BAD_PARAMETER. Entries of type handle
 *                   or of an unknown type are skipped; of two entries with the same name the later
 *                   is used.
 * @param result     Receives the result of modes 1 and 2 on success, under the name
 *                   "Return stub name": mode 1 a handle (hint 1), mode 2 a byte array (hint 8).
 *                   Unchanged in mode 0, on failure, and in mode 2 for an empty report, so zero it
 *                   before the call. If memory for the record is exhausted, the name or the bytes
 *                   are empty (data is null); a handle is still returned.
 *                   If null: RGEN_E_BAD_PARAMETER.
 * @return           RGEN_OK; RGEN_E_BAD_PARAMETER; one of the CONFIGURATION STATUSES;
 *                   RGEN_E_EMPTY_INPUT; RGEN_E_TEMPLATE_NOT_FOUND (also for an unknown or empty
 *                   format); RGEN_E_UNKNOWN_FORMAT (unknown format whose folder has a template);
 *                   RGEN_E_XSLT_PARSE, RGEN_E_XSLT_APPLY, RGEN_E_XSLT_RESULT;
 *                   RGEN_E_OVERWRITE_OUTPUT, RGEN_E_CREATE_OUTPUT, RGEN_E_WRITE_OUTPUT,
 *                   RGEN_E_WRITE_ALL_OUTPUT, RGEN_E_UNKNOWN_OUTPUT_MODE, RGEN_E_RUN_EXTERNAL,
 *                   RGEN_E_EXTERNAL_FAILED; RGEN_CANCELED.
 *
 * Ownership: free a filled result with rgen_freeRgenCVariant. That does not close a mode 1 handle:
 * the caller closes it (CloseHandle; Linux: close).
 * Threads: any, several at once; see THREADS AND THE LOCK. The call waits for the converter without
 * the lock and without a time limit.
 * Exceptions: std::bad_alloc, std::range_error, boost::filesystem::filesystem_error,
 * std::system_error. After an exception the generation has ended and no lock is held.
 */
RGEN_API RgenStatus RGEN_CALL rgen_generateReport(RgenReportGenerator* generator,
                                                  const RgenCInputParams* input,
                                                  RgenCVariant* result);

/**
 * Reads the persistent data of a report type.
 *
 * Names and texts are returned without leading and trailing white space; entries without a name or
 * text are skipped. The order of the entries is not defined. One bad entry damages others, see
 * TEXTS.
 *
 * @param generator  The handle; if null: RGEN_E_BAD_PARAMETER.
 * @param guid       The report type; must not be null (not checked).
 * @param pairs      Receives the pairs; may be null. Unchanged if there are none, on failure, and
 *                   if memory for any part of them is exhausted.
 * @return           RGEN_OK; RGEN_E_BAD_PARAMETER; one of the CONFIGURATION STATUSES;
 *                   RGEN_E_OPEN_PERSIST (missing or unreadable file), RGEN_E_NO_PERSIST_VALUES,
 *                   RGEN_E_NO_VALID_PERSIST_VALUES.
 *
 * Ownership: free filled pairs with rgen_freeRgenCAnsiStringSet.
 * Threads: any; the file is read without a lock, so it may be read while it is only partly written.
 * Exceptions: std::bad_alloc, std::range_error, boost::filesystem::filesystem_error,
 * std::system_error.
 */
RGEN_API RgenStatus RGEN_CALL rgen_getPersistentData(RgenReportGenerator* generator,
                                                     const RgenGuid* guid,
                                                     RgenCAnsiStringPairSet* pairs);

/**
 * Replaces the persistent data of a report type with name/text pairs.
 *
 * The stored set becomes exactly the given one, without merging. The old file, or an empty folder
 * at its path, is removed before the new file is written. Report types whose configuration names
 * the same file share their data. Texts are not checked: see TEXTS for those that damage the whole
 * set.
 *
 * @param generator  The handle; must not be null (not checked).
 * @param guid       The report type; must not be null (not checked).
 * @param pairs      The pairs, read only; if null: RGEN_E_BAD_PARAMETER. Of two pairs with the same
 *                   name the later is stored. An empty set empties the store.
 * @return           RGEN_OK; RGEN_E_BAD_PARAMETER; one of the CONFIGURATION STATUSES;
 *                   RGEN_E_DELETE_PERSIST; RGEN_E_CREATE_PERSIST (the old data is lost by then).
 *
 * Threads: any; two writers at the same time may interleave, the last one wins.
 * Exceptions: std::bad_alloc, std::range_error, boost::filesystem::filesystem_error,
 * std::system_error.
 */
RGEN_API RgenStatus RGEN_CALL rgen_setPersistentDataFromAnsiStringPairSet(
    RgenReportGenerator* generator, const RgenGuid* guid, const RgenCAnsiStringPairSet* pairs);

/**
 * Replaces the persistent data of a report type with the display texts of typed values.
 *
 * As rgen_setPersistentDataFromAnsiStringPairSet, with the text that a report would show for each
 * value; types and hints are not stored. Handles and unknown types are skipped.
 *
 * @param generator  The handle; must not be null (not checked).
 * @param guid       The report type; must not be null (not checked).
 * @param variants   The values, read only; if null: RGEN_E_BAD_PARAMETER.
 * @return           As rgen_setPersistentDataFromAnsiStringPairSet.
 *
 * Threads: any; two writers at the same time may interleave, the last one wins.
 * Exceptions: std::bad_alloc, std::range_error, boost::filesystem::filesystem_error,
 * std::system_error.
 */
RGEN_API RgenStatus RGEN_CALL rgen_setPersistentDataFromCVariantSet(
    RgenReportGenerator* generator, const RgenGuid* guid, const RgenCVariantSet* variants);

/**
 * Writes the typed values of a request as an XML file of names and display texts.
 *
 * Pairs, GUID, output fields and handles are not written. The order of the values is not defined.
 * The file contains no types and hints, so rgen_getSimulatedRawDataFromFile finds no values in it.
 *
 * @param generator  The handle; if null: RGEN_E_BAD_PARAMETER.
 * @param input      The request, read only; if it or its variants.items is null:
 *                   RGEN_E_BAD_PARAMETER.
 * @param path       UTF-8 path of the file; an existing file or empty folder is replaced; if null:
 *                   RGEN_E_BAD_PARAMETER.
 * @return           RGEN_OK; RGEN_E_BAD_PARAMETER; RGEN_E_DELETE_DUMP if the existing object cannot
 *                   be removed (Linux: also for a pipe, device or socket, which stays);
 *                   RGEN_E_CREATE_PERSIST if the file cannot be written (an old file is lost by
 *                   then).
 *
 * Threads: any; no lock is taken.
 * Exceptions: std::bad_alloc, std::range_error, boost::filesystem::filesystem_error.
 */
RGEN_API RgenStatus RGEN_CALL rgen_dumpRawInputDataToFile(RgenReportGenerator* generator,
                                                          const RgenCInputParams* input,
                                                          const char* path);

/**
 * Reads typed values from an XML file, for a host that runs with simulated input.
 *
 * The file is <data><properties><property name="n" type="t" hint="h">text</property>...: type is
 * "string", "int64" or "byte_array" (text such as "0x01, 0xAB"), hint one of the names of RgenHint:
 * "Generic", "Time", "Date", "DateTime", "Size", "Address", "Speed", "Dump". White space around all
 * four is removed. Invalid properties, and those with an empty part, are skipped; of two valid
 * properties with the same name the later is used. A number is read by the rules of strtoll, base
 * 10: "12:30:00" is 12, letters are 0, and a number that does not fit into 64 bits becomes the
 * nearest one that does. For an invalid byte array the library writes "input byte dump string is
 * invalid" to standard output, its only output to a console.
 *
 * @param generator  The handle; if null: 0.
 * @param path       UTF-8 path of the file; if null: 0.
 * @param variants   Receives the values on success, otherwise unchanged; if null: 0. The order of
 *                   the entries is not defined.
 *                   Whatever hint the file contains, texts have hint 1 and bytes hint 8; an integer
 *                   with "Dump" has hint 1.
 * @return           1 if the set was filled, 0 if it was not (a missing or unreadable file, Linux:
 *                   also a pipe, device or socket; no valid property; or no memory for any part of
 *                   the set). Not a status.
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
 * Never fails and allocates no memory.
 *
 * @param generator  Any handle, which is not used; if null, the text is "bad function parameter".
 * @param status     Any number. For a number without a description the text is "Undescribed error"
 *                   if one of its two highest bits is set, "Unknown code." if not.
 * @return           A static, null-terminated text; the same pointer for the same number each time.
 *
 * Ownership: the library owns the text; it stays valid as long as the library is loaded, also in
 * exit functions and in the destructors of global objects.
 * Threads: any, at any time; accesses no generator.
 * Exceptions: none.
 */
RGEN_API const char* RGEN_CALL rgen_getStatusCodeDescription(const RgenReportGenerator* generator,
                                                             RgenStatus status);

/* ---- Records: creation ---------------------------------------------------------------------- */

/**
 * Creates a text record from a null-terminated text.
 *
 * @param text    The text, copied; must not be null (not checked).
 * @param target  Overwritten; must not be null (not checked).
 * @return        1, or 0 if memory is exhausted (target is then null and 0).
 *
 * Ownership: free with rgen_freeRgenAnsiString, or with the record that contains it.
 * Threads: any. Exceptions: none.
 */
RGEN_API int32_t RGEN_CALL rgen_createRgenAnsiString(const char* text, RgenAnsiString* target);

/**
 * Creates a byte array record.
 *
 * @param bytes   The bytes, copied; must not be null unless size is 0 (not checked).
 * @param size    Number of bytes; all are copied, the record's size keeps the low 32 bits.
 * @param target  Overwritten; must not be null (not checked).
 * @return        1, or 0 if memory is exhausted (target is then null and 0).
 *
 * Ownership: free with rgen_freeRgenByteArray, or with the record that contains it.
 * Threads: any. Exceptions: none. Units: bytes.
 */
RGEN_API int32_t RGEN_CALL rgen_createRgenByteArray(const uint8_t* bytes, uint64_t size,
                                                    RgenByteArray* target);

/**
 * Creates a set of empty name/text pairs. The lower-case "pair" in the function name is intended.
 *
 * @param target  Overwritten; if null: 0.
 * @param count   Number of entries; if 0: 0, and target is unchanged.
 * @return        1; 0 for a null target, a count of 0, or if memory is exhausted (target is then
 *                null, null and 0).
 *
 * Ownership: fill entries with rgen_createRgenAnsiString; free with rgen_freeRgenCAnsiStringSet.
 * Threads: any. Exceptions: none. Units: entries.
 */
RGEN_API int32_t RGEN_CALL rgen_createRgenCAnsiStringpairSet(RgenCAnsiStringPairSet* target,
                                                             uint64_t count);

/**
 * Creates a set of empty values.
 *
 * @param target  Overwritten; if null: 0.
 * @param count   Number of entries; if 0: 0, and target is unchanged.
 * @return        1; 0 for a null target, a count of 0, or if memory is exhausted (target is then
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
 * @param name    Null-terminated, copied; must not be null (not checked).
 * @param value   The number; seconds since 1970 UTC for the hints time, date and date-time.
 * @param hint    One of RgenHint; values above 9 are stored as 9.
 * @param target  Overwritten; if null: 0.
 * @return        1, or 0 for a null target. If memory for the name is exhausted, the result is 1
 *                and the name is empty (data is null).
 *
 * Ownership: free with rgen_freeRgenCVariant.
 * Threads: any. Exceptions: none.
 */
RGEN_API int32_t RGEN_CALL rgen_createRgenCVariantInt64(const char* name, int64_t value,
                                                        uint64_t hint, RgenCVariant* target);

/**
 * Creates a named handle. Reports, dumps and persistent data do not contain handles.
 *
 * @param name    Null-terminated, copied; must not be null (not checked).
 * @param handle  Any pointer-sized value; never dereferenced, closed or freed.
 * @param hint    One of RgenHint; values above 9 are stored as 9.
 * @param target  Overwritten; if null: 0.
 * @return        As rgen_createRgenCVariantInt64.
 *
 * Ownership: free with rgen_freeRgenCVariant; the caller still owns the handle.
 * Threads: any. Exceptions: none.
 */
RGEN_API int32_t RGEN_CALL rgen_createRgenCVariantHandle(const char* name, void* handle,
                                                         uint64_t hint, RgenCVariant* target);

/**
 * Creates a named text.
 *
 * @param name    Null-terminated, copied; must not be null (not checked).
 * @param text    Null-terminated, copied; must not be null (not checked). See TEXTS for "&".
 * @param hint    Accepted and ignored; RGEN_HINT_GENERIC is stored.
 * @param target  Overwritten; if null: 0.
 * @return        1, or 0 for a null target and if memory for the text is exhausted: the record then
 *                contains the name and an empty text (data is null) and may be freed. If memory for
 *                the name is exhausted, the name is empty and the result is 1.
 *
 * Ownership: free with rgen_freeRgenCVariant.
 * Threads: any. Exceptions: none.
 */
RGEN_API int32_t RGEN_CALL rgen_createRgenCVariantString(const char* name, const char* text,
                                                         uint64_t hint, RgenCVariant* target);

/**
 * Creates a named byte array.
 *
 * @param name    Null-terminated, copied; must not be null (not checked).
 * @param bytes   The bytes, copied; if null: 0.
 * @param size    Number of bytes; all are copied, the record's size keeps the low 32 bits.
 * @param hint    Accepted and ignored; RGEN_HINT_DUMP is stored.
 * @param target  Overwritten; if null: 0.
 * @return        1, or 0 for a null target, null bytes and if memory for the bytes is exhausted:
 *                the record then contains the name and an empty array (data is null) and may be
 *                freed. If memory for the name is exhausted, the name is empty and the result is 1.
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
 * Frees all values of a set and its array, and empties the record.
 *
 * @param set  May be null. If items is null, nothing happens and count is unchanged.
 *
 * Threads: any. Exceptions: none.
 */
RGEN_API void RGEN_CALL rgen_freeRgenCVariantSet(RgenCVariantSet* set);

/**
 * Frees all texts of a set of pairs and both arrays, and empties the record. In spite of its name
 * it is the counterpart of rgen_createRgenCAnsiStringpairSet.
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
