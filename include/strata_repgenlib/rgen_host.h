/*
 * strata_repgenlib_host: the report library for hosts in every language. It is a second, small
 * library on top of strata_repgenlib. A host links both; the functions of rgen.h that it still
 * calls are those that throw no exception, such as rgen_freeRgenCVariant. It needs C99 or C++11.
 *
 *     RgenhError error = {sizeof(RgenhError)};
 *     RgenCVariant result = {0};
 *     RgenReportGenerator* generator = rgenh_newReportGenerator(&error);
 *     RgenhValue values[] = {rgenh_textValue("Device", "Disk 1 & 2"),
 *                            rgenh_integerValue("Capacity", 500107862016, RGEN_HINT_SIZE)};
 *     RgenhRequestParts parts = {sizeof(RgenhRequestParts)};
 *     parts.reportType = "5a0c6f1e-3b74-4e59-9d21-7c8e0f6a41b2";
 *     parts.format = "html";
 *     parts.outputPath = "report.html";
 *     parts.values = values;
 *     parts.valueCount = 2;
 *     RgenhRequest* request = rgenh_newRequest(&parts, &error);
 *     rgenh_setDataDirPath(generator, "reports", &error);
 *     if (rgenh_generateReport(generator, rgenh_getRequestInput(request), &result, &error) < 0)
 *         fprintf(stderr, "%s\n", error.message);
 *     rgenh_freeRequest(request);
 *     rgenh_freeReportGenerator(generator, NULL);
 *
 * The conventions of rgen.h (its headings are HANDLES, TEXTS and so on) hold here as well. This
 * header adds the following.
 *
 * NO EXCEPTIONS
 *   No function throws, whatever fails: where a function of rgen.h throws a C++ exception, the
 *   function of this header returns a status and fills an error record. Nothing of the host
 *   changes, not even the std::uncaught_exceptions() of its C++ runtime. A callback of the host
 *   must not throw. Windows: vectored exception handlers of the host see the exceptions that the
 *   libraries throw and catch.
 *
 * ERRORS
 *   Most functions take an error record as their last argument; it may be null. Set its field size
 *   before the first use; each call overwrites all other fields, also on success. Several threads
 *   must not use one record at the same time. If the size is smaller than RGENH_ERROR_SIZE, the
 *   call does nothing: it returns RGEN_E_BAD_PARAMETER, or null if it returns a pointer, and the
 *   record stays unchanged.
 *   A function that returns RgenStatus fails with a negative status: RGEN_E_BAD_PARAMETER for a
 *   wrong argument, RGEN_E_EXTERNAL_FAILED for a pdf that the converter did not make,
 *   RGEN_E_UNKNOWN for a failure for which rgen.h has no status, and otherwise the status of the
 *   function of rgen.h. RgenhError::kind tells these apart.
 *   Every null argument is an error, unless its comment says that it may be null.
 *
 * CALLS FROM A CALLBACK
 *   While a translate callback runs in a report of this header, a call for the same generator on
 *   the same thread returns an error of the kind RGENH_ERROR_REENTERED at once; with rgen.h it
 *   would wait for ever. Functions without a generator, rgenh_dumpRawInputDataToFile and
 *   rgenh_getSimulatedRawDataFromFile may be called. A call from another thread waits until the
 *   callback has returned, so the callback must not wait for that thread.
 *
 * TEXTS
 *   The size of a text is its number of bytes without the terminating zero byte, or
 *   RGENH_NULL_TERMINATED. A null pointer with the size 0 is the empty text. A zero byte inside a
 *   text and more than 2^32 - 1 bytes are errors of the kind argument. A plain text is shown in the
 *   report as it is: this library escapes it. A text of the form RGENH_MARKUP is XML content, which
 *   this library does not escape.
 *
 * OWNERSHIP
 *   A pointer that a function of this header returns is freed with the function that its comment
 *   names. The content of RgenAnsiString, RgenCVariant and sets is freed with the functions of
 *   rgen.h.
 *
 * UNLOADING
 *   The libraries may be unloaded when no call runs, and all generators, requests and jobs are
 *   freed.
 *
 * SPDX-License-Identifier: MIT
 */
#ifndef STRATA_REPGENLIB_RGEN_HOST_H
#define STRATA_REPGENLIB_RGEN_HOST_H

#include <stddef.h>

#include "strata_repgenlib/rgen.h"

/** Marks an exported function. Only the build of the library itself defines RGENH_BUILDING. */
#if defined(_WIN32)
#if defined(RGENH_BUILDING)
#define RGENH_API __declspec(dllexport)
#else
#define RGENH_API __declspec(dllimport)
#endif
#else
#define RGENH_API __attribute__((visibility("default")))
#endif
/** Tells a C++ compiler that a function does not throw. */
#ifdef __cplusplus
#define RGENH_NOEXCEPT noexcept
#else
#define RGENH_NOEXCEPT
#endif

/** The size of a text that ends at its first zero byte. */
#define RGENH_NULL_TERMINATED UINT64_MAX

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Errors --------------------------------------------------------------------------------- */

