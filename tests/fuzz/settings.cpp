// SPDX-License-Identifier: Apache-2.0
// The settings file: whatever it holds, what is saved afterwards is read and saved again as the same bytes.
#include "tests/fuzz/engine.h"
#include "tests/fuzz/target.h"

namespace fuzz {

namespace {

void Run(std::string const& bytes) {
    static InputFile const file("settings.json");
    static VecVecParameter const defaults = Engine().GetProgramOptions();
    FuzzContext& engine = Engine();
    wxString const first = Folder() + "/first.json";
    wxString const second = Folder() + "/second.json";
    engine.LoadProgramOptions(file.Hold(bytes));
    engine.SaveProgramOptions(first);
    std::string const saved = BytesOf(first);
    Require(!saved.empty(), "settings can be saved");
    // Limits of the settings may refuse their own file.
    if (engine.GetOptionGroup("Limits") == defaults.Group("Limits")) {
        engine.LoadProgramOptions(first);
        engine.SaveProgramOptions(second);
        Require(BytesOf(second) == saved, "saved settings are read as they are");
    }
    engine.SetProgramOptions(defaults);
}

std::vector<std::string> Seeds() {
    FuzzContext& engine = Engine();
    wxString const path = Folder() + "/seed.json";
    engine.SaveProgramOptions(path);
    return {BytesOf(path),
            R"({"General Settings": {"Language": "English", "Log": "Disabled", "Cache Location": 2,
                "Custom Cache Folder": "/nowhere", "JPG Save Quality": 1000, "Image Cache Format": "JPG"}})",
            R"({"General Settings": {"Default Configurations": ["Noise Map-3", "!Histogram", "Unknown-1-2", ""],
                "Threshold for PRNU Camera Identification": "12.5", "Report Max Image Width": -5}})",
            R"({"Limits": {"json-depth": 3, "pixels-per-image": "7", "metadata-values": -1},
                "Web Services": {"Flickr API Key": "abc", "Google Endpoint": ""}})",
            R"({"General Settings": [], "File Format": null, "Limits": "none"})"};
}

}  // namespace

Target SettingsTarget() {
    return {"settings", Run, Seeds};
}

}  // namespace fuzz
