/*
 * German and Russian translations of the texts that are marked in the acquisition templates.
 *
 * SPDX-License-Identifier: MIT
 */
#ifndef ACQUISITION_TEXTS_H
#define ACQUISITION_TEXTS_H

/* One language; the tables are in acquisition_texts.c. */
typedef struct AcquisitionLanguage {
    /* Two letters, "en", "de" or "ru". */
    const char* code;
    /* Column of the table; 0 is the English text itself. */
    int column;
} AcquisitionLanguage;

enum { AcquisitionLanguageCount = 3 };

extern const AcquisitionLanguage acquisitionLanguages[AcquisitionLanguageCount];

/* The context of the translate callback. */
typedef struct AcquisitionTranslator {
    const AcquisitionLanguage* language;
    /* The number of requested texts that are in no table. */
    unsigned missing;
} AcquisitionTranslator;

/**
 * Translates one text; to be passed to rgenh_setTranslateFunction.
 *
 * @param text     The marked text of the template.
 * @param context  An AcquisitionTranslator.
 * @return         The translation, a static text. Without one, text itself; this is counted and
 *                 reported on standard error.
 */
const char* translateAcquisitionText(const char* text, void* context);

#endif