/** Values of RgenhError::kind. */
enum RgenhErrorKind {
    RGENH_ERROR_NONE = 0,        /**< The call succeeded. */
    RGENH_ERROR_STATUS = 1,      /**< The library returned a negative status, cancellation too. */
    RGENH_ERROR_MEMORY = 2,      /**< Memory or threads are exhausted. */
    RGENH_ERROR_ENCODING = 3,    /**< A path or another text is not valid UTF-8. */
    RGENH_ERROR_FILE_SYSTEM = 4, /**< The file system refused for a reason without a status. */
    RGENH_ERROR_REENTERED = 5,   /**< A callback called its own generator. */
    RGENH_ERROR_CONVERSION = 6,  /**< The converter made no pdf, or not a complete one. */
    RGENH_ERROR_ARGUMENT = 7,    /**< An argument is null or invalid. */
    RGENH_ERROR_CALLBACK = 8,    /**< A translator failed, or returned an invalid text. */
    RGENH_ERROR_UNKNOWN = 9      /**< Any other failure. */
};

/** Size of RgenhError::path, with the terminating zero byte. */
#define RGENH_PATH_SIZE 4096
/** Size of RgenhError::message, with the terminating zero byte. */
#define RGENH_MESSAGE_SIZE 2048

/** Value of RgenhError::entry if the error concerns no entry. */
#define RGENH_NO_ENTRY UINT64_MAX

/** Why a call failed. See ERRORS. */
typedef struct RgenhError {
    /** Set by the caller: sizeof(RgenhError). */
    uint64_t size;
    /** One of RgenhErrorKind. */
    int32_t kind;
    /** The status of the call; RGEN_OK if the call succeeded. */
    RgenStatus status;
    /**
     * The error number of the operating system (Linux: errno, Windows: GetLastError); 0 if there is
     * none. Set for the kinds file system and unknown.
     */
    int64_t systemError;
    /** The position of the argument that is wrong, from 1 on; 0 if no single argument is wrong. */
    int32_t argument;
    /** 1 if `entry` is the index of a pair of a request. */
    int32_t entryIsPair;
    /** The index of the value or pair that is wrong, or RGENH_NO_ENTRY. */
    uint64_t entry;
    /**
     * The path that the error is about; empty if there is none. A path that is too long is cut.
     * UTF-8: bytes that are not are replaced by U+FFFD.
     */
    char path[RGENH_PATH_SIZE];
    /** The error in English for people, UTF-8, one line; empty on success. */
    char message[RGENH_MESSAGE_SIZE];
} RgenhError;

/** The smallest RgenhError::size that is accepted. */
#define RGENH_ERROR_SIZE 6184

/* ---- Generators ----------------------------------------------------------------------------- */

/**
 * Creates a generator; as rgen_newReportGenerator.
 *
 * @param error  May be null.
 * @return       The handle, or null (kinds memory and argument).
 *
 * Ownership: the caller frees the handle with rgenh_freeReportGenerator. The functions of rgen.h
 * take it, too; but do not free it with rgen_freeReportGenerator, and note that jobs do not use
 * what rgen_setDataDirPath and rgen_setTranslateFunction set. The functions of this header take a
 * handle of rgen_newReportGenerator, too, except rgenh_setTranslateFunction, rgenh_setTranslator
 * and rgenh_startReport.
 * Threads: any.
 */
RGENH_API RgenReportGenerator* RGEN_CALL rgenh_newReportGenerator(RgenhError* error) RGENH_NOEXCEPT;

/**
 * Frees a generator; as rgen_freeReportGenerator.
 *
 * @param generator  The handle; if null, nothing happens.
 * @param error      May be null.
 * @return           RGEN_OK, or RGEN_E_UNKNOWN if a callback frees its own generator, which then
 *                   stays usable.
 *
 * Threads: no other call on this handle may be running. Jobs of the generator may: they go on, and
 * use its translator until they end. It waits for the end of the idle threads of jobs, so a host on
 * Windows must not call it in DllMain while the process goes on.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_freeReportGenerator(RgenReportGenerator* generator,
                                                         RgenhError* error) RGENH_NOEXCEPT;

/**
 * Sets the folder that contains the generator's data directory; as rgen_setDataDirPath.
 *
 * @param generator  The handle.
 * @param path       UTF-8 path of an existing folder, copied.
 * @param error      May be null.
 * @return           The status of rgen_setDataDirPath, or see ERRORS. After a failure the generator
 *                   and later jobs use the previous folder.
 *
 * Threads: any. Jobs that started before use the previous folder.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_setDataDirPath(RgenReportGenerator* generator,
                                                    const char* path,
                                                    RgenhError* error) RGENH_NOEXCEPT;

/**
 * Sets the callback that translates the marked texts of templates; as rgen_setTranslateFunction.
 *
 * The returned text becomes part of the template: the host escapes it, with
 * rgenh_escapeTranslation. rgenh_setTranslator takes plain texts instead.
 *
 * A callback that returns null has failed: this and all further marked texts of the report stay
 * untranslated, and the generating call returns an error of the kind RGENH_ERROR_CALLBACK, unless
 * it fails for another reason. In mode 0 the file has been written then; in modes 1 and 2 there is
 * no result. rgen_generateReport ignores the failure.
 *
 * @param generator  A handle of rgenh_newReportGenerator.
 * @param translate  The callback; if null, marked texts stay as they are (rgen.h ignores null).
 * @param context    Passed to every call of the callback; may be null. The object it points to must
 *                   stay valid while reports can be generated. Jobs that started before use the
 *                   previous callback and context until they end.
 * @param error      May be null.
 * @return           RGEN_OK, or see ERRORS.
 *
 * Threads: any; waits while a transformation runs on the same generator. Until the next call of
 * this function, reports and jobs of the generator call the callback one after the other.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_setTranslateFunction(RgenReportGenerator* generator,
                                                          RgenTranslateFunction translate,
                                                          void* context,
                                                          RgenhError* error) RGENH_NOEXCEPT;

/** Values for the form of a text. */
enum RgenhTextForm {
    RGENH_PLAIN = 0, /**< Shown as it is. */
    RGENH_MARKUP = 1 /**< XML content: "&#8364;" is a euro sign, an "&" alone is lost. */
};

