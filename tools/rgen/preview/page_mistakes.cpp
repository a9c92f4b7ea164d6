// SPDX-License-Identifier: MIT
#include "preview/page_mistakes.h"

namespace cli {
namespace {

bool isAboutTemplate(const CommandError& failure) {
    const RgenStatus status = failure.status.value_or(RGEN_OK);
    return status == RGEN_E_XSLT_PARSE || status == RGEN_E_XSLT_APPLY ||
           status == RGEN_E_XSLT_RESULT;
}

}  // namespace

Findings mistakesOf(const ReportContext& context, const ReportRequest& request,
                    const CommandError& failure) {
    Finding finding;
    finding.code = "no-report";
    finding.what = failure.what();
    finding.advice = failure.hint;
    if (isAboutTemplate(failure)) {
        finding.file = templatePath(context.directory, request.type, request.arguments.format);
    }
    Findings findings;
    findings.add(finding);
    return findings;
}

}  // namespace cli
