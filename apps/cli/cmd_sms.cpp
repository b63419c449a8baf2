// SPDX-License-Identifier: Apache-2.0
// orvelle sms: the signatures of social platforms, the compiled ones and the user's own.
#include <wx/datetime.h>

#include "apps/cli/arguments.h"
#include "apps/cli/clicontext.h"
#include "apps/cli/command.h"
#include "apps/cli/failure.h"
#include "apps/cli/inputs.h"
#include "apps/cli/interrupt.h"
#include "apps/cli/plaintable.h"
#include "apps/cli/recordrun.h"
#include "apps/cli/socialdatabase.h"
#include "apps/cli/text.h"
#include "tolbase/file.h"

namespace cli {

namespace {

bool IsDate(std::string const& text) {
    static const std::string form = "dddd-dd-dd";
    if (text.size() != form.size()) return false;
    for (size_t i = 0; i < form.size(); ++i) {
        const bool digit = text[i] >= '0' && text[i] <= '9';
        if (form[i] == 'd' ? !digit : text[i] != '-') return false;
    }
    wxDateTime date;
    return date.ParseISODate(FromUtf8(text)) && date.FormatISODate() == FromUtf8(text);
}

std::vector<std::string> ListRow(SocialMediaSignature const& signature, std::string const& number) {
    const bool user = signature.GetType() == SMS_User;
    return {user ? "user" : "internal",        number,
            ToUtf8(signature.GetSocialName()), ToUtf8(signature.GetDate()),
            ToUtf8(signature.GetFile()),       ToUtf8(signature.GetFeatureHash())};
}

class SmsCommand : public Command {
public:
    void Define(CLI::App& app) override {
        app.require_subcommand(1);
        DefineList(app);
        DefineAdd(app);
        m_remove = app.add_subcommand("remove", "Remove one signature of your own");
        AddText(*m_remove, "NUMBER", m_number, "Its number, as \"sms list --database user\" tells it")
            ->required()
            ->type_name("");
        m_import = app.add_subcommand("import", "Take over the signatures of another such file");
        AddText(*m_import, "FILE", m_from, "A file that \"sms export\" wrote, or another user's usersms.json")
            ->required()
            ->type_name("");
        m_import->add_flag("--force", m_force, "Put a file of your own that is broken aside instead of stopping");
        m_export = app.add_subcommand("export", "Write your own signatures, to be imported elsewhere");
        AddText(*m_export, "-o,--output", m_output.path, "Write them to a file")->type_name("FILE");
        m_export->add_flag("--force", m_output.force, "Replace an output file that exists");
        app.footer("Your own signatures stand in socialmediasig/usersms.json beneath the documents folder.");
    }

    ExitCode Run(Environment& environment) override {
        if (m_list->parsed()) return List(environment);
        if (m_add->parsed()) return Add(environment);
        if (m_remove->parsed()) return Remove(environment);
        if (m_import->parsed()) return Import(environment);
        return Export(environment);
    }

private:
    void DefineList(CLI::App& app) {
        m_list = app.add_subcommand("list", "Show the signatures");
        AddChoice(*m_list, "--database", m_database, {"internal", "user", "all"}, "Which database; all by default");
        AddText(*m_list, "--platform", m_platform, "One platform only, by its name")->type_name("NAME");
        m_output.Define(*m_list);
    }

    void DefineAdd(CLI::App& app) {
        m_add = app.add_subcommand("add", "Add the signatures of JPEGs that came from a platform");
        m_files.Define(*m_add);
        AddText(*m_add, "--name", m_platform, "The platform's name")->required()->type_name("PLATFORM");
        AddText(*m_add, "--date", m_date, "The day by which the samples existed, as 2026-01-31; today by default")
            ->type_name("DATE");
        m_add->add_flag("--force", m_force, "Put a file of your own that is broken aside instead of stopping");
    }

    static std::string FileOf(Session& session) { return PathToBytes(session.Context().GetUserSMSDatabaseFilename()); }

    ExitCode List(Environment& environment) {
        Output output(m_output.path, m_output.force);
        Session session(environment);
        PlainTable table;
        table.schema = "orvelle/sms/1";
        table.title = "Platform Signatures";
        table.keys = {"database", "number", "platform", "date", "file", "hash"};
        table.titles = {"Database", "Number", "Platform", "Date", "File", "Hash"};
        SMSCollection collection;
        if (m_database != "user") collection.LoadInternalSignatures();
        std::string reason;
        if (m_database != "internal") {
            reason = ReasonAgainstSignatures(FileOf(session));
            collection.LoadUserSignatures(session.Context().GetUserSMSDatabaseFilename());
        }
        size_t number = 0;
        for (SocialMediaSignature const& signature : collection.GetSignatures()) {
            const bool user = signature.GetType() == SMS_User;
            if (user) ++number;
            if (!m_platform.empty() && ToUtf8(signature.GetSocialName()) != m_platform) continue;
            table.rows.push_back(ListRow(signature, user ? std::to_string(number) : ""));
        }
        WritePlainTable(table, m_output.Format(), output);
        output.Commit();
        if (reason.empty()) return ExitDone;
        environment.terminal.Error(FileOf(session), reason);
        return ExitInput;
    }

