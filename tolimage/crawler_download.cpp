// SPDX-License-Identifier: Apache-2.0
// One photograph's file.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tolbase/file.h"
#include "tolbase/limits.h"
#include "tolbase/progress.h"
#include "tolbase/text.h"
#include "tolimage/crawler.h"
#include "tolimage/crawler_request.h"
#include "tolimage/webservices.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int MostRedirections = 5;
constexpr int AbortGraceSeconds = 5;
constexpr std::size_t LongestName = 100;
constexpr std::size_t LongestExtension = 5;
constexpr std::size_t HeadBytes = 64;
constexpr int AttemptPauseMs = 1000;

bool IsPlainCharacter(wxUniChar c, bool withPoint) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
           (withPoint && c == '.');
}

wxString NameOfId(wxString const& id) {
    wxString name;
    for (wxUniChar const c : id.Left(LongestName)) name += IsPlainCharacter(c, true) ? c : wxUniChar('_');
    // Neither hidden nor a folder.
    for (std::size_t i = 0; i < name.length() && name[i] == '.'; ++i) name[i] = '_';
    return name.empty() ? wxString("_") : name;
}

// Of the path's last part; empty where it has none that could be one.
wxString ExtensionOfLink(wxString const& link) {
    wxString const path = link.BeforeFirst('?').BeforeFirst('#');
    wxString const rest = path.Mid(path.find("://") == wxString::npos ? 0 : path.find("://") + 3);
    wxString const last = rest.Contains("/") ? rest.AfterLast('/') : wxString();
    if (!last.Contains(".")) return {};
    wxString const extension = last.AfterLast('.');
    bool const plain = std::all_of(extension.begin(), extension.end(),
                                   [](wxUniChar c) { return IsPlainCharacter(c, false) && c != '-' && c != '_'; });
    return plain && extension.length() <= LongestExtension ? extension : wxString();
}

bool HasAt(std::string const& bytes, std::size_t at, std::string const& text) {
    return bytes.size() >= at && bytes.compare(at, text.size(), text) == 0;
}

bool StartsWith(std::string const& bytes, std::string const& start) {
    return HasAt(bytes, 0, start);
}

// By the first bytes; "bin" for what is none of these.
wxString ExtensionOfBytes(std::string const& head) {
    if (StartsWith(head, "\xFF\xD8\xFF")) return "jpg";
    if (StartsWith(head, "\x89PNG")) return "png";
    if (StartsWith(head, "GIF8")) return "gif";
    if (StartsWith(head, std::string("II*\0", 4)) || StartsWith(head, std::string("MM\0*", 4))) return "tif";
    if (StartsWith(head, "RIFF") && HasAt(head, 8, "WEBP")) return "webp";
    if (HasAt(head, 4, "ftyph")) return "heic";
    return "bin";
}

bool IsWebPage(std::string const& head, std::string const& contentType) {
    if (TolFromUtf8(contentType).Lower().StartsWith("text/html")) return true;
    std::size_t const start = head.find_first_not_of(" \t\r\n");
    if (start == std::string::npos) return false;
    wxString const text = TolFromUtf8(head.substr(start)).Lower();
    return text.StartsWith("<!doctype html") || text.StartsWith("<html");
}

wxString Reason() {
    return wxString::FromUTF8(std::strerror(errno));
}

// A new file in the folder that is gone with the object, unless it was given its name.
class Arrival {
public:
    explicit Arrival(wxString const& folder) {
        std::string name = PathToBytes(folder) + "/.orvelle-XXXXXX.part";
        m_descriptor = mkostemps(name.data(), 5, O_CLOEXEC);
        if (m_descriptor >= 0) m_path = name;
    }
    ~Arrival() {
        Close();
        if (!m_path.empty()) unlink(m_path.c_str());
    }
    Arrival(Arrival const&) = delete;
    Arrival& operator=(Arrival const&) = delete;

    bool IsOpen() const { return m_descriptor >= 0; }
    std::string const& Head() const { return m_head; }
    std::uint64_t Size() const { return m_size; }
    bool HasWriteFailed() const { return m_failed; }

