// The peer "Eta", which escapes the values of "<%= ... %>".
//
// SPDX-License-Identifier: MIT
import { Eta } from "eta";

import { runProgram } from "./peer_program.mjs";

const eta = new Eta();

runProgram((text) => {
    const page = eta.compile(text);
    return (context) => eta.render(page, context);
});