/**
 * Sets a translator: a callback whose translations this library escapes, as rgenh_escapeTranslation
 * does. In all other respects it is rgenh_setTranslateFunction.
 *
 * @param generator  A handle of rgenh_newReportGenerator.
 * @param translate  The callback; if null, marked texts stay as they are. A translation that
 *                   rgenh_escapeTranslation refuses counts as a failure of the callback.
 * @param context    As in rgenh_setTranslateFunction.
 * @param form       One of RgenhTextForm: what the callback returns.
 * @param error      May be null.
 * @return           RGEN_OK, or see ERRORS.
 *
 * Threads: as rgenh_setTranslateFunction.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_setTranslator(RgenReportGenerator* generator,
                                                   RgenTranslateFunction translate, void* context,
                                                   uint64_t form, RgenhError* error) RGENH_NOEXCEPT;

/**
 * Asks running reports of a generator to stop; as rgen_cancel. It does not stop jobs:
 * rgenh_cancelJob does.
 *
 * @param generator  The handle.
 * @param guid       The report type whose reports stop; if null, all of this generator.
 * @param error      May be null.
 * @return           RGEN_OK, or see ERRORS.
 *
 * Threads: for a thread other than the generating one; waits while a transformation runs on the
 * same generator.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_cancel(RgenReportGenerator* generator, const RgenGuid* guid,
                                            RgenhError* error) RGENH_NOEXCEPT;

/**
 * Generates one report; as rgen_generateReport. In addition a pdf that is converted (format "pdf",
 * mode 0) is verified: the file "<outputPath>.error.txt" of an earlier conversion is removed before
 * the report, and the pdf is checked after it, as by rgenh_verifyPdf. A double quote in the path or
 * base of such a pdf is an error of the kind argument.
 *
 * @param generator  The handle.
 * @param input      The request, read only: a record of the host, or rgenh_getRequestInput.
 * @param result     As in rgen_generateReport, but filled completely or unchanged: if memory for
 *                   the record is exhausted, the call fails, and a handle of mode 1 is closed.
 * @param error      May be null. Its path is the output path (not in mode 2), or the path that the
 *                   file system refused.
 * @return           The status of rgen_generateReport; RGEN_E_EXTERNAL_FAILED with the kind
 *                   RGENH_ERROR_CONVERSION; or see ERRORS.
 *
 * Ownership: free a filled result with rgen_freeRgenCVariant; the caller closes a mode 1 handle.
 * Threads: any, several at once; see THREADS AND THE LOCK in rgen.h.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_generateReport(RgenReportGenerator* generator,
                                                    const RgenCInputParams* input,
                                                    RgenCVariant* result,
                                                    RgenhError* error) RGENH_NOEXCEPT;

/**
 * Reads the persistent data of a report type; as rgen_getPersistentData. The texts are XML content;
 * rgenh_getPersistentTexts returns plain texts instead.
 *
 * @param generator  The handle.
 * @param guid       The report type.
 * @param pairs      Receives the pairs; may be null. Unchanged on failure. Unlike in rgen.h it is
 *                   a failure if memory for the pairs is exhausted.
 * @param error      May be null.
 * @return           The status of rgen_getPersistentData, or see ERRORS.
 *
 * Ownership: free filled pairs with rgen_freeRgenCAnsiStringSet.
 * Threads: any.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_getPersistentData(RgenReportGenerator* generator,
                                                       const RgenGuid* guid,
                                                       RgenCAnsiStringPairSet* pairs,
                                                       RgenhError* error) RGENH_NOEXCEPT;

/**
 * Replaces the persistent data of a report type; as
 * rgen_setPersistentDataFromAnsiStringPairSet. The texts are XML content that is read twice, and
 * are not checked; rgenh_setPersistentValues takes plain texts instead.
 *
 * @param generator  The handle.
 * @param guid       The report type.
 * @param pairs      The pairs, read only.
 * @param error      May be null.
 * @return           The status of rgen_setPersistentDataFromAnsiStringPairSet, or see ERRORS.
 *
 * Threads: any.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_setPersistentDataFromAnsiStringPairSet(
    RgenReportGenerator* generator, const RgenGuid* guid, const RgenCAnsiStringPairSet* pairs,
    RgenhError* error) RGENH_NOEXCEPT;

/**
 * Replaces the persistent data of a report type with the display texts of typed values; as
 * rgen_setPersistentDataFromCVariantSet.
 *
 * @param generator  The handle.
 * @param guid       The report type.
 * @param variants   The values, read only.
 * @param error      May be null.
 * @return           The status of rgen_setPersistentDataFromCVariantSet, or see ERRORS.
 *
 * Threads: any.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_setPersistentDataFromCVariantSet(
    RgenReportGenerator* generator, const RgenGuid* guid, const RgenCVariantSet* variants,
    RgenhError* error) RGENH_NOEXCEPT;

/**
 * Writes the typed values of a request as an XML file; as rgen_dumpRawInputDataToFile.
 *
 * @param generator  The handle.
 * @param input      The request, read only. Unlike in rgen.h it may have no values.
 * @param path       UTF-8 path of the file.
 * @param error      May be null.
 * @return           The status of rgen_dumpRawInputDataToFile, or see ERRORS.
 *
 * Threads: any.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_dumpRawInputDataToFile(RgenReportGenerator* generator,
                                                            const RgenCInputParams* input,
                                                            const char* path,
                                                            RgenhError* error) RGENH_NOEXCEPT;

/**
 * Reads typed values from an XML file; as rgen_getSimulatedRawDataFromFile.
 *
 * @param generator  The handle.
 * @param path       UTF-8 path of the file.
 * @param variants   Receives the values on success, otherwise unchanged.
 * @param error      May be null.
 * @return           1 if the set was filled; 0 if the file is missing, cannot be read or contains
 *                   no valid property, or if memory for the set is exhausted; a negative status if
 *                   the call failed.
 *
 * Ownership: free a filled set with rgen_freeRgenCVariantSet.
 * Threads: any.
 */
