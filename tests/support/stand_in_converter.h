// What the stand-in converter needs of its operating system. The program itself is in
// stand_in_converter.cpp, the two sources behind this header are stand_in_converter_windows.cpp and
// stand_in_converter_posix.cpp.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_STAND_IN_CONVERTER_H
#define RGEN_TESTS_SUPPORT_STAND_IN_CONVERTER_H

#include <ostream>
#include <string>

namespace stand_in {

// Returns the UTF-8 path of the control file, or the empty text when none was given.
std::string controlFilePath();

// Returns the number of this process.
unsigned long processNumber();

// Writes how this process was started, one fact a line, its fields separated by tabs.
void describeProcess(std::ostream& out);

// Ends this process as a program error does, without any dialog, debugger or core file.
[[noreturn]] void crash();

// From now on signals that ask this process to end have no effect, where the system has signals.
void ignoreSignals();

// Obeys another control file in a process that lives on when this one ends.
void obeyInBackground(const std::string& controlPath);

// Obeys the commands of one control file and returns the exit code.
int obey(const std::string& controlPath);

}  // namespace stand_in

#endif
