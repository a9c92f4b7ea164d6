/*
 * The data of the acquisition example: the invented imaging of a 500 GB disk.
 *
 * SPDX-License-Identifier: MIT
 */
#ifndef ACQUISITION_DATA_H
#define ACQUISITION_DATA_H

#include "strata_repgenlib/rgen_host.h"

/* The report type "acquisition" of templates/acquisition/config.xml. */
extern const RgenGuid acquisitionGuid;

/**
 * Stores the data that is the same for all reports: laboratory, case, people.
 *
 * @param generator  A generator with a data directory.
 * @param error      May be null.
 * @return           The status of rgenh_setPersistentValues.
 */
RgenStatus storeAcquisitionData(RgenReportGenerator* generator, RgenhError* error);

/**
 * Makes a request with the values of one acquisition.
 *
 * @param format  "html", "pdf" or "txt".
 * @param mode    One of RgenOutputMode.
 * @param path    The output file in modes 0 and 1.
 * @param error   May be null.
 * @return        The request, to be freed with rgenh_freeRequest; null if it cannot be made.
 */
RgenhRequest* newAcquisitionRequest(const char* format, uint64_t mode, const char* path,
                                    RgenhError* error);

#endif
