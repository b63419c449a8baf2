// SPDX-License-Identifier: Apache-2.0
// main() of every test program: a console application object, no display, a HOME that is thrown away.
#include <gtest/gtest.h>
#include <wx/app.h>
#include <wx/init.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#ifdef ORVELLE_COVERAGE
// The header names it without a language.
extern "C" void __gcov_dump();
#endif

namespace {

// A failing wxASSERT is told, and never stops the process or asks a question.
void ReportAssert(const wxString& file, int line, const wxString&, const wxString& condition, const wxString&) {
    std::cerr << "assertion \"" << condition.utf8_str().data() << "\" at " << file.utf8_str().data() << ":" << line
              << "\n";
}

class TestApp : public wxAppConsole {
public:
    bool OnInit() override { return true; }
};

}  // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    char home[] = "/tmp/orvelle-test-home-XXXXXX";
    if (mkdtemp(home) == nullptr) return 2;
    setenv("HOME", home, 1);
    setenv("XDG_CONFIG_HOME", (std::string(home) + "/.config").c_str(), 1);
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    wxApp::SetInstance(new TestApp);
    int count = 0;
    char** none = nullptr;
    if (!wxEntryStart(count, none)) return 2;
    wxSetAssertHandler(ReportAssert);
    const int result = RUN_ALL_TESTS();
    std::error_code ignored;
    std::filesystem::remove_all(home, ignored);
    std::cout.flush();
    std::cerr.flush();
#ifdef ORVELLE_COVERAGE
    __gcov_dump();
#endif
    // No static destructor runs while a worker thread may still be blocked on its queue.
    std::_Exit(result);
}
