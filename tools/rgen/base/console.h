// Output of rgen: data to standard output; errors, notes and progress to standard error. Everything
// that is written to standard error is made printable here.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cli {

class CommandError;

class Console {
public:
    /// With `quiet` only errors are printed.
    explicit Console(bool quiet = false);

    /// Prints "rgen: note: ..." and stores the text for the JSON document.
    void note(const std::string& text);
    const std::vector<std::string>& notes() const { return notes_; }
    /// Deletes the stored notes; the text of later ones begins with `place`.
    void beginNotes(const std::string& place);

    /// Prints what was done: "rgen: ...".
    void say(const std::string& text);
    void error(const CommandError& error);
    /// Prints "rgen: TEXT", or "rgen COMMAND: TEXT".
    void errorLine(const std::string& text, const std::string& command = {});
    /// Prints lines to standard error without "rgen: ".
    void plain(const std::string& text);
    /// The same for a text with a line end after its last line.
    void lines(const std::string& text);

    /// Replaces the progress line; shown on a terminal only. The empty text removes it.
    void progress(const std::string& wanted);

private:
    void write(const std::string& line);

    bool quiet_;
    bool terminal_;
    bool colour_;
    std::size_t progressWidth_ = 0;
    std::string place_;
    std::vector<std::string> notes_;
};

/// Writes bytes to standard output. Throws a CommandError when they cannot be written, with
/// ExitCode::ClosedPipe when the reader has closed the pipe.
void printData(std::string_view bytes);

/// Writes lines to standard output: unchanged, or made printable when it is a terminal.
void printLines(const std::string& lines);

/// An error in one line: the message, a semicolon and the hint.
std::string errorText(const CommandError& error);

/// `text` in one printable line: line ends and other control characters as "\n", "\t", "\x01".
std::string inOneLine(const std::string& text);

/// inOneLine, cut after `longest` characters and "..." added.
std::string shortened(const std::string& text, std::size_t longest = 40);

}  // namespace cli
