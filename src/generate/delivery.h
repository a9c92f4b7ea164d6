// Delivery, the last step of a generation: writes or returns the bytes of the report.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "generate/input_params.h"
#include "report_generator.h"
#include "status.h"
#include "sync/cancellation.h"
#include "variant/variant.h"

namespace rgen {

/// Delivers according to the request's output mode: 0 writes a file (for "pdf" through the
/// converter), 1 stores the open handle of a delete-on-close file in `result`, 2 stores the bytes
/// there. Runs without the generator's mutex. Failures: RGEN_E_OVERWRITE_OUTPUT,
/// RGEN_E_CREATE_OUTPUT, RGEN_E_WRITE_OUTPUT, RGEN_E_WRITE_ALL_OUTPUT, RGEN_E_UNKNOWN_OUTPUT_MODE
/// and those of runExternalProgram; `result` is then unchanged.
Status deliver(ReportGenerator& generator, const InputParams& request, ByteVector bytes,
               const sync::CancellationToken& token, Variant& result);

}  // namespace rgen