RGENH_API int32_t RGEN_CALL rgenh_getSimulatedRawDataFromFile(RgenReportGenerator* generator,
                                                              const char* path,
                                                              RgenCVariantSet* variants,
                                                              RgenhError* error) RGENH_NOEXCEPT;

/* ---- Requests ------------------------------------------------------------------------------- */

/** A further value for RgenhValue::type: a text of the form RGENH_MARKUP. */
#define RGENH_TYPE_MARKUP 5

/**
 * A named value of a request. 56 bytes. For C and C++ the functions rgenh_textValue,
 * rgenh_integerValue and rgenh_bytesValue fill one.
 */
typedef struct RgenhValue {
    /** The name; may be null if nameSize is 0. */
    const char* name;
    /** Bytes of the name, or RGENH_NULL_TERMINATED. */
    uint64_t nameSize;
    /**
     * RGEN_TYPE_INT64, RGEN_TYPE_STRING, RGEN_TYPE_BYTE_ARRAY, RGEN_TYPE_HANDLE or
     * RGENH_TYPE_MARKUP.
     */
    uint64_t type;
    /** One of RgenHint for integers; ignored for all other types. */
    uint64_t hint;
    /** The integer or handle. */
    int64_t number;
    /** The text or bytes; may be null if size is 0. */
    const void* data;
    /** Bytes of data; for a text possibly RGENH_NULL_TERMINATED. */
    uint64_t size;
} RgenhValue;

/**
 * What a request is made of. Set size and fill all that you do not need with zeros. Everything is
 * copied. All texts are null-terminated.
 */
typedef struct RgenhRequestParts {
    /** Set by the caller: sizeof(RgenhRequestParts). */
    uint64_t size;
    /** The GUID of the report type as text, in braces or not; if null, templateGuid is used. */
    const char* reportType;
    /** The GUID of the report type, if reportType is null. */
    RgenGuid templateGuid;
    /** "html", "pdf" or "txt"; null is the empty text. */
    const char* format;
    /** UTF-8 path of the output file in modes 0 and 1; may be null. */
    const char* outputPath;
    /** Passed to the converter as its base; may be null. */
    const char* converterBase;
    /** One of RgenOutputMode. */
    uint64_t outputMode;
    /** Not zero: a "pdf" is the unconverted output of the template. */
    uint64_t skipExternalConversion;
    /** Typed values; may be null if valueCount is 0. */
    const RgenhValue* values;
    /** Number of values. */
    uint64_t valueCount;
    /**
     * Texts, of the types RGEN_TYPE_STRING and RGENH_TYPE_MARKUP only, which values of the same
     * name replace; may be null if pairCount is 0.
     */
    const RgenhValue* pairs;
    /** Number of pairs. */
    uint64_t pairCount;
} RgenhRequestParts;

