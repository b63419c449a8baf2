// SPDX-License-Identifier: Apache-2.0
#include "tolimage/exiftool.h"

#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <list>
#include <mutex>

#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolbase/limits.h"
#include "tolimage/exiftool_answer.h"
#include "tolimage/exiftool_service.h"

namespace {

constexpr size_t kMaxPrefetched = 16;

// What tells that a file is still the one that was asked about.
struct FileMark {
    dev_t device = 0;
    ino_t node = 0;
    off_t size = 0;
    time_t seconds = 0;
    long nanoseconds = 0;

    bool operator==(FileMark const& other) const {
        return device == other.device && node == other.node && size == other.size && seconds == other.seconds &&
               nanoseconds == other.nanoseconds;
    }
};

// False for what is no readable regular file: ExifTool must not be sent to wait at a pipe.
bool MarkFile(std::string const& path, FileMark& mark) {
    struct stat info {};
    if (path.empty() || stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return false;
    if (access(path.c_str(), R_OK) != 0) return false;
    mark = {info.st_dev, info.st_ino, info.st_size, info.st_mtim.tv_sec, info.st_mtim.tv_nsec};
    return true;
}

std::string Absolute(wxString const& path) {
    const std::string bytes = PathToBytes(path);
    if (bytes.empty() || bytes[0] == '/') return bytes;
    char folder[PATH_MAX];
    return getcwd(folder, sizeof folder) == nullptr ? std::string() : std::string(folder) + "/" + bytes;
}

ExifToolQuestionPtr Ask(std::string const& file, std::string const& arguments, TolLimit limit) {
    auto question = std::make_shared<ExifToolQuestion>();
    question->arguments = arguments;
    question->file = file;
    question->answerLimit = GetTolLimit(limit);
    ExifToolService::Instance().Ask(question);
    return question;
}

// The answer, or the exception that tells why there is none.
std::string Answer(ExifToolQuestionPtr const& question, TolLimit limit) {
    ExifToolService::Instance().Await(question);
    if (question->refusedBytes > 0) throw TolLimitError(limit, question->refusedBytes);
    if (!question->failure.empty()) {
        throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage,
                           wxString::FromUTF8(question->failure));
    }
    return std::move(question->answer);
}

struct Prefetched {
    std::string path;
    FileMark mark;
    ExifToolQuestionPtr question;
};

// Questions asked ahead of time, the oldest first.
class PrefetchStore {
public:
    static PrefetchStore& Instance() {
        static auto* store = new PrefetchStore;
        return *store;
    }

    bool Holds(std::string const& path, FileMark const& mark) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return std::any_of(m_entries.begin(), m_entries.end(),
                           [&](Prefetched const& entry) { return entry.path == path && entry.mark == mark; });
    }
    void Put(Prefetched entry) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_entries.push_back(std::move(entry));
        if (m_entries.size() > kMaxPrefetched) m_entries.pop_front();
    }
    // Null if there is none, or the file is another by now.
    ExifToolQuestionPtr Take(std::string const& path, FileMark const& mark) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        ExifToolQuestionPtr question;
        for (auto at = m_entries.begin(); at != m_entries.end();) {
            if (at->path != path) {
                ++at;
                continue;
            }
            if (at->mark == mark) question = at->question;
            at = m_entries.erase(at);
        }
        return question;
    }
    void Clear() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_entries.clear();
    }

private:
    std::mutex m_mutex;
    std::list<Prefetched> m_entries;
};

bool IsComposite(ExifToolValue const& value, char const* tag) {
    return value.group0 == "Composite" && value.tag == tag;
}

// The table shows degrees, minutes and seconds; the position itself is wanted as a number.
void PutNumbers(ExifToolValues& values, std::string const& file) {
    const bool present = std::any_of(values.begin(), values.end(), [](ExifToolValue const& value) {
        return IsComposite(value, "GPSLatitude") || IsComposite(value, "GPSLongitude");
    });
    if (!present) return;
    const ExifToolQuestionPtr question = Ask(file, ExifToolNumbersArguments, TolLimit::SegmentBytes);
    for (ExifToolValue const& number : ParseExifToolAnswer(Answer(question, TolLimit::SegmentBytes))) {
        for (ExifToolValue& value : values) {
            if (value.group0 == "Composite" && value.tag == number.tag) value.value = number.value;
        }
    }
}

// The text between the quotes of `$VERSION = '12.57';`, if it stands in the file's first part.
std::string VersionIn(std::string const& module) {
    std::string text;
    if (!ReadFileBytes(PathFromBytes(module), text, 4U << 20)) return {};
    const std::string mark = "$VERSION = '";
    const size_t start = text.find(mark);
    if (start == std::string::npos) return {};
    const size_t from = start + mark.size();
    const size_t end = text.find('\'', from);
    return end == std::string::npos || end - from > 16 ? std::string() : text.substr(from, end - from);
}

}  // namespace

ExifToolValues ExifToolRead(wxString const& path) {
    const std::string file = Absolute(path);
    FileMark mark;
    if (!MarkFile(file, mark)) return {};
    ExifToolQuestionPtr question = PrefetchStore::Instance().Take(file, mark);
    if (!question) question = Ask(file, ExifToolValuesArguments, TolLimit::SegmentBytes);
    ExifToolValues values = ParseExifToolAnswer(Answer(question, TolLimit::SegmentBytes));
    PutNumbers(values, file);
    return values;
}

void ExifToolPrefetch(wxString const& path) {
    try {
        const std::string file = Absolute(path);
        FileMark mark;
        if (!MarkFile(file, mark) || PrefetchStore::Instance().Holds(file, mark)) return;
        PrefetchStore::Instance().Put({file, mark, Ask(file, ExifToolValuesArguments, TolLimit::SegmentBytes)});
    } catch (std::exception const&) {
        // It is only a head start; the real question will tell what is wrong.
    }
}

std::string ExifToolReadBinary(wxString const& path, char const* tag) {
    const std::string file = Absolute(path);
    FileMark mark;
    if (!MarkFile(file, mark)) return {};
    const std::string arguments = std::string("-j\n-b\n-") + tag + "\n";
    return ParseExifToolBinary(
        Answer(Ask(file, arguments, TolLimit::EmbeddedImageBytes), TolLimit::EmbeddedImageBytes));
}

wxString ExifToolVersion() {
    const std::string program = ExifToolService::Instance().ProgramPath();
    if (program.empty()) return wxString();
    char real[PATH_MAX];
    const std::string resolved = realpath(program.c_str(), real) != nullptr ? real : program;
    const std::string folder = resolved.substr(0, resolved.rfind('/'));
    for (std::string const& library :
         {folder + "/lib", folder + "/../share/perl5", std::string("/usr/local/share/perl5"),
          folder + "/../share/perl5/vendor_perl", std::string("/usr/share/perl5")}) {
        const std::string version = VersionIn(library + "/Image/ExifTool.pm");
        if (!version.empty()) return wxString::FromUTF8(version);
    }
    return wxString();
}

void ExifToolSetProgram(wxString const& program) {
    const std::string bytes = PathToBytes(program);
    PrefetchStore::Instance().Clear();
    ExifToolService::Instance().Reset(&bytes);
}

void ExifToolShutdown() {
    PrefetchStore::Instance().Clear();
    ExifToolService::Instance().Reset(nullptr);
}
