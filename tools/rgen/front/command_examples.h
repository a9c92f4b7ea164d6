// The examples in the help of the commands.
//
// SPDX-License-Identifier: MIT
#pragma once

namespace cli {

inline constexpr const char* rgenExamples =
    R"(rgen makes reports with strata_repgenlib: from values and an XSLT template to html, pdf
or txt.

Examples:
  rgen init case
  rgen persist set -d case --data case/acquisition-lab.json
  rgen report -d case --data case/acquisition.json -o report.html
  rgen report -d case --data case/acquisition.json -o bericht.html --lang de

Exit codes: 0 done, 1 the library refused, 2 usage, 3 a check found a mistake, 4 output not
verified, 5 environment (no data directory, no converter), 130 interrupted, 141 nobody reads

)";

inline constexpr const char* reportExamples = R"(Examples:
  rgen report -d case --data case/acquisition.json -o report.html
  rgen report -d case -t acquisition -f txt -o - --set Report.Number=AR-7
  rgen report -d case -o report.html --set Device.Capacity:size=500107862016 \
      --set Report.Created:datetime=now --set Sector.First:bytes=@sector.bin
  rgen report -d case --data case/acquisition.json -o bericht.txt --lang de
  rgen report -d case --batch items.ndjson

Hints: text, text@, int, size, speed, address, time, date, datetime, bytes

)";

inline constexpr const char* checkExamples = R"(Examples:
  rgen check -d case
  rgen check -d case acquisition --data case/acquisition.json
  rgen check case/.rgen/templates/html/acquisition.xsl
  rgen check -d case --sarif findings.sarif

)";

inline constexpr const char* messagesExamples = R"(Examples:
  rgen messages -d case
  rgen messages -d case acquisition -o acquisition.pot
  rgen messages -d case --merge
  rgen messages -d case --merge --lang fr
  rgen messages -d case --check

)";

inline constexpr const char* previewExamples = R"(Examples:
  rgen preview -d case --open
  rgen preview -d case --data case/acquisition.json --editor 'code -g {file}:{line}'

)";

inline constexpr const char* testExamples = R"(Examples:
  rgen test -d case
  rgen test -d case acquisition --accept
  rgen test -d case --junit results.xml

)";

inline constexpr const char* bundleExamples = R"(Examples:
  rgen bundle health.xsl -o case/.rgen/templates/html/health.xsl
  rgen bundle health.xsl -o - --parts parts
  rgen bundle -d case                      all templates that were bundled before
  rgen bundle -d case --check

)";

inline constexpr const char* persistExamples = R"(Examples:
  rgen persist set -d case "Lab.Name=Brackwater & Lindqvell" Examiner.Name=Marta
  rgen persist get -d case
  rgen persist get -d case Lab.Name
  rgen persist unset -d case Examiner.Name

)";

inline constexpr const char* persistGetExamples = R"(Examples:
  rgen persist get -d case                 all names and texts
  rgen persist get -d case Lab.Name        one text
  rgen persist get -d case --json

)";

inline constexpr const char* persistSetExamples = R"(Examples:
  rgen persist set -d case "Lab.Name=Brackwater & Lindqvell" Examiner.Name=Marta
  rgen persist set -d case --data lab.json
  rgen persist unset -d case Examiner.Name   (there are no empty texts)

)";

inline constexpr const char* persistUnsetExamples = R"(Examples:
  rgen persist unset -d case Examiner.Name Reviewer.Name

)";

inline constexpr const char* persistReplaceExamples = R"(Examples:
  rgen persist replace -d case Lab.Name=Brackwater
  rgen persist replace -d case --data lab.json

)";

inline constexpr const char* dumpExamples = R"(Examples:
  rgen dump --data case/acquisition.json -o dump.xml
  rgen dump --set Device.Capacity:size=500107862016 -o -

)";

inline constexpr const char* simulateExamples = R"(Examples:
  rgen simulate --data case/acquisition.json -o simulated.xml
  rgen report -d case --data simulated.xml -o report.html

)";

inline constexpr const char* initExamples = R"(Examples:
  rgen init case
  rgen report -d case --data case/acquisition.json -o report.html

)";

inline constexpr const char* newExamples = R"(Examples:
  rgen new -d case health
  rgen new -d case health --title "Health of the servers" --langs de,ja
  rgen new -d case visits --from-data visits.json --formats html,txt

)";

inline constexpr const char* typesExamples = R"(Examples:
  rgen types -d case
  rgen types -d case --json

)";

inline constexpr const char* explainExamples = R"(Examples:
  rgen explain 0xC0020002
  rgen explain RGEN_E_TEMPLATE_NOT_FOUND
  rgen explain
  rgen explain -d case -t acquisition
  rgen explain case/.rgen/templates/html/acquisition.xsl --skeleton new.json

)";

inline constexpr const char* doctorExamples = R"(Examples:
  rgen doctor
  rgen doctor -d case

)";

inline constexpr const char* completionExamples = R"(Examples:
  rgen completion bash > ~/.local/share/bash-completion/completions/rgen
  rgen completion zsh > "${fpath[1]}/_rgen"

)";

}  // namespace cli
