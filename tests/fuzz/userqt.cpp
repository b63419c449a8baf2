// SPDX-License-Identifier: Apache-2.0
// The user's file of quantisation table signatures.
#include "tests/fuzz/engine.h"
#include "tests/fuzz/target.h"
#include "tolbase/file.h"
#include "tolbase/parser.h"

namespace fuzz {

namespace {

void CheckLine(FuzzContext& engine, std::string const& line) {
    wxString rest = Text(line) + "\nnext";
    JpegSignature record;
    engine.ParseQtDatabaseString(rest, record);
    Require(rest == "next", "one line is cut off");
}

void Run(std::string const& bytes) {
    FuzzContext& engine = Engine();
    static InputFile const file([&engine] {
        CreateDirIfNotExists(engine.GetUserQtDatabasePath());
        return engine.GetUserQtDatabaseFilename().Mid(Folder().length() + 1);
    }());
    file.Hold(bytes);
    engine.LoadUserQtDatabase();
    auto const& records = engine.GetListOfSignaturesInUserQtDatabase();
    size_t const count = records.size();
    size_t const rows =
        engine.GetListOfEditorsInUserQtDatabase(0).size() + engine.GetListOfEditorsInUserQtDatabase(1).size();
    Require(count == rows, "a row for each signature");
    Require(count <= Lines(bytes).size(), "a line for each signature");
    for (JpegSignature const& record : records) {
        int const editorClass = FromString<int>(record.editorClass);
        Require(editorClass == 1 || editorClass == 2, "a signature is of a class");
    }
    // As a user would, and so that the next input meets an empty list.
    for (size_t left = count; left > 0; --left) {
        int const editorClass = FromString<int>(records[left - 1].editorClass);
        engine.RemoveEntryFromUserQtDatabase(editorClass, static_cast<int>(left - 1));
    }
    Require(engine.GetListOfEditorsInUserQtDatabase(0).empty() && engine.GetListOfEditorsInUserQtDatabase(1).empty(),
            "signatures can be removed with their rows");
    for (std::string const& line : Lines(bytes)) CheckLine(engine, line);
}

std::vector<std::string> Seeds() {
    std::string const camera =
        "SIG 1 ,\"Acme\",\"Shooter 5\",\"FINE\",\"0123456789ABCDEF0123456789ABCDEF\","
        "\"FEDCBA9876543210FEDCBA9876543210\",\"2x1\",\"\",\"\"\n";
    std::string const software =
        "SIG 2 ,\"\",\"\",\"(Save As 10)\",\"0123456789ABCDEF0123456789ABCDEF\",\"\",\"\",\"Paintworks\",\"Paint 3\"\n";
    std::string wide("\xFF\xFE");
    for (const char c : camera) wide += std::string(1, c) + '\0';
    return {camera + software,       "// a comment\n" + software + camera + "\n\nSIG 3 ,\"x\"\n",
            "SIG 1 ,\"open\nSIG 2",  wide,
            "\xEF\xBB\xBF" + camera, "SIG 1 ,\"\xE4\xFF\"\r\nSIG +1 ,\"\"\nSIG 01 ,\"\""};
}

}  // namespace

Target UserQtTarget() {
    return {"userqt", Run, Seeds};
}

}  // namespace fuzz
