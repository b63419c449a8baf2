// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "apps/cli/failure.h"

namespace cli {

namespace {

// No argument can hold a byte 1 in front by accident that matters: it is taken away again in any case.
constexpr char Hidden = '\x01';

bool HasMeaningForLibrary(std::string const& text) {
    if (text.empty()) return false;
    return (text.front() == '[' && text.back() == ']') || text == "{}" || text == "++" || text.front() == Hidden;
}

std::string Revealed(std::string const& text) {
    return !text.empty() && text[0] == Hidden ? text.substr(1) : text;
}

}  // namespace

std::vector<std::string> PrepareArguments(int argc, char const* const* argv) {
    std::vector<std::string> arguments;
    for (int i = argc - 1; i > 0; --i) {
        const std::string text = argv[i];
        arguments.push_back(HasMeaningForLibrary(text) ? Hidden + text : text);
    }
    return arguments;
}

CLI::Option* AddText(CLI::App& app, std::string const& name, std::string& value, std::string const& help) {
    const auto take = [&value](CLI::results_t const& results) {
        value = Revealed(results.front());
        return true;
    };
    return app.add_option(name, take, help)->type_name("TEXT")->expected(1);
}

CLI::Option* AddList(CLI::App& app, std::string const& name, std::vector<std::string>& values, int least,
                     std::string const& help) {
    const auto take = [&values](CLI::results_t const& results) {
        values.clear();
        std::transform(results.begin(), results.end(), std::back_inserter(values), Revealed);
        return true;
    };
    CLI::Option* const option = app.add_option(name, take, help)->type_name("");
    option->expected(std::max(least, 1), CLI::detail::expected_max_vector_size)->allow_extra_args();
    if (least > 0) option->required();
    return option;
}

CLI::Option* AddEach(CLI::App& app, std::string const& name, std::vector<std::string>& values,
                     std::string const& help) {
    const auto take = [&values](CLI::results_t const& results) {
        values.clear();
        std::transform(results.begin(), results.end(), std::back_inserter(values), Revealed);
        return true;
    };
    return app.add_option(name, take, help)->type_name("TEXT")->type_size(1)->expected(1)->take_all();
}

CLI::Option* AddChoice(CLI::App& app, std::string const& name, std::string& value,
                       std::vector<std::string> const& words, std::string const& help) {
    std::string list;
    for (std::string const& word : words) list += (list.empty() ? "" : "|") + word;
    const auto check = [words, list](std::string const& given) {
        if (std::find(words.begin(), words.end(), given) != words.end()) return std::string();
        std::string takes = list;
        std::replace(takes.begin(), takes.end(), '|', ' ');
        return "\"" + given + "\" is none of: " + takes;
    };
    return AddText(app, name, value, help)->type_name(list)->check(CLI::Validator(check, ""));
}

size_t RowOfNumber(std::string const& text, size_t count) {
    const bool digits = !text.empty() && text.size() < 10 &&
                        std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    const size_t number = digits ? std::stoul(text) : 0;
    if (number == 0 || number > count) {
        throw Failure(ExitUsage, "NUMBER", "no signature " + text + ": the database has " + std::to_string(count));
    }
    return number - 1;
}

}  // namespace cli
