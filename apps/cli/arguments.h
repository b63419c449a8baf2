// SPDX-License-Identifier: Apache-2.0
// Arguments as they were given. The argument library reads a text of the form "[a,b]" as a list and "{}" as an empty
// one; file names of such forms exist, so they are hidden from it and brought back here.
#pragma once

#include <CLI/App.hpp>
#include <cstddef>
#include <string>
#include <vector>

namespace cli {

// The arguments behind the program's name, in reverse order, as CLI::App::parse takes them.
std::vector<std::string> PrepareArguments(int argc, char const* const* argv);

// An option with one value.
CLI::Option* AddText(CLI::App& app, std::string const& name, std::string& value, std::string const& help);
// A list of at least `least` values, an option's or all remaining arguments.
CLI::Option* AddList(CLI::App& app, std::string const& name, std::vector<std::string>& values, int least,
                     std::string const& help);
// An option that may be given several times, with one value each time.
CLI::Option* AddEach(CLI::App& app, std::string const& name, std::vector<std::string>& values, std::string const& help);
// An option that takes one of the words.
CLI::Option* AddChoice(CLI::App& app, std::string const& name, std::string& value,
                       std::vector<std::string> const& words, std::string const& help);

// The place of a row of a user's database, from 0, that `text` names by its number from 1. Throws Failure where it
// names none of the `count` rows.
size_t RowOfNumber(std::string const& text, size_t count);

}  // namespace cli
