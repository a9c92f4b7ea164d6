// A minimal PDF: catalog, pages, page, content, font.
//
// SPDX-License-Identifier: MIT
#include "engine/error_pdf.h"

#include <cstdio>
#include <vector>

namespace vellum {
namespace {

constexpr std::size_t lineLength = 80;

std::string pdfText(const std::string& text) {
    std::string escaped;
    for (const char letter : text) {
        // One question mark for each non-ASCII character: continuation bytes are skipped.
        if ((static_cast<unsigned char>(letter) & 0xC0U) == 0x80U) continue;
        const bool isPlain = letter >= ' ' && letter <= '~';
        if (letter == '(' || letter == ')' || letter == '\\') escaped += '\\';
        escaped += isPlain ? letter : '?';
    }
    return escaped;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = at + lineLength;
        if (end < text.size()) {
            const std::size_t blank = text.rfind(' ', end);
            if (blank != std::string::npos && blank > at) end = blank;
        }
        lines.push_back(text.substr(at, end - at));
        at = end + (end < text.size() && text[end] == ' ' ? 1 : 0);
    }
    return lines;
}

std::string contentStream(const std::string& text) {
    std::string stream =
        "BT /F1 16 Tf 50 780 Td (This report could not be made.) Tj /F1 11 Tf 0 -30 Td";
    for (const std::string& line : linesOf(text))
        stream += " (" + pdfText(line) + ") Tj 0 -16 Td";
    return stream + " ET";
}

}  // namespace

std::string errorPdf(const std::string& text) {
    const std::string stream = contentStream(text);
    const std::string page =
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] /Contents 4 0 R "
        "/Resources << /Font << /F1 5 0 R >> >> >>";
    const std::vector<std::string> objects = {
        "<< /Type /Catalog /Pages 2 0 R >>",
        "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        page,
        "<< /Length " + std::to_string(stream.size()) + " >>\nstream\n" + stream + "\nendstream",
        "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>",
    };
    std::string pdf = "%PDF-1.4\n";
    std::string table = "0000000000 65535 f \n";
    for (std::size_t i = 0; i < objects.size(); ++i) {
        char entry[32] = {};
        std::snprintf(entry, sizeof entry, "%010zu 00000 n \n", pdf.size());
        table += entry;
        pdf += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const std::string count = std::to_string(objects.size() + 1);
    return pdf + "xref\n0 " + count + "\n" + table + "trailer\n<< /Size " + count +
           " /Root 1 0 R >>\nstartxref\n" + std::to_string(pdf.size()) + "\n%%EOF\n";
}

}  // namespace vellum
