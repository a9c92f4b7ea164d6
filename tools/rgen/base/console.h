// What rgen says: data on standard output; errors, notes and progress on standard error. Whatever
// goes to standard error is made printable here, wherever its words come from.
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
    /// `quiet` leaves out everything but errors.
    explicit Console(bool quiet = false);

    /// A fact that the user should know: "rgen: note: ..."; kept for the JSON document, too.
    void note(const std::string& text);
    const std::vector<std::string>& notes() const { return notes_; }
    /// Forgets the notes; later ones begin with `place`.
    void beginNotes(const std::string& place);

    /// What was done: "rgen: ...".
    void say(const std::string& text);
    void error(const CommandError& error);
    /// An error line on its own: "rgen: TEXT", or "rgen COMMAND: TEXT".
    void errorLine(const std::string& text, const std::string& command = {});
    /// Lines without "rgen: " on standard error.
    void plain(const std::string& text);

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

/// Writes bytes to standard output. Throws a CommandError when they cannot be written, that of a
/// closed pipe when their reader has gone.
void printData(std::string_view bytes);

/// Writes lines for people or for a program: as they are, or printable when a terminal shows them.
void printLines(const std::string& lines);

/// One line of an error: the message and the hint behind a semicolon.
std::string errorText(const CommandError& error);

/// `text` in one printable line: line ends and other control characters as "\n", "\t", "\x01".
std::string inOneLine(const std::string& text);

/// inOneLine, cut at `longest` characters with "..." in their place.
std::string shortened(const std::string& text, std::size_t longest = 40);

}  // namespace cli
