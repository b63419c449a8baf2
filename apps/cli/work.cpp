// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/work.h"

#include <memory>
#include <new>
#include <optional>

#include "apps/cli/clicontext.h"
#include "apps/cli/failure.h"
#include "apps/cli/session.h"
#include "apps/cli/text.h"
#include "orvcore/command.h"
#include "tolbase/exception.h"

namespace cli {

namespace {

// The work is the command's own copy and the outcome is shared: after an interruption the worker may be left behind.
class WorkCommand : public OrvCommand {
public:
    WorkCommand(std::string log, std::function<void()> work, std::shared_ptr<std::optional<Failure>> failure)
        : OrvCommand(OrvCommandIdCallGenericAction),
          m_log(std::move(log)),
          m_work(std::move(work)),
          m_failure(std::move(failure)) {}

    void Execute() override {
        try {
            m_work();
        } catch (Failure const& failure) {
            *m_failure = failure;
        } catch (TolException const& error) {
            *m_failure = Failure(ExitInput, "", ToUtf8(error.GetMessage()));
        } catch (std::bad_alloc const&) {
            *m_failure = Failure(ExitInput, "", "not enough memory");
        } catch (std::exception const& error) {
            *m_failure = Failure(ExitInternal, "", error.what());
        } catch (...) {
            *m_failure = Failure(ExitInternal, "", "unknown error");
        }
        GetContext()->PushEvent(new OrvCommandEvent(wxEVT_ORV_COMMAND, GetCommandId(), VecParameter()));
    }

    wxString GetCommandLog() const override { return FromUtf8(Printable(m_log)); }
    wxString GetResultLog() const override {
        return m_failure->has_value() ? FromUtf8(Printable((*m_failure)->what())) : wxString();
    }
    bool LogEnabled() const override { return true; }

private:
    std::string m_log;
    std::function<void()> m_work;
    std::shared_ptr<std::optional<Failure>> m_failure;
};

}  // namespace

bool RunWork(Session& session, std::string const& log, std::function<void()> const& work) {
    const auto failure = std::make_shared<std::optional<Failure>>();
    if (!session.Run(std::make_unique<WorkCommand>(log, work, failure), [] {})) return false;
    if (failure->has_value()) throw Failure(**failure);
    return true;
}

}  // namespace cli
