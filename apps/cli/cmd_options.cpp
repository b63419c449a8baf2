// SPDX-License-Identifier: Apache-2.0
// orvelle options: the settings file in the documents folder.
#include <iostream>

#include "apps/cli/arguments.h"
#include "apps/cli/clicontext.h"
#include "apps/cli/command.h"
#include "apps/cli/failure.h"
#include "apps/cli/parametertext.h"
#include "apps/cli/plaintable.h"
#include "apps/cli/recordrun.h"
#include "apps/cli/session.h"
#include "apps/cli/text.h"
#include "orvcore/interface.h"
#include "tolbase/file.h"
#include "tolbase/parser.h"
#include "tolbase/serializer.h"

namespace cli {

namespace {

// A key is a secret: it is shown only to who asks for it by name.
bool IsSecret(Parameter const& option) {
    return option.Name().EndsWith("API Key");
}

struct Found {
    size_t group = 0;
    size_t index = 0;
};

// By the option's name, or by "Group/Name"; without regard to case, blanks, "_" and "-".
Found FindOption(VecVecParameter const& options, std::string const& name) {
    std::vector<Found> found;
    const wxString wanted = FromUtf8(name);
    for (size_t group = 0; group < options.size(); ++group) {
        for (size_t i = 0; i < options[group].size(); ++i) {
            wxString const& own = options[group][i].Name();
            const wxString full = options.GetGroupName(group) + "/" + own;
            if (Serializer::AreNamesEquivalent(own, wanted) || Serializer::AreNamesEquivalent(full, wanted)) {
                found.push_back({group, i});
            }
        }
    }
    if (found.empty()) throw Failure(ExitUsage, name, "no such option; \"orvelle options list\" names them all");
    if (found.size() > 1) throw Failure(ExitUsage, name, "stands for several options; give it as GROUP/NAME");
    return found.front();
}

std::vector<std::string> ItemsOf(Parameter const& option) {
    std::vector<std::string> items;
    if (option.GetType() == ParameterTypeVectorString && option.Holds<VecString>()) {
        for (wxString const& item : option.GetValue<VecString>()) items.push_back(ToUtf8(item));
    } else {
        items.push_back(ToUtf8(option.GetType() == ParameterTypeOption ? option.ToReport() : option.ToText()));
    }
    return items;
}

std::string Joined(std::vector<std::string> const& items) {
    std::string text;
    for (std::string const& item : items) text += (text.empty() ? "" : "; ") + item;
    return text;
}

// The first line of standard input, for values that nobody should see in the list of processes.
std::string ReadLine() {
    std::string line;
    if (!std::getline(std::cin, line)) throw Failure(ExitUsage, "VALUE", "nothing on standard input");
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return line;
}

wxString TextOf(std::string const& value) {
    if (!IsUtf8(value)) throw Failure(ExitUsage, "VALUE", "not UTF-8");
    return FromUtf8(value);
}

void SetOption(Parameter& option, std::vector<std::string> const& values) {
    std::string const name = ToUtf8(option.Name());
    const auto refuse = [&] { throw Failure(ExitUsage, name, "takes " + Takes(option)); };
    if (option.GetType() == ParameterTypeVectorString) {
        VecString list;
        for (std::string const& value : values) {
            if (!value.empty()) list.push_back(TextOf(value));
        }
        option.Set(boost::any(list));
        if (option.GetValue<VecString>() != list) refuse();
        return;
    }
    if (values.size() != 1) refuse();
    TextOf(values.front());
    if (!SetParameter(option, values.front())) refuse();
}

class OptionsCommand : public Command {
public:
    void Define(CLI::App& app) override {
        app.require_subcommand(1);
        m_list = app.add_subcommand("list", "Show all options with their groups and values");
        m_output.Define(*m_list);
        m_get = app.add_subcommand("get", "Print one option's value, a list as one line for each text");
        AddText(*m_get, "NAME", m_name, "The option's name, or GROUP/NAME")->required()->type_name("");
        m_set = app.add_subcommand("set", "Change one option");
        AddText(*m_set, "NAME", m_name, "The option's name, or GROUP/NAME")->required()->type_name("");
        AddList(*m_set, "VALUE", m_values, 1, "Its value; several for a list; \"-\" reads it from standard input");
        m_set->add_flag("--force", m_force, "Replace a settings file that is broken");
        app.footer("The settings stand in settings/default.ovs beneath the documents folder.");
    }

    ExitCode Run(Environment& environment) override {
        if (m_set->parsed()) return Set(environment);
        Output output(m_output.path, m_output.force);
        Session session(environment);
        const VecVecParameter options = session.Interface().GetProgramOptions();
        if (m_get->parsed()) {
            const Found found = FindOption(options, m_name);
            for (std::string const& item : ItemsOf(options[found.group][found.index])) {
                output.Write(Printable(item) + "\n");
            }
        } else {
            List(options, output);
        }
        output.Commit();
        return ExitDone;
    }

private:
    void List(VecVecParameter const& options, Output& output) const {
        PlainTable table;
        table.schema = "orvelle/options/1";
        table.title = "Options";
        table.keys = {"group", "name", "value", "takes", "description"};
        table.titles = {"Group", "Name", "Value", "Takes", "Description"};
        for (size_t group = 0; group < options.size(); ++group) {
            for (Parameter const& option : options[group]) {
                std::string value = Joined(ItemsOf(option));
                if (IsSecret(option) && !value.empty()) value = "(set)";
                table.rows.push_back({ToUtf8(options.GetGroupName(group)), ToUtf8(option.Name()), value, Takes(option),
                                      ToUtf8(option.GetDescription())});
            }
        }
        WritePlainTable(table, m_output.Format(), output);
    }

    ExitCode Set(Environment& environment) {
        Session session(environment);
        const std::string path = PathToBytes(session.Interface().GetProgramOptionsPath());
        if (!session.AreSettingsSound() && !m_force) {
            throw Failure(ExitInput, path, "is broken and stays as it was (--force replaces it)");
        }
        VecVecParameter options = session.Interface().GetProgramOptions();
        const Found found = FindOption(options, m_name);
        Parameter& option = options[found.group][found.index];
        if (IsSecret(option) && m_values.front() != "-") {
            environment.terminal.Warning(ToUtf8(option.Name()),
                                         "other users see a key on the command line; \"-\" reads it from standard "
                                         "input");
        }
        if (m_values.size() == 1 && m_values.front() == "-") m_values.front() = ReadLine();
        SetOption(option, m_values);
        session.Interface().SetProgramOptions(options);
        Save(session, path);
        return ExitDone;
    }

    // The engine saves in silence, so what it wrote is looked at: the old file and the new one differ in time or text.
    static void Save(Session& session, std::string const& path) {
        const std::string trial = path + ".new";
        session.Interface().SaveProgramOptions(PathFromBytes(trial));
        std::string written;
        const bool read = ReadFileBytes(PathFromBytes(trial), written);
        std::remove(trial.c_str());
        if (!read || !WriteFileAtomically(PathFromBytes(path), written)) {
            throw Failure(ExitOutput, path, "can't be written");
        }
    }

    CLI::App* m_list = nullptr;
    CLI::App* m_get = nullptr;
    CLI::App* m_set = nullptr;
    OutputOptions m_output;
    std::string m_name;
    std::vector<std::string> m_values;
    bool m_force = false;
};

}  // namespace

std::unique_ptr<Command> MakeOptionsCommand() {
    return std::make_unique<OptionsCommand>();
}

}  // namespace cli
