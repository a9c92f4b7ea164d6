// The driver of one request: the order of the steps from the configuration to the delivery.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "generate/input_params.h"
#include "report_generator.h"
#include "status.h"
#include "variant/variant.h"

namespace rgen {

/// Generates one report; the values are moved out of `request`. `result` is filled in output modes
/// 1 and 2 on success. The first step that fails ends the generation with its status: those of
/// loadReportType, RGEN_E_EMPTY_INPUT, RGEN_E_TEMPLATE_NOT_FOUND, those of transform and deliver,
/// and RGEN_CANCELED. The generation is unregistered in any case, also after an exception.
Status generate(ReportGenerator& generator, InputParams request, Variant& result);

}  // namespace rgen
