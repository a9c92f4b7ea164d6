// The data of acquisition_data.c for the C++ host.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "strata_repgenlib/rgen.hpp"

/// The report type "acquisition" of templates/acquisition/config.xml.
inline constexpr strata::repgen::Guid acquisitionType("5a0c6f1e-3b74-4e59-9d21-7c8e0f6a41b2");

/// The data that is the same for all reports: laboratory, case, people.
strata::repgen::Texts laboratoryData();

/// The texts about one acquisition.
strata::repgen::Texts acquisitionRemarks();

/// The measured values of one acquisition.
strata::repgen::Values acquisitionValues();
