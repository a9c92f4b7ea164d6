/*
 * The data of the acquisition example: the invented imaging of a 500 GB disk.
 *
 * SPDX-License-Identifier: MIT
 */
#ifndef ACQUISITION_DATA_H
#define ACQUISITION_DATA_H

#include "strata_repgenlib/rgen.h"

/* The report type "acquisition" of templates/acquisition/config.xml. */
extern const RgenGuid acquisitionGuid;

/**
 * Fills a set with the data that is the same for all reports: laboratory, case, people.
 *
 * @param pairs  An empty record; free it with rgen_freeRgenCAnsiStringSet, also after a failure.
 * @return       1, or 0 when memory is exhausted.
 */
int fillAcquisitionPersistentData(RgenCAnsiStringPairSet* pairs);

/**
 * Fills a request with the values of one acquisition; format, mode and path remain empty.
 *
 * @param request  A zero-filled record; free it with rgen_freeRgenCInputParams, also after a
 *                 failure.
 * @return         1, or 0 when memory is exhausted.
 */
int fillAcquisitionRequest(RgenCInputParams* request);

#endif
