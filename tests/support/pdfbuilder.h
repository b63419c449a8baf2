// SPDX-License-Identifier: Apache-2.0
// Builds small PDF documents from stream objects.
#pragma once
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace support {

// A document of the given stream objects, numbered from 3 on.
inline std::string Pdf(std::vector<std::pair<std::string, std::string>> const& streams) {
    std::string file = "%PDF-1.4\n";
    std::vector<size_t> places;
    const auto add = [&](std::string const& body) {
        places.push_back(file.size());
        file += std::to_string(places.size()) + " 0 obj\n" + body + "\nendobj\n";
    };
    add("<< /Type /Catalog /Pages 2 0 R >>");
    add("<< /Type /Pages /Kids [] /Count 0 >>");
    for (auto const& stream : streams) {
        add("<< " + stream.first + " /Length " + std::to_string(stream.second.size()) + " >>\nstream\n" +
            stream.second + "\nendstream");
    }
    const size_t table = file.size();
    file += "xref\n0 " + std::to_string(places.size() + 1) + "\n0000000000 65535 f \n";
    for (const size_t place : places) {
        const std::string digits = std::to_string(place);
        file += std::string(10 - digits.size(), '0') + digits + " 00000 n \n";
    }
    return file + "trailer\n<< /Size " + std::to_string(places.size() + 1) + " /Root 1 0 R >>\nstartxref\n" +
           std::to_string(table) + "\n%%EOF\n";
}

// The dictionary of a picture.
inline std::string PdfImageHead(int width, int height, std::string const& more) {
    return "/Type /XObject /Subtype /Image /Width " + std::to_string(width) + " /Height " + std::to_string(height) +
           " " + more;
}

}  // namespace support
