// The peer "Handlebars"; it escapes what "{{...}}" shows.
//
// SPDX-License-Identifier: MIT
import Handlebars from "handlebars";

import { runProgram } from "./peer_program.mjs";

runProgram((text) => Handlebars.compile(text));
