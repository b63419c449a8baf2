// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/examination.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <memory>
#include <new>

#include "apps/cli/clicontext.h"
#include "apps/cli/failure.h"
#include "apps/cli/session.h"
#include "apps/cli/text.h"
#include "tolbase/file.h"
#include "tolbase/hash.h"
#include "tolimage/exiftool.h"

namespace cli {

namespace {

struct FileState {
    struct stat status = {};
    std::string sha256;

    bool operator!=(FileState const& other) const {
        return status.st_size != other.status.st_size || status.st_mtim.tv_sec != other.status.st_mtim.tv_sec ||
               status.st_mtim.tv_nsec != other.status.st_mtim.tv_nsec || sha256 != other.sha256;
    }
};

// A device or a pipe is never opened for good: reading it may hang, or take something away. What has been digested
// already passes the digest in.
FileState ReadState(std::string const& path, std::string const& digested = std::string()) {
    FileState state;
    const auto refuse = [&](std::string const& reason) { throw Failure(ExitInput, path, reason); };
    const auto reason = [](int error) {
        return error == ENOENT ? std::string("no such file") : "can't be read: " + std::string(std::strerror(error));
    };
    if (stat(path.c_str(), &state.status) != 0) refuse(reason(errno));
    if (S_ISDIR(state.status.st_mode)) refuse("is a folder");
    if (!S_ISREG(state.status.st_mode)) refuse("not a regular file");
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) refuse(reason(errno));
    close(descriptor);
    if (state.status.st_size == 0) refuse("empty file");
    state.sha256 = digested.empty() ? ToUtf8(TcvCalcHashFromFile(PathFromBytes(path), SHA256, true)) : digested;
    if (state.sha256.empty()) refuse("can't be read to its end");
    return state;
}

std::string TimeText(std::chrono::system_clock::time_point time) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm parts = {};
    gmtime_r(&seconds, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

// What the worker leaves for the main thread, which reads it once the command's event has come.
struct Result {
    Record record;
    std::string failure;
    ExitCode code = ExitDone;
};

class ExamineCommand : public OrvCommand {
public:
    ExamineCommand(std::string path, OrvFileId slot, FillRecord fill, std::shared_ptr<Result> result)
        : OrvCommand(OrvCommandIdSetFileConfigure),
          m_path(std::move(path)),
          m_slot(slot),
          m_fill(std::move(fill)),
          m_result(std::move(result)) {}

    void Execute() override {
        try {
            Work();
        } catch (Failure const& failure) {
            Fail(failure.Code(), failure.what());
        } catch (TolException const& error) {
            Fail(ExitInput, error.GetMessage().empty() ? error.what() : ToUtf8(error.GetMessage()));
        } catch (std::bad_alloc const&) {
            Fail(ExitInput, "not enough memory");
        } catch (std::exception const& error) {
            Fail(ExitInternal, error.what());
        } catch (...) {
            Fail(ExitInternal, "unknown error");
        }
        GetContext()->PushEvent(new OrvCommandEvent(wxEVT_ORV_COMMAND, GetCommandId(), VecParameter()));
    }

    wxString GetCommandLog() const override {
        return wxString(m_slot == Reference ? "Reference: " : "Evidence: ") + FromUtf8(Printable(m_path));
    }
    wxString GetResultLog() const override { return FromUtf8(Printable(m_result->failure)); }
    bool LogEnabled() const override { return true; }

private:
    void Fail(ExitCode code, std::string const& reason) {
        m_result->code = code;
        m_result->failure = reason;
    }

    void Work() {
        // The worker's own context is this program's.
        auto* const context = static_cast<CliContext*>(GetContext());
        const std::string absolute = std::filesystem::absolute(m_path).string();
        const FileState before = ReadState(m_path);
        context->LoadAlone(PathFromBytes(absolute), m_slot);
        Record& record = m_result->record;
        record.path = m_path;
        record.bytes = static_cast<uint64_t>(before.status.st_size);
        record.sha256 = before.sha256;
        m_fill(m_slot, record);
        // A digest that was taken behind the last reading of the file, and was compared with the first one, says what
        // another one would; only a change of the file's size or time is left to look for.
        const FileState after = ReadState(m_path, record.isSha256Confirmed ? before.sha256 : std::string());
        if (after != before) throw Failure(ExitInput, m_path, "changed while it was examined");
    }

    std::string m_path;
    OrvFileId m_slot;
    FillRecord m_fill;
    std::shared_ptr<Result> m_result;
};

}  // namespace

bool Examine(Session& session, std::string const& path, OrvFileId slot, FillRecord const& fill, Record& record) {
    const auto started = std::chrono::system_clock::now();
    const auto clock = std::chrono::steady_clock::now();
    const auto result = std::make_shared<Result>();
    const auto take = [&] { record = std::move(result->record); };
    if (!session.Run(std::make_unique<ExamineCommand>(path, slot, fill, result), take)) return false;
    if (result->code != ExitDone) throw Failure(result->code, path, result->failure);
    const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - clock;
    record.path = path;
    record.slot = slot == Reference ? "reference" : "evidence";
    record.started = TimeText(started);
    record.seconds = static_cast<double>(static_cast<int64_t>(elapsed.count())) / 1000.0;
    return true;
}

void AskAhead(std::string const& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size == 0) return;
    std::error_code failed;
    const std::filesystem::path absolute = std::filesystem::absolute(path, failed);
    if (!failed) ExifToolPrefetch(PathFromBytes(absolute.string()));
}

}  // namespace cli
