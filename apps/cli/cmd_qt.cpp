// SPDX-License-Identifier: Apache-2.0
// orvelle qt: the signatures of quantisation tables, the compiled ones and the user's own.
#include <algorithm>

#include "apps/cli/arguments.h"
#include "apps/cli/clicontext.h"
#include "apps/cli/command.h"
#include "apps/cli/failure.h"
#include "apps/cli/plaintable.h"
#include "apps/cli/recordrun.h"
#include "apps/cli/text.h"
#include "apps/cli/userqt.h"
#include "tolbase/file.h"
#include "tolbase/text.h"

namespace cli {

namespace {

constexpr int ClassCamera = 1;
constexpr int ClassSoftware = 2;

char const* ClassName(int editorClass) {
    return editorClass == ClassSoftware ? "software" : "camera";
}

// A signature as the databases write it; empty for what is none.
wxString CleanSignature(std::string const& text) {
    const bool right = text.size() == 32 && std::all_of(text.begin(), text.end(), [](unsigned char c) {
                           return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
                       });
    return right ? FromUtf8(text).Upper() : wxString();
}

void AddListRow(RecordRow& row, VecString const& items) {
    row.isList = true;
    for (wxString const& item : items) row.items.push_back(ToUtf8(item));
    row.value = ToUtf8(CatVecString(items, "\n"));
}

void FillMatch(OrvFileId slot, Record& record) {
    JpegInfo info = GetContext()->GetImageJpegInfo(slot);
    bool software = false;
    bool camera = false;
    VecString cameras[2];
    VecString programs[2];
    VecString standard[2];
    if (info.IsValid) {
        info.FindSimilarSignaturesInInternalDatabase(software, camera, cameras[0], programs[0], standard[0]);
        info.FindSimilarSignaturesInUserDatabase(GetContext()->GetListOfSignaturesInUserQtDatabase(), software, camera,
                                                 cameras[1], programs[1], standard[1]);
    }
    const auto add = [&](char const* key, char const* title) -> RecordRow& {
        record.rows.emplace_back();
        record.rows.back().key = key;
        record.rows.back().title = title;
        return record.rows.back();
    };
    add("signature", "Signature").value = ToUtf8(info.QtHash);
    add("rotated_signature", "Rotated Signature").value = ToUtf8(info.QtHashRot);
    add("subsampling", "Subsampling").value = ToUtf8(info.SignatureSubsampling);
    AddListRow(add("compatible_cameras_internal", "Compatible Cameras (Internal)"), cameras[0]);
    AddListRow(add("compatible_software_internal", "Compatible Software (Internal)"), programs[0]);
    AddListRow(add("compatible_cameras_user", "Compatible Cameras (User)"), cameras[1]);
    AddListRow(add("compatible_software_user", "Compatible Software (User)"), programs[1]);
    AddListRow(add("standard", "Standard Tables (IJG)"), standard[0]);
}

class QtCommand : public Command {
public:
    void Define(CLI::App& app) override {
        app.require_subcommand(1);
        DefineList(app);
        DefineAdd(app);
        m_remove = app.add_subcommand("remove", "Remove one signature of your own");
        AddText(*m_remove, "NUMBER", m_number, "Its number, as \"qt list --database user\" tells it")
            ->required()
            ->type_name("");
        m_match = app.add_subcommand("match", "Cameras and programs that write the tables of a JPEG");
        m_files.Define(*m_match);
        m_output.Define(*m_match);
        app.footer("Your own signatures stand in qt/userqt.csv beneath the documents folder.");
    }

    ExitCode Run(Environment& environment) override {
        if (m_list->parsed()) return List(environment);
        if (m_add->parsed()) return Add(environment);
        if (m_remove->parsed()) return Remove(environment);
        RecordStyle style;
        style.schema = "orvelle/qt-match/1";
        style.title = "Quantisation Table Matches";
        style.warnings = false;
        RecordRun run(environment, m_output, m_files, style);
        return run.Run(FillMatch);
    }

private:
    void DefineList(CLI::App& app) {
        m_list = app.add_subcommand("list", "Show the signatures");
        AddChoice(*m_list, "--database", m_database, {"internal", "user", "all"}, "Which database; all by default");
        AddChoice(*m_list, "--class", m_class, {"camera", "software"}, "One class only");
        m_output.Define(*m_list);
    }

    void DefineAdd(CLI::App& app) {
        m_add = app.add_subcommand("add", "Add a signature of your own");
        AddText(*m_add, "FILE", m_file,
                "A JPEG to take signatures, sampling, make and model from; options go before it")
            ->type_name("");
        AddChoice(*m_add, "--class", m_class, {"camera", "software"}, "What writes such tables")->required();
        const auto field = [this](char const* name, std::string& value, char const* help) {
            AddText(*m_add, name, value, help);
        };
        field("--make", m_make, "Camera make, or the program's family");
        field("--model", m_model, "Camera model");
        field("--quality", m_quality, "The maker's quality label");
        field("--signature", m_signature, "32 hexadecimal digits, as \"exiftool -JPEGDigest\" begins");
        field("--rotated", m_rotated, "The same of the tables turned by a quarter");
        field("--subsampling", m_subsampling, "2x1, 2x2, 1x1, 1x2 or Gray");
        field("--vendor", m_vendor, "Who makes the software");
        field("--software", m_software, "The software's name");
    }