/** A request that owns its memory. */
typedef struct RgenhRequest RgenhRequest;

/**
 * Creates a request from arrays in one call. Plain texts are escaped.
 *
 * @param parts  What the request is made of; needed during the call only.
 * @param error  May be null. RgenhError::entry is the index of a wrong value or pair.
 * @return       The request, or null. Kind argument: an invalid GUID, an unknown type, a pair that
 *               is not a text, a null pointer with a size, a zero byte in a text, and more than
 *               2^32 - 1 bytes in one value. Kind memory.
 *
 * Ownership: the caller frees the request with rgenh_freeRequest.
 * Threads: any; several threads may use a request at once.
 * Units: bytes and entries.
 */
RGENH_API RgenhRequest* RGEN_CALL rgenh_newRequest(const RgenhRequestParts* parts,
                                                   RgenhError* error) RGENH_NOEXCEPT;

/**
 * The record of a request, for functions of this header and of rgen.h that take one.
 *
 * @param request  The request; if null, the result is null.
 * @return         The record, valid until the request is freed. It must not be changed, and not be
 *                 freed with rgen_freeRgenCInputParams.
 *
 * Threads: any.
 */
RGENH_API const RgenCInputParams* RGEN_CALL rgenh_getRequestInput(const RgenhRequest* request)
    RGENH_NOEXCEPT;

/**
 * Frees a request. Jobs that use it are not affected.
 *
 * @param request  May be null.
 *
 * Threads: any.
 */
RGENH_API void RGEN_CALL rgenh_freeRequest(RgenhRequest* request) RGENH_NOEXCEPT;

/**
 * Replaces the persistent data of a report type with values: plain texts as they are, other types
 * as a report shows them. Texts are escaped for persistent data as by rgenh_escapeText, and
 * characters that XML cannot contain become U+FFFD, in names as well. Handles are skipped.
 *
 * @param generator  The handle.
 * @param guid       The report type.
 * @param values     The values; may be null if count is 0.
 * @param count      Number of values; 0 empties the store.
 * @param error      May be null. RgenhError::entry is the index of a wrong value.
 * @return           The status of rgen_setPersistentDataFromCVariantSet. Kind argument, with
 *                   nothing stored: what rgenh_newRequest refuses, what rgenh_escapeText refuses
 *                   for persistent data, a name of more than 1,000,000 bytes, and more than
 *                   3,333,333 bytes in a value of RGEN_TYPE_BYTE_ARRAY.
 *
 * Threads: any; two writers at the same time may interleave, the last one wins.
 * Units: entries.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_setPersistentValues(RgenReportGenerator* generator,
                                                         const RgenGuid* guid,
                                                         const RgenhValue* values, uint64_t count,
                                                         RgenhError* error) RGENH_NOEXCEPT;

/**
 * Reads the persistent data of a report type as plain texts: those that
 * rgenh_setPersistentValues stored.
 *
 * @param generator  The handle.
 * @param guid       The report type.
 * @param pairs      Receives the pairs. Unchanged on failure and if there are none.
 * @param error      May be null.
 * @return           The status of rgen_getPersistentData, but RGEN_OK for a file without entries;
 *                   or see ERRORS. RGEN_E_OPEN_PERSIST if nothing has been stored yet.
 *
 * Ownership: free filled pairs with rgen_freeRgenCAnsiStringSet.
 * Threads: any.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_getPersistentTexts(RgenReportGenerator* generator,
                                                        const RgenGuid* guid,
                                                        RgenCAnsiStringPairSet* pairs,
                                                        RgenhError* error) RGENH_NOEXCEPT;

/* ---- Jobs ----------------------------------------------------------------------------------- */

/** A report that is generated on a thread of this library. */
typedef struct RgenhJob RgenhJob;

/**
 * Called on the thread of a job when its report has ended, so that rgenh_takeJobResult returns at
 * once. It may be called before rgenh_startReport has returned.
 *
 * @param job      The job. The function may free it.
 * @param context  The pointer passed to rgenh_startReport.
 */
typedef void(RGEN_CALL* RgenhJobEndFunction)(RgenhJob* job, void* context);

/**
 * Starts a report on a thread of this library, with a stack of 8 MiB, which is enough for templates
 * that call one another 3,000 levels deep.
 *
 * The job has the data directory and the translator that the generator has at the start, and a
 * generator of its own: jobs run at the same time, wait for no other report, and are cancelled one
 * by one. Pdfs are verified as in rgenh_generateReport.
 *
 * Up to four threads stay with the generator when their jobs have ended, and run its next jobs.
 * rgenh_freeReportGenerator ends them. A process that was forked (Linux) starts new ones; it must
 * not use jobs that its parent has started.
 *
 * Linux: signals that terminals, timers and other processes send (SIGHUP, SIGINT, SIGQUIT, SIGTERM,
 * SIGALRM, SIGCHLD, SIGTSTP, SIGWINCH, SIGIO, SIGUSR1) are blocked on the thread. Others are not:
 * language runtimes stop their threads with them.
 *
 * @param generator  A handle of rgenh_newReportGenerator with a data directory set by
 *                   rgenh_setDataDirPath. A relative data directory or output path is read against
 *                   the current folder at the time the job runs.
 * @param request    The request; may be freed before the job ends.
 * @param ended      Called when the job has ended, once; may be null.
 * @param context    Passed to `ended`; may be null.
 * @param error      May be null.
 * @return           The job, or null (kinds argument, memory and re-entered).
 *
 * Ownership: the caller frees the job with rgenh_freeJob.
 * Threads: any; waits for nothing.
 */
