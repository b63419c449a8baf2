// SPDX-License-Identifier: Apache-2.0
// The manifest of a run: what was examined, with what, and what came of it, each file with its SHA-256.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "apps/cli/filehash.h"
#include "apps/cli/json.h"
#include "apps/cli/output.h"

namespace cli {

// The program's settings without its keys.
Json SettingsJson();

// Written as it comes, so that memory does not grow with the number of results. One thread at a time.
class ManifestWriter {
public:
    // Throws Failure (ExitOutput) as Output does. Without a path nothing is written; the examined files are hashed all
    // the same.
    ManifestWriter(std::string path, bool force, Json const& command);

    // A file that is examined, hashed now. `path` is absolute.
    void AddInput(std::string const& path);
    // A file that was written, hashed now. Paths beneath the manifest's folder are written relative to it.
    void AddOutput(std::string const& path) { AddOutput(path, path); }
    // The same for a file that has still another name.
    void AddOutput(std::string const& path, std::string const& readable);
    // Hashes the inputs again, writes the rest and puts the manifest into its place. Gives the inputs that have
    // changed.
    std::vector<std::string> Finish(bool interrupted);

private:
    void Write(std::string const& text) {
        if (m_output) m_output->Write(text);
    }

    std::string m_folder;
    std::optional<Output> m_output;
    std::vector<std::pair<std::string, FileHash>> m_inputs;
    bool m_hasOutputs = false;
};

// What a manifest says of one file, and what is there now.
struct ManifestFinding {
    std::string path;   // as it stands in the manifest
    std::string role;   // "input" or "output"
    std::string state;  // "ok", "changed", "missing", "outside"
};

// Checks each file of a manifest. Throws Failure (ExitInput) for what is no manifest.
std::vector<ManifestFinding> CheckManifest(std::string const& path);

// Whether the file is a manifest of this program.
bool IsManifest(std::string const& path);

// True if the manifest is one of ours, names this output and examined these files (absolute paths), and the output is
// as it was written.
bool IsOwnOutput(std::string const& manifest, std::string const& output, std::vector<std::string> const& inputs);

}  // namespace cli
