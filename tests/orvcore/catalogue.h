// SPDX-License-Identifier: Apache-2.0
// A message catalogue made from pairs of texts, put in place as wxWidgets' translations.
#pragma once
#include <wx/translation.h>

#include <cstdint>
#include <map>
#include <string>

#include "tests/support/tempdir.h"

namespace support {

// The file format of GNU gettext: a header, two tables of lengths and offsets, the texts.
inline std::string MakeCatalogue(std::map<std::string, std::string> texts) {
    texts[""] = "Content-Type: text/plain; charset=UTF-8\n";
    std::string sources, targets;
    std::string sourceTable, targetTable;
    const auto number = [](std::size_t value) {
        std::string bytes;
        for (unsigned i = 0; i < 4; ++i) bytes += static_cast<char>(value >> (8 * i));
        return bytes;
    };
    const std::size_t start = 28 + 16 * texts.size();
    std::size_t sourceBytes = 0;
    for (auto const& text : texts) sourceBytes += text.first.size() + 1;
    for (auto const& text : texts) {
        sourceTable += number(text.first.size()) + number(start + sources.size());
        targetTable += number(text.second.size()) + number(start + sourceBytes + targets.size());
        sources += text.first + '\0';
        targets += text.second + '\0';
    }
    return number(0x950412de) + number(0) + number(texts.size()) + number(28) + number(28 + 8 * texts.size()) +
           number(0) + number(start) + sourceTable + targetTable + sources + targets;
}

// From now on the texts are translated thus, as if the language were Italian. False if wxWidgets refuses the catalogue.
inline bool UseTranslations(TempDir const& dir, std::map<std::string, std::string> const& texts) {
    WriteBytes(dir / "it/orvtest.mo", MakeCatalogue(texts));
    wxFileTranslationsLoader::AddCatalogLookupPathPrefix(dir.Path());
    auto* translations = new wxTranslations;
    wxTranslations::Set(translations);
    translations->SetLanguage("it");
    return translations->AddCatalog("orvtest", wxLANGUAGE_ENGLISH_US);
}

}  // namespace support