RGENH_API RgenhJob* RGEN_CALL rgenh_startReport(RgenReportGenerator* generator,
                                                const RgenhRequest* request,
                                                RgenhJobEndFunction ended, void* context,
                                                RgenhError* error) RGENH_NOEXCEPT;

/**
 * Waits until a job has ended.
 *
 * @param job           The job.
 * @param milliseconds  How long at most; 0 asks only, a negative number waits without a limit.
 * @param error         May be null. It describes this call, not the report.
 * @return              1 if the job has ended, 0 if it still runs, or a negative status.
 *
 * Threads: any, several at once. In a translate callback of the job's generator, the result for a
 * job that still runs is an error of the kind RGENH_ERROR_REENTERED: the job may need the callback.
 * Units: milliseconds.
 */
RGENH_API int32_t RGEN_CALL rgenh_waitForJob(RgenhJob* job, int64_t milliseconds,
                                             RgenhError* error) RGENH_NOEXCEPT;

/**
 * Asks one job to stop, whether its report has begun or not. No other report is stopped.
 *
 * As with rgen_cancel, a job that is past its last check ends with its own status, a transformation
 * is not interrupted, and a converter is not terminated.
 *
 * @param job    The job; one that has ended stays as it is.
 * @param error  May be null.
 * @return       RGEN_OK, or see ERRORS.
 *
 * Threads: any, in callbacks too; waits for nothing.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_cancelJob(RgenhJob* job, RgenhError* error) RGENH_NOEXCEPT;

/**
 * Waits until a job has ended, and returns what rgenh_generateReport would have returned.
 *
 * @param job     The job.
 * @param result  Receives the result of modes 1 and 2, by the first call only; may be null in mode
 *                0. A result that no call takes is freed, and its handle closed, with the job.
 * @param error   May be null. It describes the report.
 * @return        The status of the report.
 *
 * Ownership: as rgenh_generateReport.
 * Threads: any; as rgenh_waitForJob.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_takeJobResult(RgenhJob* job, RgenCVariant* result,
                                                   RgenhError* error) RGENH_NOEXCEPT;

/**
 * Frees a job. A job that still runs is cancelled and waited for.
 *
 * @param job  May be null.
 *
 * Threads: any, but no other call on this job may be running. It returns after the job's
 * RgenhJobEndFunction has returned. In that function itself it waits for nothing; if the generator
 * is freed already, the thread then ends by itself some time after the function has returned, and
 * the library must not be unloaded before. A translator must not free a job of its generator.
 */
RGENH_API void RGEN_CALL rgenh_freeJob(RgenhJob* job) RGENH_NOEXCEPT;

/* ---- Texts ---------------------------------------------------------------------------------- */

/** Where a text is used. */
enum RgenhTextUse {
    RGENH_FOR_REPORT = 0,         /**< A value or pair of a request. */
    RGENH_FOR_PERSISTENT_DATA = 1 /**< A value or pair that is stored. */
};