    ExitCode List(Environment& environment) {
        Output output(m_output.path, m_output.force);
        Session session(environment);
        PlainTable table;
        table.schema = "orvelle/qt/1";
        table.title = "Signatures";
        table.keys = {"database",  "number",           "class", "make", "model", "quality", "software",
                      "signature", "rotated_signature"};
        table.titles = {"Database",  "Number",           "Class", "Make", "Model", "Quality", "Software",
                        "Signature", "Rotated Signature"};
        if (m_database != "user") AddInternal(session.Context(), table);
        if (m_database != "internal") AddUser(session.Context(), table);
        WritePlainTable(table, m_output.Format(), output);
        output.Commit();
        return ExitDone;
    }

    bool WantsClass(int editorClass) const { return m_class.empty() || m_class == ClassName(editorClass); }

    void AddInternal(CliContext const& context, PlainTable& table) const {
        for (const int editorClass : {ClassCamera, ClassSoftware}) {
            if (!WantsClass(editorClass)) continue;
            for (VecString const& row : context.GetListOfEditorsInInternalQtDatabase(editorClass - 1)) {
                std::vector<std::string> cells = {"internal", "", ClassName(editorClass)};
                for (wxString const& cell : row) cells.push_back(ToUtf8(cell));
                table.rows.push_back(cells);
            }
        }
    }

    void AddUser(CliContext const& context, PlainTable& table) const {
        size_t number = 0;
        for (JpegSignature const& record : context.GetListOfSignaturesInUserQtDatabase()) {
            ++number;
            const int editorClass = Trim(record.editorClass) == "2" ? ClassSoftware : ClassCamera;
            if (!WantsClass(editorClass)) continue;
            table.rows.push_back({"user", std::to_string(number), ClassName(editorClass), ToUtf8(record.make),
                                  ToUtf8(record.model), ToUtf8(record.quality), ToUtf8(record.softwareName),
                                  ToUtf8(record.signature), ToUtf8(record.signatureRot)});
        }
    }

    // What the JPEG itself tells; options outweigh it.
    void TakeFromFile(Session& session, JpegSignature& record) {
        Record unused;
        const auto take = [&](OrvFileId slot, Record&) {
            const JpegInfo info = GetContext()->GetImageJpegInfo(slot);
            if (!info.IsValid) throw Failure(ExitInput, m_file, "not a JPEG with quantisation tables");
            record.signature = info.QtHash;
            record.signatureRot = info.QtHashRot;
            record.subsampling = info.SignatureSubsampling;
            if (m_class != "camera") return;
            record.make = GetContext()->GetImageDetails(slot).Make;
            record.model = GetContext()->GetImageDetails(slot).Model;
        };
        if (!Examine(session, m_file, Evidence, take, unused)) throw Failure(ExitInterrupted, "", "interrupted");
    }

    JpegSignature MakeRecord(Session& session) {
        JpegSignature record;
        record.editorClass = m_class == "software" ? "2" : "1";
        if (!m_file.empty()) TakeFromFile(session, record);
        const std::pair<std::string*, wxString*> texts[] = {{&m_make, &record.make},
                                                            {&m_model, &record.model},
                                                            {&m_quality, &record.quality},
                                                            {&m_subsampling, &record.subsampling},
                                                            {&m_vendor, &record.softwareVendor},
                                                            {&m_software, &record.softwareName}};
        for (auto const& [given, field] : texts) {
            if (!IsUtf8(*given)) throw Failure(ExitUsage, *given, "not UTF-8");
            if (!given->empty()) *field = FromUtf8(*given);
        }
        const auto sign = [](char const* option, std::string const& given, wxString& field) {
            if (given.empty()) return;
            field = CleanSignature(given);
            if (field.empty()) throw Failure(ExitUsage, option, "takes 32 hexadecimal digits");
        };
        sign("--signature", m_signature, record.signature);
        sign("--rotated", m_rotated, record.signatureRot);
        if (record.signature.empty()) throw Failure(ExitUsage, "--signature", "is missing, and so is a JPEG FILE");
        const std::string reason = ReasonAgainst(record);
        if (!reason.empty()) throw Failure(ExitUsage, "qt add", reason);
        return record;
    }

    ExitCode Add(Environment& environment) {
        Session session(environment);
        session.KeepNoCopies();
        const JpegSignature record = MakeRecord(session);
        UserQtFile file(PathToBytes(session.Context().GetUserQtDatabaseFilename()));
        file.Append(record);
        file.Save();
        return ExitDone;
    }

    ExitCode Remove(Environment& environment) {
        Session session(environment);
        UserQtFile file(PathToBytes(session.Context().GetUserQtDatabaseFilename()));
        // The numbers are the engine's. Should it count otherwise, nothing is removed on a guess.
        if (file.Count() != session.Context().GetListOfSignaturesInUserQtDatabase().size()) {
            throw Failure(ExitInput, PathToBytes(session.Context().GetUserQtDatabaseFilename()),
                          "has lines that can't be told apart; nothing was removed");
        }
        file.Remove(RowOfNumber(m_number, file.Count()));
        file.Save();
        return ExitDone;
    }

    CLI::App* m_list = nullptr;
    CLI::App* m_add = nullptr;
    CLI::App* m_remove = nullptr;
    CLI::App* m_match = nullptr;
    OutputOptions m_output;
    FileOptions m_files;
    std::string m_database;
    std::string m_class;
    std::string m_file;
    std::string m_number;
    std::string m_make;
    std::string m_model;
    std::string m_quality;
    std::string m_signature;
    std::string m_rotated;
    std::string m_subsampling;
    std::string m_vendor;
    std::string m_software;
};

}  // namespace

std::unique_ptr<Command> MakeQtCommand() {
    return std::make_unique<QtCommand>();
}

}  // namespace cli
