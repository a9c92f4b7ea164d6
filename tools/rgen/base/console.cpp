// Lines on standard error and bytes on standard output.
//
// SPDX-License-Identifier: MIT
#include "base/console.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include "base/command_error.h"
#include "base/host_system.h"
#include "text/printable_text.h"

namespace cli {
namespace {

/// Only rgen itself puts line ends into a text; those of texts from outside are already escaped.
constexpr const char* ownLayout = "\n\t";

bool isSet(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

}  // namespace

Console::Console(bool quiet)
    : quiet_(quiet),
      terminal_(standardErrorIsTerminal()),
      colour_(!isSet("NO_COLOR") && standardErrorHasColour()) {}

void Console::write(const std::string& line) {
    progress({});
    std::fputs((line + "\n").c_str(), stderr);
    // On Windows standard error has a buffer unless it is a terminal; a message about waiting would
    // come too late.
    std::fflush(stderr);
}

void Console::note(const std::string& text) {
    notes_.push_back(place_ + text);
    if (!quiet_) write("rgen: note: " + inOneLine(notes_.back()));
}

void Console::beginNotes(const std::string& place) {
    place_ = place;
    notes_.clear();
}

void Console::say(const std::string& text) {
    if (!quiet_) write("rgen: " + inOneLine(text));
}

void Console::error(const CommandError& error) {
    errorLine(errorText(error), error.command);
    if (error.diagnosis) lines(error.diagnosis->lines);
}

void Console::errorLine(const std::string& text, const std::string& command) {
    const std::string program = command.empty() ? "rgen:" : "rgen " + command + ":";
    write((colour_ ? "\033[31m" + program + "\033[0m " : program + " ") + inOneLine(text));
}

void Console::lines(const std::string& text) {
    plain(text.substr(0, text.find_last_not_of('\n') + 1));
}

void Console::plain(const std::string& text) {
    write(tools::printable(text, ownLayout));
}

void Console::progress(const std::string& wanted) {
    constexpr std::size_t narrowTerminal = 72;
    const std::string text = shortened(wanted, narrowTerminal);
    if (quiet_ || !terminal_ || (text.empty() && progressWidth_ == 0)) return;
    const std::size_t blanks = progressWidth_ > text.size() ? progressWidth_ - text.size() : 0;
    std::fputs(("\r" + text + std::string(blanks, ' ') + (text.empty() ? "\r" : "")).c_str(),
               stderr);
    progressWidth_ = text.size();
}

void printData(std::string_view bytes) {
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() &&
                         std::fflush(stdout) == 0;
    if (written) return;
    const int reason = errno;
    if (isWithoutReader(reason)) {
        throw CommandError(ExitCode::ClosedPipe, "nobody reads standard output");
    }
    throw CommandError(ExitCode::Unverified,
                       "cannot write standard output: " + std::generic_category().message(reason),
                       "check where it leads to");
}

void printLines(const std::string& lines) {
    printData(standardOutputIsTerminal() ? tools::printable(lines, ownLayout) : lines);
}

std::string errorText(const CommandError& error) {
    const std::string message = error.what();
    return error.hint.empty() ? message : message + "; " + error.hint;
}

std::string inOneLine(const std::string& text) {
    return tools::printable(text);
}

std::string shortened(const std::string& text, std::size_t longest) {
    std::string line = inOneLine(text);
    std::size_t characters = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (isContinuation(line[i])) continue;
        if (++characters > longest) return line.substr(0, i) + "...";
    }
    return line;
}

}  // namespace cli
