// A stand-in for a browser engine. The last argument is the URL of the page, "--print-to-pdf=PATH"
// the path of the PDF; without that option the last two arguments are page and PDF, as for
// WeasyPrint. It does what the environment variable STAND_IN_ENGINE says, "pdf" by default:
//
// pdf          writes a small PDF of one page unwell       the same, but prints an error and exits
// with code 3 nothing      writes no file and exits with code 0 garbage      writes a file that is
// not a PDF cut          writes a truncated PDF fail:TEXT    prints the text on standard error and
// exits with code 1 hang         does nothing until it is killed stuck        writes a truncated
// PDF, then hangs linger       writes a PDF, then hangs child        starts a copy of itself that
// hangs, then hangs swell        allocates 200 MiB of memory, then hangs swell child  starts a copy
// of itself that allocates 200 MiB and hangs, then hangs
//
// If STAND_IN_ENGINE_LOG is the path of a file, it first writes its own name and its arguments to
// it, one per line. FILE.html is then a copy of the page; FILE.hangs is created when the program
// starts to hang, and FILE.child when its copy does.
//
// SPDX-License-Identifier: MIT
#include "vellum/stand_in_engine.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace {

namespace fs = std::filesystem;

constexpr int exitOfUnknownWord = 96;
constexpr int exitOfFailure = 1;
constexpr int exitOfUnwell = 3;

struct Task {
    std::string page;
    std::string pdf;
};

Task taskOf(const std::vector<std::string>& arguments) {
    const std::string option = "--print-to-pdf=";
    Task task;
    for (const std::string& argument : arguments) {
        if (argument.compare(0, option.size(), option) == 0) {
            task.pdf = argument.substr(option.size());
        }
    }
    const std::size_t count = arguments.size();
    if (count > 1 && !task.pdf.empty()) {
        task.page = arguments[count - 1];
    } else if (count > 2) {
        task.page = arguments[count - 2];
        task.pdf = arguments[count - 1];
    }
    return task;
}

// Decodes percent-encoding.
std::string percentDecoded(const std::string& text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            decoded += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            decoded += text[i];
        }
    }
    return decoded;
}

// The path of a page that is given as a URL or as a path.
fs::path pathOfPage(const std::string& page) {
    const std::string address = "file://";
    if (page.compare(0, address.size(), address) != 0) return fs::u8path(page);
    const std::string path = percentDecoded(page.substr(address.size()));
    const bool hasDrive = path.size() > 2 && path[2] == ':';
    return fs::u8path(hasDrive ? path.substr(1) : path);
}

void write(const std::string& path, const std::string& text) {
    std::ofstream(fs::u8path(path), std::ios::binary) << text;
}

// The list of arguments is written last and is renamed: once it exists, the copy exists, too.
void writeLog(const std::string& path, const std::vector<std::string>& arguments,
              const Task& task) {
    std::error_code ignored;
    fs::copy_file(pathOfPage(task.page), fs::u8path(path + ".html"),
                  fs::copy_options::overwrite_existing, ignored);
    std::string lines;
    for (const std::string& argument : arguments) {
        lines += argument + "\n";
    }
    write(path + ".unfinished", lines);
    fs::rename(fs::u8path(path + ".unfinished"), fs::u8path(path));
}

// One page of the size A4 with the words "stand-in page".
std::string smallPdf() {
    const std::string content = "BT /F1 24 Tf 72 720 Td (stand-in page) Tj ET";
    const std::vector<std::string> objects = {
        "<</Type/Catalog/Pages 2 0 R>>", "<</Type/Pages/Kids[3 0 R]/Count 1>>",
        "<</Type/Page/Parent 2 0 R/MediaBox[0 0 595 842]/Contents 4 0 R"
        "/Resources<</Font<</F1 5 0 R>>>>>>",
        "<</Length " + std::to_string(content.size()) + ">>\nstream\n" + content + "\nendstream",
        "<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>"};
    std::string pdf = "%PDF-1.4\n";
    std::string table = "0000000000 65535 f \n";
    for (std::size_t i = 0; i < objects.size(); ++i) {
        char row[32];
        std::snprintf(row, sizeof row, "%010zu 00000 n \n", pdf.size());
        table += row;
        pdf += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const std::string count = std::to_string(objects.size() + 1);
    const std::string start = std::to_string(pdf.size());
    return pdf + "xref\n0 " + count + "\n" + table + "trailer\n<</Size " + count +
           "/Root 1 0 R>>\nstartxref\n" + start + "\n%%EOF\n";
}

std::string cutPdf() {
    const std::string whole = smallPdf();
    return whole.substr(0, whole.find("startxref"));
}

void hangMarked(const std::string& log) {
    stand_in_engine::hang(log.empty() ? log : log + ".hangs");
}

// Carries out a command that writes a file; returns whether the command is known.
bool writePdf(const std::string& word, const std::string& path) {
    if (word == "pdf" || word == "unwell" || word == "linger") {
        write(path, smallPdf());
    } else if (word == "cut" || word == "stuck") {
        write(path, cutPdf());
    } else if (word == "garbage") {
        write(path, "<html>this is no PDF %%EOF</html>");
    } else {
        return word == "nothing" || word == "hang" || word == "child" || word == "swell" ||
               word == "swell child";
    }
    return true;
}

// Allocates and uses so much memory, then hangs.
void swellAndHang(const std::string& mark) {
    constexpr std::size_t size = 200 * 1048576;
    const std::vector<char> memory(size, 'x');
    stand_in_engine::hang(mark);
}

int obey(const std::string& word, const Task& task, const std::string& log) {
    const std::string failure = "fail:";
    if (word.compare(0, failure.size(), failure) == 0) {
        std::cerr << word.substr(failure.size()) << std::endl;
        return exitOfFailure;
    }
    if (!writePdf(word, task.pdf)) return exitOfUnknownWord;
    if (word == "child")
        stand_in_engine::startCopy("--hang=" + (log.empty() ? log : log + ".child"));
    if (word == "swell") swellAndHang("");
    if (word == "swell child") {
        stand_in_engine::startCopy("--swell");
        stand_in_engine::hang("");
    }
    if (word == "hang" || word == "stuck" || word == "linger" || word == "child") hangMarked(log);
    if (word == "unwell") std::cerr << "something is wrong" << std::endl;
    return word == "unwell" ? exitOfUnwell : EXIT_SUCCESS;
}

}  // namespace

int main() {
    const std::vector<std::string> arguments = stand_in_engine::arguments();
    const std::string copyMark = "--hang=";
    if (arguments.size() == 2 && arguments[1].compare(0, copyMark.size(), copyMark) == 0) {
        stand_in_engine::hang(arguments[1].substr(copyMark.size()));
        return EXIT_SUCCESS;
    }
    if (arguments.size() == 2 && arguments[1] == "--swell") {
        swellAndHang("");
        return EXIT_SUCCESS;
    }
    const Task task = taskOf(arguments);
    const std::string log = stand_in_engine::variable("STAND_IN_ENGINE_LOG");
    if (!log.empty()) writeLog(log, arguments, task);
    const std::string word = stand_in_engine::variable("STAND_IN_ENGINE");
    return obey(word.empty() ? "pdf" : word, task, log);
}
