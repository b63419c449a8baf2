// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/application.h"

#include <wx/app.h>
#include <wx/init.h>
#include <wx/log.h>
#include <wx/translation.h>

#include <clocale>
#include <exception>

#include "apps/cli/failure.h"
#include "apps/cli/terminal.h"
#include "apps/cli/text.h"
#include "tolbase/file.h"
#include "tolbase/text.h"

namespace cli {

namespace {

Terminal* g_terminal = nullptr;

class ConsoleApp : public wxAppConsole {
public:
    bool OnInit() override { return true; }
    // wxWidgets' own needs memory to tell that there was none.
    void OnUnhandledException() override { std::terminate(); }
};

// Texts that wxWidgets logs, also on the worker, shown on the main thread.
class TerminalLog : public wxLog {
protected:
    void DoLogTextAtLevel(wxLogLevel, wxString const& message) override {
        if (g_terminal != nullptr) g_terminal->Note(ToUtf8(message));
    }
};

// No assertion asks a question or stops an examination.
void OnAssert(wxString const& file, int line, wxString const&, wxString const& condition, wxString const&) {
    if (g_terminal == nullptr) return;
    g_terminal->Note("assertion \"" + ToUtf8(condition) + "\" at " + ToUtf8(file) + ":" + std::to_string(line));
}

// The same texts and numbers everywhere: nothing is taken from the locale of the person's shell.
void FixLocale() {
    std::setlocale(LC_ALL, "C");
    std::setlocale(LC_CTYPE, "C.UTF-8");
    TolInitFileNames();
}

}  // namespace

Application::Application(Terminal& terminal) {
    g_terminal = &terminal;
    wxApp::SetInstance(new ConsoleApp);
    int count = 0;
    char** none = nullptr;
    if (!wxEntryStart(count, none)) throw Failure(ExitInternal, "", "wxWidgets can't be started");
    FixLocale();
    // Makes wxWidgets' store of texts without a translation before there is a second thread: the thread sanitizer can't
    // see how the library guards that.
    wxTranslations::GetUntranslatedString(wxString());
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): wxWidgets deletes it at its end
    delete wxLog::SetActiveTarget(new TerminalLog);
    wxSetAssertHandler(OnAssert);
    TolSetMessageHandler([&terminal](wxString const& message, wxString const& title) {
        terminal.Warning(ToUtf8(title), ToUtf8(message));
    });
}

Application::~Application() {
    TolSetMessageHandler(TolMessageHandler());
    wxEntryCleanup();
    g_terminal = nullptr;
}

}  // namespace cli
