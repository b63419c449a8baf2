// SPDX-License-Identifier: Apache-2.0
// What a fuzz target is: a reader of untrusted bytes with what has to hold of its results, and seeds made by code.
//
// libFuzzer runs one target a program; the program fuzz_replay, which any compiler builds, runs all of them on their
// seeds and on damaged copies of these.
#pragma once
#include <wx/string.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace fuzz {

struct Target {
    char const* name;
    void (*run)(std::string const& bytes);
    std::vector<std::string> (*seeds)();
};

Target ConfigurationsTarget();
Target EmbeddedTarget();
Target ExifToolTarget();
Target HtmlTarget();
Target JpegTarget();
Target PlotTarget();
Target PluginTarget();
Target ProjectTarget();
Target SettingsTarget();
Target StatusTarget();
Target UserQtTarget();
Target UserSmsTarget();
Target WebTarget();
Target WxJsonTarget();

// Ends the process as a crash, with the sentence on the error output, where something doesn't hold.
void Require(bool holds, char const* what);

// wxWidgets without a display, a HOME and a documents folder that are thrown away, small limits. Call it once, first.
void Start();
// The folder that is thrown away; in memory where the system has such a place.
wxString Folder();

// A file of the thrown-away folder that gets one content after the other.
class InputFile {
public:
    explicit InputFile(wxString const& name);
    // Gives the path.
    wxString const& Hold(std::string const& bytes) const;

private:
    wxString m_path;
    int m_descriptor;
};

// The bytes of a file; none if it isn't there.
std::string BytesOf(wxString const& path);
// The parts between line feeds, the empty ones too.
std::vector<std::string> Lines(std::string const& bytes);
// Bytes as the programs take a text from outside.
wxString Text(std::string const& bytes);

}  // namespace fuzz
