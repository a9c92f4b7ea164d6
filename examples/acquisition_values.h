// The data of the acquisition example as the C++ host has it: the disk of acquisition_data.c.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "strata_repgenlib/rgen.hpp"

/// The report type "acquisition" of templates/acquisition/config.xml.
inline constexpr strata::repgen::Guid acquisitionType("5a0c6f1e-3b74-4e59-9d21-7c8e0f6a41b2");

/// What stays the same from report to report: laboratory, case, people.
strata::repgen::Texts laboratoryData();

/// What somebody wrote about one acquisition.
strata::repgen::Texts acquisitionRemarks();

/// What was measured in one acquisition.
strata::repgen::Values acquisitionValues();