/**
 * Makes from a text the XML content that functions of rgen.h take.
 *
 * RGENH_PLAIN: for a report, "&" becomes "&amp;". For persistent data, which is read twice, "&"
 * becomes "&amp;amp;", white space at both ends becomes references (the library would remove it),
 * and characters that XML cannot contain become U+FFFD.
 * RGENH_MARKUP: for a report, the text stays as it is. For persistent data it stays as well, except
 * for characters that XML cannot contain; it is then read twice, so "&amp;lt;" is shown as "<".
 *
 * @param text    UTF-8.
 * @param size    Its bytes, or RGENH_NULL_TERMINATED.
 * @param form    One of RgenhTextForm.
 * @param use     One of RgenhTextUse.
 * @param target  Overwritten on success only.
 * @param error   May be null.
 * @return        RGEN_OK, or see ERRORS and TEXTS. For persistent data also kind argument: a text
 *                that is too long (see rgenh_isStorable), and markup with a reference that XML does
 *                not know.
 *
 * Ownership: free the target with rgen_freeRgenAnsiString.
 * Threads: any. Units: bytes.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_escapeText(const char* text, uint64_t size, uint64_t form,
                                                uint64_t use, RgenAnsiString* target,
                                                RgenhError* error) RGENH_NOEXCEPT;

/**
 * Makes the text that a translate callback of rgenh_setTranslateFunction has to return.
 *
 * A translation that equals the original stays unchanged. In all others, characters that XML cannot
 * contain become U+FFFD.
 * RGENH_PLAIN: "&", "<", ">" and "'" are escaped, except for those of the four that the original
 * contains. If the original contains "<", then ">" and "'" are not escaped, so that the translation
 * may contain elements with attributes. Always escaped are an "&" that begins no reference of XML,
 * and "]]>" outside of a CDATA section. Never escaped are "{" and "}", which delimit an XPath
 * expression in attributes of the template.
 * RGENH_MARKUP: the translation is not escaped.
 *
 * @param original     The marked text as the callback received it, null-terminated.
 * @param translation  UTF-8.
 * @param size         Bytes of the translation, or RGENH_NULL_TERMINATED.
 * @param form         One of RgenhTextForm.
 * @param target       Overwritten on success only.
 * @param error        May be null.
 * @return             RGEN_OK, or see ERRORS and TEXTS. Kind argument: markup with a reference that
 *                     XML does not know.
 *
 * Ownership: free the target with rgen_freeRgenAnsiString.
 * Threads: any; callbacks may call it. Units: bytes.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_escapeTranslation(const char* original,
                                                       const char* translation, uint64_t size,
                                                       uint64_t form, RgenAnsiString* target,
                                                       RgenhError* error) RGENH_NOEXCEPT;

/**
 * Replaces the references of XML content by their characters. An "&" that begins no reference
 * stays, as does a reference that XML does not know.
 *
 * @param content  XML content, such as a text of rgenh_getPersistentData.
 * @param size     Its bytes, or RGENH_NULL_TERMINATED.
 * @param target   Overwritten on success only.
 * @param error    May be null.
 * @return         RGEN_OK, or see ERRORS.
 *
 * Ownership: free the target with rgen_freeRgenAnsiString.
 * Threads: any. Units: bytes.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_unescapeText(const char* content, uint64_t size,
                                                  RgenAnsiString* target,
                                                  RgenhError* error) RGENH_NOEXCEPT;

/**
 * Tells whether a text can be stored as persistent data unchanged, and without damage to other
 * entries.
 *
 * @param text   The text.
 * @param size   Its bytes, or RGENH_NULL_TERMINATED.
 * @param form   One of RgenhTextForm.
 * @param error  May be null. If the result is 0, its message says why, and its kind is argument.
 * @return       1 if it can. 0 if the text contains bytes that are not UTF-8, a character that XML
 *               cannot contain, a zero byte, or (markup) a reference that XML does not know; or if
 *               it has more than 10,000,000 bytes, where in a plain text an "&" counts as five
 *               bytes and white space at an end as four or five. A negative status if another
 *               argument is wrong or the call fails.
 *
 * Threads: any. Units: bytes.
 */
RGENH_API int32_t RGEN_CALL rgenh_isStorable(const char* text, uint64_t size, uint64_t form,
                                             RgenhError* error) RGENH_NOEXCEPT;

/**
 * Reads a GUID from its text: 36 characters in upper or lower case, with or without braces around
 * them.
 *
 * @param text   The text.
 * @param size   Its bytes, or RGENH_NULL_TERMINATED.
 * @param guid   Overwritten on success only.
 * @param error  May be null.
 * @return       RGEN_OK; RGEN_E_BAD_PARAMETER if the text is not a GUID; or see ERRORS.
 *
 * Threads: any. Units: bytes.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_parseGuid(const char* text, uint64_t size, RgenGuid* guid,
                                               RgenhError* error) RGENH_NOEXCEPT;

/** Bytes of the text of a GUID, with the terminating zero byte. */
#define RGENH_GUID_TEXT_SIZE 37

/**
 * Writes a GUID as text: 36 characters in lower case, without braces.
 *
 * @param guid   The GUID.
 * @param text   Receives the text and a zero byte: RGENH_GUID_TEXT_SIZE bytes.
 * @param error  May be null.
 * @return       RGEN_OK, or see ERRORS.
 *
 * Threads: any.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_formatGuid(const RgenGuid* guid, char* text,
                                                RgenhError* error) RGENH_NOEXCEPT;

/**
 * Reads a time in the format of ISO 8601.
 *
 * Accepted are "2026-03-09", "2026-03-09T08:14", "2026-03-09T08:14:07" and the last one with a
 * fraction of a second, such as ".25", which is dropped. A blank may replace the "T". Each may end
 * in an offset from UTC: "Z", "+01:00", "+0100" or "+01". Without an offset the time is local.
 *
 * @param text     The text.
 * @param size     Its bytes, or RGENH_NULL_TERMINATED.
 * @param seconds  Overwritten on success only: seconds since 1970 UTC.
 * @param error    May be null.
 * @return         RGEN_OK; RGEN_E_BAD_PARAMETER for another text, and for a time before 1970 or
 *                 after the year 3000 (UTC), which reports cannot show; or see ERRORS.
 *
 * Threads: any; for local times the time zone of the process must not change during the call.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_parseTime(const char* text, uint64_t size, int64_t* seconds,
                                               RgenhError* error) RGENH_NOEXCEPT;

/* ---- Pdf files ------------------------------------------------------------------------------ */