    void CheckNames() const {
        const std::string reason = ReasonAgainstPlatform(m_platform);
        if (!reason.empty()) throw Failure(ExitUsage, "--name", reason);
        if (!m_date.empty() && !IsDate(m_date)) {
            throw Failure(ExitUsage, "--date", "takes a day of the form 2026-01-31, not \"" + m_date + "\"");
        }
    }

    // False, with the reason told, for a file whose signature can't be had.
    bool Sign(Session& session, Terminal& terminal, std::string const& path, SocialMediaSignature& signature) {
        const auto made = std::make_shared<SocialMediaSignature>();
        const auto take = [made, path, name = m_platform, date = m_date](OrvFileId slot, Record&) {
            OrvContext const* const context = GetContext();
            *made = SocialMediaSignature(context->GetFilename(slot), FromUtf8(name), context->GetImageJpegInfo(slot),
                                         context->GetImageDetails(slot), SMS_User, FromUtf8(date));
            if (!made->IsValid()) throw Failure(ExitInput, path, "not a JPEG with a whole quantisation table");
        };
        try {
            Record unused;
            if (!Examine(session, path, Evidence, take, unused)) throw Failure(ExitInterrupted, "", "interrupted");
        } catch (Failure const& failure) {
            if (failure.Code() != ExitInput) throw;
            terminal.Error(failure.Subject(), failure.what());
            m_code = ExitInput;
            return false;
        }
        signature = *made;
        return true;
    }

    ExitCode Add(Environment& environment) {
        CheckNames();
        Session session(environment);
        session.KeepNoCopies();
        std::vector<std::string> extensions;
        for (wxString const& name : session.Context().GetImageFormatsRead()) extensions.push_back(ToUtf8(name));
        const Inputs inputs = FindInputs(m_files.names, extensions, m_files.recursive, environment.terminal);
        if (inputs.hasFailures) m_code = ExitInput;
        std::vector<SocialMediaSignature> signatures;
        for (std::string const& file : inputs.files) {
            environment.terminal.Progress(signatures.size() + 1, inputs.files.size(), file);
            SocialMediaSignature signature;
            if (Sign(session, environment.terminal, file, signature)) signatures.push_back(signature);
        }
        environment.terminal.ClearProgress();
        if (!signatures.empty()) Take(session, environment.terminal, signatures);
        return m_code;
    }

    // Adds those that are new and saves if there are any.
    void Take(Session& session, Terminal& terminal, std::vector<SocialMediaSignature> const& signatures) {
        UserSignatures file(FileOf(session), m_force);
        size_t added = 0;
        for (SocialMediaSignature const& signature : signatures) {
            const size_t number = file.NumberOf(signature.GetFeatureHash());
            if (number > 0) {
                terminal.Warning(ToUtf8(signature.GetFile()), "is there already, as number " + std::to_string(number));
                continue;
            }
            file.Append(signature);
            ++added;
        }
        if (added > 0) file.Save();
        terminal.Summary(std::to_string(added) + (added == 1 ? " signature added" : " signatures added"));
    }

    ExitCode Remove(Environment& environment) {
        Session session(environment);
        UserSignatures file(FileOf(session), false);
        file.Remove(RowOfNumber(m_number, file.List().size()));
        file.Save();
        return ExitDone;
    }

    ExitCode Import(Environment& environment) {
        Session session(environment);
        const std::vector<SocialMediaSignature> signatures = ReadSignatures(m_from);
        for (SocialMediaSignature const& signature : signatures) {
            const std::string name = ToUtf8(signature.GetSocialName());
            const std::string reason = ReasonAgainstPlatform(name);
            if (!reason.empty()) {
                throw Failure(ExitInput, m_from, "the platform's name \"" + name + "\" " + reason);
            }
        }
        Take(session, environment.terminal, signatures);
        return ExitDone;
    }

    ExitCode Export(Environment& environment) {
        Output output(m_output.path, m_output.force);
        Session session(environment);
        const std::string path = FileOf(session);
        const std::string reason = ReasonAgainstSignatures(path);
        if (!reason.empty()) throw Failure(ExitInput, path, reason);
        SMSCollection collection;
        collection.LoadUserSignatures(session.Context().GetUserSMSDatabaseFilename());
        output.Write(SignaturesText(collection.GetSignatures()));
        output.Commit();
        return ExitDone;
    }

    CLI::App* m_list = nullptr;
    CLI::App* m_add = nullptr;
    CLI::App* m_remove = nullptr;
    CLI::App* m_import = nullptr;
    CLI::App* m_export = nullptr;
    OutputOptions m_output;
    FileOptions m_files;
    std::string m_database;
    std::string m_platform;
    std::string m_date;
    std::string m_number;
    std::string m_from;
    bool m_force = false;
    ExitCode m_code = ExitDone;
};

}  // namespace

std::unique_ptr<Command> MakeSmsCommand() {
    return std::make_unique<SmsCommand>();
}

}  // namespace cli