    bool Write(char const* data, std::size_t size) {
        if (m_head.size() < HeadBytes) m_head.append(data, std::min(size, HeadBytes - m_head.size()));
        while (size > 0) {
            ssize_t const put = write(m_descriptor, data, size);
            if (put < 0 && errno == EINTR) continue;
            if (put <= 0) {
                m_failed = true;
                return false;
            }
            data += put;
            size -= static_cast<std::size_t>(put);
            m_size += static_cast<std::uint64_t>(put);
        }
        return true;
    }
    // Begins anew.
    bool Empty() {
        m_head.clear();
        m_size = 0;
        return ftruncate(m_descriptor, 0) == 0 && lseek(m_descriptor, 0, SEEK_SET) == 0;
    }
    // Brings it to the disk, with the mode of any other file.
    bool Finish() {
        mode_t const mask = umask(0);
        umask(mask);
        bool const good = fchmod(m_descriptor, 0666 & ~mask) == 0 && fsync(m_descriptor) == 0;
        return Close() && good;
    }
    bool MoveTo(wxString const& path, bool overwrite, bool& exists) {
        bool const done = overwrite ? std::rename(m_path.c_str(), PathToBytes(path).c_str()) == 0
                                    : RenameFileToNew(PathFromBytes(m_path), path, exists);
        if (done) m_path.clear();
        return done;
    }

private:
    bool Close() {
        int const descriptor = m_descriptor;
        m_descriptor = -1;
        return descriptor < 0 || close(descriptor) == 0;
    }

    std::string m_path;
    int m_descriptor = -1;
    std::string m_head;
    std::uint64_t m_size = 0;
    bool m_failed = false;
};

}  // namespace

struct DownloadPhoto::Impl {
    wxString id;
    wxString link;
    PhotoSizeFormat format = PhotoSizeOriginal;
    wxString folder;
    DownloadTimeout timeout;
    bool overwrite = false;
    bool exists = false;
    wxString file;

    wxString Path(wxString const& extension) const { return folder + "/" + NameOfId(id) + "." + extension; }
    wxString Refuse(wxString const& path) {
        exists = true;
        return "The file exists already: " + path;
    }
    wxString Transfer(CurlClass& connection, Arrival& arrival, Clock::time_point end) const;
    wxString Keep(Arrival& arrival, wxString const& extension);
};

// One attempt, redirections included; gives a sentence if it failed.
wxString DownloadPhoto::Impl::Transfer(CurlClass& connection, Arrival& arrival, Clock::time_point end) const {
    std::string address = TolToUtf8(link);
    for (int step = 0; step <= MostRedirections; ++step) {
        auto const left = std::chrono::duration_cast<std::chrono::seconds>(end - Clock::now()).count();
        connection.SetTimeLimit(static_cast<int>(std::max<std::int64_t>(left, 1)));
        connection.SetRequest(TolFromUtf8(address));
        if (!arrival.Empty()) return "The file can't be written: " + Reason();
        if (connection.SendSSLRequest(wxString(), {}, wxString()) != 0)
            return arrival.HasWriteFailed() ? "The file can't be written: " + Reason() : connection.GetErrorMessage();
        long const status = connection.GetHttpStatus();
        if (status / 100 == 2) return {};
        std::string const next = connection.GetRedirectAddress();
        if (status / 100 != 3 || next.empty())
            return "The server answered " + wxString::FromUTF8(std::to_string(status)) + ".";
        bool const inward = CurlClass::IsAddressOfThisMachine(next) && !CurlClass::IsAddressOfThisMachine(address);
        bool const downgrade = StartsWith(address, "https") && !StartsWith(next, "https");
        if (inward || downgrade || !CurlClass::IsAllowedAddress(next, true))
            return "The server redirects to where no download may go.";
        address = next;
    }
    return "The server redirects too often.";
}