/**
 * Checks a pdf that the converter made: it must begin with "%PDF-" and contain "%%EOF" in its last
 * 1024 bytes, and the file "<path>.error.txt" must not exist, in which the converter writes why it
 * failed. Linux: pipes, devices and sockets are not opened.
 *
 * @param path   UTF-8 path of the pdf.
 * @param error  May be null. Its message includes that of the converter, if there is one.
 * @return       RGEN_OK; RGEN_E_EXTERNAL_FAILED with the kind RGENH_ERROR_CONVERSION; or see
 *               ERRORS.
 *
 * Threads: any.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_verifyPdf(const char* path, RgenhError* error) RGENH_NOEXCEPT;

/* ---- Statuses ------------------------------------------------------------------------------- */

/*
 * The texts below are static, null-terminated English texts, valid as long as the library is
 * loaded. The functions never fail and may be called on any thread at any time.
 */

/** The text of rgen_getStatusCodeDescription for any number. Never null. */
RGENH_API const char* RGEN_CALL rgenh_getStatusText(RgenStatus status) RGENH_NOEXCEPT;

/**
 * The name in rgen_status.h, such as "RGEN_E_EMPTY_INPUT"; empty for a number without a name. Never
 * null.
 */
RGENH_API const char* RGEN_CALL rgenh_getStatusName(RgenStatus status) RGENH_NOEXCEPT;

/**
 * A likely cause of a status, without a period at its end. Index 0 is the most likely one; null
 * after the last one, which is the third at most, and for a number without a name.
 */
RGENH_API const char* RGEN_CALL rgenh_getStatusCause(RgenStatus status,
                                                     uint64_t index) RGENH_NOEXCEPT;

/**
 * What to do about a status, one sentence, which may name a command of the program rgen; empty for
 * a number without a name. Never null.
 */
RGENH_API const char* RGEN_CALL rgenh_getStatusNextStep(RgenStatus status) RGENH_NOEXCEPT;

/**
 * The statuses one by one, in the order of rgen_status.h.
 *
 * @param index   From 0 on.
 * @param status  Receives the status; if null: 0.
 * @return        1, or 0 after the last one.
 */
RGENH_API int32_t RGEN_CALL rgenh_getStatusAt(uint64_t index, RgenStatus* status) RGENH_NOEXCEPT;

/* ---- Versions ------------------------------------------------------------------------------- */

/** Bytes of a version in RgenhVersions, with the terminating zero byte. */
#define RGENH_VERSION_SIZE 32

/** The versions and files of the libraries that the process has really loaded. */
typedef struct RgenhVersions {
    /** Set by the caller: sizeof(RgenhVersions). */
    uint64_t size;
    /** The version of strata_repgenlib, such as "1.2.3"; "unknown" if its file does not say. */
    char library[RGENH_VERSION_SIZE];
    /** The version of strata_repgenlib_host. */
    char host[RGENH_VERSION_SIZE];
    /** UTF-8 path of the file of strata_repgenlib. */
    char libraryPath[RGENH_PATH_SIZE];
    /** UTF-8 path of the file of strata_repgenlib_host. */
    char hostPath[RGENH_PATH_SIZE];
} RgenhVersions;

/**
 * Tells which libraries are loaded.
 *
 * @param versions  Overwritten on success, except for its size.
 * @param error     May be null.
 * @return          RGEN_OK; RGEN_E_BAD_PARAMETER if the record's size is too small; or see ERRORS.
 *
 * Threads: any.
 */
RGENH_API RgenStatus RGEN_CALL rgenh_getVersions(RgenhVersions* versions,
                                                 RgenhError* error) RGENH_NOEXCEPT;

/* ---- Values in C and C++ -------------------------------------------------------------------- */

/** A plain text. Name and text are null-terminated and not copied. */
static inline RgenhValue rgenh_textValue(const char* name, const char* text) RGENH_NOEXCEPT {
    RgenhValue value = {name, RGENH_NULL_TERMINATED, RGEN_TYPE_STRING, RGEN_HINT_GENERIC, 0,
                        text, RGENH_NULL_TERMINATED};
    return value;
}

/** An integer; for the hints of times it is seconds since 1970 UTC. The name is not copied. */
static inline RgenhValue rgenh_integerValue(const char* name, int64_t number,
                                            uint64_t hint) RGENH_NOEXCEPT {
    RgenhValue value = {name, RGENH_NULL_TERMINATED, RGEN_TYPE_INT64, hint, number, NULL, 0};
    return value;
}

/** Bytes. They and the name are not copied. */
static inline RgenhValue rgenh_bytesValue(const char* name, const void* bytes,
                                          uint64_t size) RGENH_NOEXCEPT {
    RgenhValue value = {name, RGENH_NULL_TERMINATED, RGEN_TYPE_BYTE_ARRAY, RGEN_HINT_DUMP, 0, bytes,
                        size};
    return value;
}

#ifdef __cplusplus
}
#endif

#endif
