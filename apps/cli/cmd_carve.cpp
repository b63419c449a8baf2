// SPDX-License-Identifier: Apache-2.0
// orvelle coordinates and carve: where a photograph was taken, and the pictures inside a file.
#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <fstream>

#include "apps/cli/arguments.h"
#include "apps/cli/clicontext.h"
#include "apps/cli/command.h"
#include "apps/cli/examination.h"
#include "apps/cli/failure.h"
#include "apps/cli/filehash.h"
#include "apps/cli/plaintable.h"
#include "apps/cli/recordrun.h"
#include "apps/cli/session.h"
#include "apps/cli/text.h"
#include "apps/cli/work.h"
#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolimage/pdfimages.h"
#include "tolimage/subimages.h"

namespace cli {

namespace {

class CoordinatesCommand : public Command {
public:
    void Define(CLI::App& app) override {
        AddText(app, "FILE", m_file, "An image")->required()->type_name("");
        app.footer("Prints latitude, a blank, longitude. Exit code 3 for an image without a position.");
    }

    ExitCode Run(Environment& environment) override {
        Session session(environment);
        session.KeepNoCopies();
        const auto position = std::make_shared<std::string>();
        const auto take = [position](OrvFileId slot, Record&) {
            ImageDetailsExifTool const& details = GetContext()->GetImageDetails(slot);
            if (details.GpsLatitude.empty() || details.GpsLongitude.empty()) return;
            *position = ToUtf8(details.GpsLatitude) + " " + ToUtf8(details.GpsLongitude);
        };
        Record unused;
        if (!Examine(session, m_file, Evidence, take, unused)) return ExitInterrupted;
        if (position->empty()) throw Failure(ExitInput, m_file, "No GPS coordinates available.");
        Output output("", false);
        output.Write(Printable(*position) + "\n");
        output.Commit();
        return ExitDone;
    }

private:
    std::string m_file;
};

class CarveCommand : public Command {
public:
    void Define(CLI::App& app) override {
        AddText(app, "FILE", m_file, "An image of any format, or a PDF")->required()->type_name("");
        AddText(app, "--folder", m_folder,
                "Where the pictures go; FILE's name and \"-carved\" in the current folder by default")
            ->type_name("DIR");
        m_output.Define(app);
        app.footer(
            "Embedded JPEGs are written byte for byte; so are a PDF's JPEG and JPEG 2000 streams, its other pictures\n"
            "become PNG. Files in the folder are not replaced without --force.");
    }

    ExitCode Run(Environment& environment) override {
        RequireInput();
        if (m_folder.empty()) m_folder = std::filesystem::path(m_file).filename().string() + "-carved";
        Output output(m_output.path, m_output.force);
        if (output.IsFile(m_file)) throw Failure(ExitOutput, m_output.path, "is the examined file itself");
        const bool madeHere = !std::filesystem::exists(m_folder);
        if (!madeHere && !std::filesystem::is_directory(m_folder)) {
            throw Failure(ExitOutput, m_folder, "can't be written: not a folder");
        }
        if (!madeHere && !m_output.force && !std::filesystem::is_empty(m_folder)) {
            throw Failure(ExitOutput, m_folder, "has files already (--force writes among them)");
        }
        const FileHash before = HashFile(m_file);
        Session session(environment);
        const auto paths = std::make_shared<VecString>();
        const auto work = [paths, file = AbsoluteOf(m_file), folder = AbsoluteOf(m_folder)] {
            try {
                Carve(file, folder, *paths);
            } catch (TolException const& error) {
                // 82: a picture can't be written; all else is the file's own.
                const bool output = error.GetType() == ExceptionGeneral && error.GetCode() == TolErrorMessage;
                throw Failure(output ? ExitOutput : ExitInput, output ? folder : file, ToUtf8(error.GetMessage()));
            }
        };
        if (!RunWork(session, "Carve " + m_file, work)) return ExitInterrupted;
        if (HashFile(m_file) != before) throw Failure(ExitInput, m_file, "changed while it was examined");
        if (paths->empty()) environment.terminal.Error(m_file, "no pictures inside");
        std::error_code ignored;
        if (paths->empty() && madeHere) std::filesystem::remove(m_folder, ignored);
        WriteList(*paths, output);
        return ExitDone;
    }

private:
    static std::string AbsoluteOf(std::string const& path) { return std::filesystem::absolute(path).string(); }

    void RequireInput() const {
        struct stat status = {};
        if (stat(m_file.c_str(), &status) != 0) throw Failure(ExitInput, m_file, "no such file");
        if (!S_ISREG(status.st_mode)) throw Failure(ExitInput, m_file, "not a regular file");
    }

    // A PDF's pictures are written by the engine into its own folder for that file, and moved from there.
    static void Carve(std::string const& file, std::string const& folder, VecString& paths) {
        std::array<char, 5> head{};
        std::ifstream(file, std::ios::binary).read(head.data(), head.size());
        if (std::string(head.data(), head.size()) != "%PDF-") {
            paths = tcvDumpSubImages(PathFromBytes(file), PathFromBytes(folder));
            return;
        }
        for (wxString const& made : tcvDumpImagesFromPdf(PathFromBytes(file), VecParameter())) {
            wxString moved;
            if (!MoveFileToFolder(made, PathFromBytes(folder), &moved)) {
                throw Failure(ExitOutput, folder, "can't be written");
            }
            paths.push_back(moved);
        }
    }

    void WriteList(VecString const& paths, Output& output) const {
        PlainTable table;
        table.schema = "orvelle/carve/1";
        table.title = "Pictures";
        table.keys = {"path", "bytes", "sha256"};
        table.titles = {"Path", "Bytes", "SHA256"};
        for (wxString const& path : paths) {
            const FileHash hash = HashFile(PathToBytes(path));
            table.rows.push_back({PathToBytes(path), std::to_string(hash.bytes), hash.sha256});
        }
        WritePlainTable(table, m_output.Format(), output);
        output.Commit();
    }

    std::string m_file;
    std::string m_folder;
    OutputOptions m_output;
};

}  // namespace

std::unique_ptr<Command> MakeCoordinatesCommand() {
    return std::make_unique<CoordinatesCommand>();
}

std::unique_ptr<Command> MakeCarveCommand() {
    return std::make_unique<CarveCommand>();
}

}  // namespace cli