// Judges what has come and gives it its name; a sentence if that can't be done.
wxString DownloadPhoto::Impl::Keep(Arrival& arrival, wxString const& extension) {
    if (!arrival.Finish()) return "The file can't be written: " + Reason();
    wxString const path = Path(extension.empty() ? ExtensionOfBytes(arrival.Head()) : extension);
    bool there = false;
    if (!arrival.MoveTo(path, overwrite, there)) return there ? Refuse(path) : "The file can't be named: " + Reason();
    file = path;
    return {};
}

DownloadPhoto::DownloadPhoto(wxString id, wxString link, PhotoSizeFormat const& format, wxString const& folder,
                             DownloadTimeout const* timeout)
    : m_impl(std::make_unique<Impl>()) {
    m_impl->id = id.Clone();
    m_impl->link = Trim(link);
    m_impl->format = format;
    m_impl->folder = folder.Clone();
    if (timeout != nullptr) m_impl->timeout = *timeout;
}

DownloadPhoto::~DownloadPhoto() = default;

void DownloadPhoto::SetOverwrite(bool overwrite) {
    m_impl->overwrite = overwrite;
}

wxString DownloadPhoto::GetFile() const {
    return m_impl->file;
}

bool DownloadPhoto::IsRefusedByExistingFile() const {
    return m_impl->exists;
}

void DownloadPhoto::Work() {
    wxString const failure = Fetch();
    // The address tells which of many it was; its query may be secret.
    if (!failure.empty()) SetErrorMsg(TolAddressForShow(m_impl->link) + ": " + failure);
}

wxString DownloadPhoto::Fetch() {
    Impl& impl = *m_impl;
    impl.file.clear();
    impl.exists = false;
    if (!IsAllowedAddress(TolToUtf8(impl.link), true)) return "The link is no address of http or https.";
    if (!CreateDirIfNotExists(impl.folder)) return "The folder can't be made: " + impl.folder;
    wxString const extension = ExtensionOfLink(impl.link);
    std::string const known = PathToBytes(impl.Path(extension));
    if (!extension.empty() && !impl.overwrite && access(known.c_str(), F_OK) == 0)
        return impl.Refuse(impl.Path(extension));
    Arrival arrival(impl.folder);
    if (!arrival.IsOpen()) return "The folder can't be written to: " + Reason();
    SetFollowRedirects(false);
    SetPlainHttpAllowed(true);
    SetAbortGrace(AbortGraceSeconds);
    SetMaxResponseBytes(static_cast<std::size_t>(GetTolLimit(TolLimit::DownloadBytes)));
    SetStallLimit(static_cast<int>(std::min<std::uint64_t>(GetTolLimit(TolLimit::WebSeconds), 100000)));
    SetReceiver([&arrival](char const* data, std::size_t size) { return arrival.Write(data, size); });
    auto const end = Clock::now() + std::chrono::seconds(std::max(impl.timeout.seconds, 1));
    wxString failure;
    auto backOff = std::chrono::milliseconds(GetTolLimit(TolLimit::WebBackoffMs));
    for (int attempt = 1;; ++attempt) {
        failure = impl.Transfer(*this, arrival, end);
        if (failure.empty() || tcvHasAborted()) break;
        // A busy server asks to be asked again.
        bool const busy = tolimage::IsToBeRepeated(GetHttpStatus());
        auto const most = static_cast<int>(std::min<std::uint64_t>(GetTolLimit(TolLimit::WebAttempts), 100));
        if (attempt >= (busy ? std::max(impl.timeout.attempts, most) : impl.timeout.attempts)) break;
        auto pause = std::chrono::milliseconds(AttemptPauseMs);
        if (busy) pause = std::max<std::chrono::milliseconds>(backOff, std::chrono::seconds(GetRetryAfter()));
        if (Clock::now() + pause >= end || !tolimage::PauseUnlessAborted(pause)) break;
        backOff *= 2;
    }
    SetReceiver(nullptr);
    if (!failure.empty()) return failure;
    if (arrival.Size() == 0) return "The server sent an empty file.";
    if (IsWebPage(arrival.Head(), GetContentType())) return "The server sent a web page, no picture.";
    return impl.Keep(arrival, extension);
}
