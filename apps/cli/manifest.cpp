// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/manifest.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <filesystem>

#include "apps/cli/failure.h"
#include "apps/cli/projectfile.h"
#include "apps/cli/text.h"
#include "orvcore/interface.h"
#include "tolbase/file.h"

namespace cli {

namespace {

constexpr char const* Schema = "orvelle/manifest/1";

std::string Now() {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm parts = {};
    gmtime_r(&seconds, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

// A path that is not UTF-8 stands beside its readable form as percent-escaped bytes.
void AddPath(Json& value, std::string const& path) {
    value["path"] = Valid(path);
    if (!IsUtf8(path)) value["path_bytes"] = PercentEscaped(path);
}

Json FileJson(std::string const& path, FileHash const& hash) {
    Json value = Json::object();
    AddPath(value, path);
    value["bytes"] = hash.bytes;
    value["sha256"] = hash.sha256;
    return value;
}

std::string Unescaped(std::string const& text) {
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        const std::string digits = text.substr(i, 3);
        if (digits.size() == 3 && digits[0] == '%' &&
            digits.find_first_not_of("0123456789ABCDEFabcdef", 1) == std::string::npos) {
            bytes += static_cast<char>(std::stoi(digits.substr(1), nullptr, 16));
            i += 2;
        } else {
            bytes += text[i];
        }
    }
    return bytes;
}

std::string PathOf(Json const& value) {
    const auto bytes = value.find("path_bytes");
    return bytes != value.end() ? Unescaped(bytes->get<std::string>()) : value.at("path").get<std::string>();
}

std::string Relative(std::string const& path, std::string const& folder) {
    const std::string inside = folder.back() == '/' ? folder : folder + "/";
    return path.compare(0, inside.size(), inside) == 0 ? path.substr(inside.size()) : path;
}

std::string FolderOf(std::string const& path) {
    return std::filesystem::path(AbsolutePath(path)).parent_path().string();
}

Json ReadManifest(std::string const& path) {
    std::error_code failed;
    if (!std::filesystem::exists(path, failed)) throw Failure(ExitInput, path, "no such file");
    std::string bytes;
    if (!ReadFileBytes(PathFromBytes(path), bytes)) throw Failure(ExitInput, path, "can't be read");
    try {
        Json value = Json::parse(bytes);
        if (value.at("schema") != Schema) throw Failure(ExitInput, path, "not a manifest of this program");
        if (!value.at("inputs").is_array() || !value.at("outputs").is_array()) {
            throw Failure(ExitInput, path, "not a manifest: no lists \"inputs\" and \"outputs\"");
        }
        return value;
    } catch (nlohmann::json::exception const& error) {
        throw Failure(ExitInput, path, "not a manifest: " + std::string(error.what()));
    }
}

// A bundle's files lie in its folder; a manifest from elsewhere may not point to what is not in it.
bool IsInside(std::string const& path) {
    const std::filesystem::path normal = std::filesystem::path(path).lexically_normal();
    return !path.empty() && !normal.is_absolute() && *normal.begin() != "..";
}

// Nor may a link in the folder lead there.
bool LeadsInside(std::filesystem::path const& folder, std::string const& path) {
    std::error_code failed;
    const std::filesystem::path home = std::filesystem::weakly_canonical(folder, failed);
    const std::filesystem::path place = std::filesystem::weakly_canonical(folder / path, failed);
    return !failed && IsInside(place.lexically_relative(home).string());
}

ManifestFinding Check(Json const& value, std::string const& folder, bool isOutput) {
    ManifestFinding finding;
    finding.path = PathOf(value);
    finding.role = isOutput ? "output" : "input";
    if (isOutput && (!IsInside(finding.path) || !LeadsInside(folder, finding.path))) {
        finding.state = "outside";
        return finding;
    }
    const FileHash now = HashFile((std::filesystem::path(folder) / finding.path).string());
    const bool same = now.bytes == value.at("bytes") && now.sha256 == value.at("sha256");
    finding.state = !now.found ? "missing" : same ? "ok" : "changed";
    return finding;
}

}  // namespace

Json SettingsJson() {
    Json settings = Json::object();
    const VecVecParameter options = GetInterface()->GetProgramOptions();
    for (size_t group = 0; group < options.size(); ++group) {
        Json values = Json::object();
        for (Parameter const& option : options[group]) {
            if (option.Name().EndsWith("API Key")) continue;
            values[Valid(ToUtf8(option.Name()))] =
                Valid(ToUtf8(option.GetType() == ParameterTypeOption ? option.ToReport() : option.ToText()));
        }
        settings[Valid(ToUtf8(options.GetGroupName(group)))] = values;
    }
    return settings;
}

ManifestWriter::ManifestWriter(std::string path, bool force, Json const& command) : m_folder(FolderOf(path)) {
    if (!path.empty()) m_output.emplace(std::move(path), force);
    Json head = {{"schema", Schema}, {"tool", ToolJson()}, {"started", Now()}};
    head["command"] = command;
    head["settings"] = SettingsJson();
    std::string text = JsonText(head, true);
    text.pop_back();
    Write(text + ",\n\"outputs\": [");
}

void ManifestWriter::AddInput(std::string const& path) {
    m_inputs.emplace_back(path, HashFile(path));
}

void ManifestWriter::AddOutput(std::string const& path, std::string const& readable) {
    const FileHash hash = HashFile(readable);
    if (!hash.found) return;
    Write(std::string(m_hasOutputs ? ",\n" : "\n") + JsonText(FileJson(Relative(path, m_folder), hash), true));
    m_hasOutputs = true;
}

std::vector<std::string> ManifestWriter::Finish(bool interrupted) {
    std::vector<std::string> changed;
    Write("\n],\n\"inputs\": [");
    bool first = true;
    for (auto const& [path, hash] : m_inputs) {
        Json value = FileJson(path, hash);
        const FileHash now = HashFile(path);
        value["changed"] = now != hash;
        if (now != hash) changed.push_back(path);
        Write(std::string(first ? "\n" : ",\n") + JsonText(value, true));
        first = false;
    }
    Write(std::string("\n],\n\"interrupted\": ") + (interrupted ? "true" : "false") + ",\n\"finished\": \"" + Now() +
          "\"}\n");
    if (m_output) m_output->Commit();
    return changed;
}

std::vector<ManifestFinding> CheckManifest(std::string const& path) {
    const Json manifest = ReadManifest(path);
    const std::string folder = FolderOf(path);
    std::vector<ManifestFinding> findings;
    try {
        for (Json const& value : manifest.at("outputs")) findings.push_back(Check(value, folder, true));
        for (Json const& value : manifest.at("inputs")) findings.push_back(Check(value, folder, false));
    } catch (nlohmann::json::exception const& error) {
        throw Failure(ExitInput, path, "not a manifest: " + std::string(error.what()));
    }
    return findings;
}

bool IsManifest(std::string const& path) {
    try {
        return ReadManifest(path).is_object();
    } catch (Failure const&) {
        return false;
    }
}

bool IsOwnOutput(std::string const& manifest, std::string const& output, std::vector<std::string> const& inputs) {
    try {
        const Json value = ReadManifest(manifest);
        std::vector<std::string> examined;
        for (Json const& input : value.at("inputs")) examined.push_back(PathOf(input));
        if (examined != inputs) return false;
        const std::string name = Relative(AbsolutePath(output), FolderOf(manifest));
        Json const& outputs = value.at("outputs");
        return std::any_of(outputs.begin(), outputs.end(), [&](Json const& entry) {
            const FileHash now = HashFile(output);
            return PathOf(entry) == name && now.found && now.sha256 == entry.at("sha256");
        });
    } catch (std::exception const&) {
        return false;
    }
}

}  // namespace cli
