// The peer "Handlebars", which escapes the values of "{{...}}".
//
// SPDX-License-Identifier: MIT
import Handlebars from "handlebars";

import { runProgram } from "./peer_program.mjs";

runProgram((text) => Handlebars.compile(text));
