// SPDX-License-Identifier: Apache-2.0
// What the searches share.
#include "orvcore/webmediasearch.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <string>

#include "orvcore/webmediasearch_private.h"
#include "tolbase/text.h"

namespace {

bool sm_isRunning = false;
int sm_traceFile = -1;
std::int64_t sm_start = 0;

std::int64_t Now() {
    auto const now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::seconds>(now).count();
}

wxString Digits(std::int64_t number) {
    return wxString::FromUTF8(std::to_string(number));
}

// Replaces an earlier trace; nothing that is no plain file, and no file that a link leads to.
int OpenTrace() {
    int const file = open("flickr_log.txt", O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666);
    struct stat info {};
    if (file >= 0 && fstat(file, &info) == 0 && S_ISREG(info.st_mode) && ftruncate(file, 0) == 0) return file;
    if (file >= 0) close(file);
    return -1;
}

}  // namespace

namespace orvsearch {

wxString FixedText(double number) {
    std::array<char, 400> text{};
    auto const end = std::to_chars(text.data(), text.data() + text.size(), std::isfinite(number) ? number : 0.0,
                                   std::chars_format::fixed, 6);
    return wxString::FromUTF8(text.data(), static_cast<std::size_t>(end.ptr - text.data()));
}

wxString SizeText(wxSize const& size) {
    return Digits(size.GetWidth()) + "x" + Digits(size.GetHeight());
}

bool Trace::Begin(wxString const& model) {
    if (sm_isRunning) return false;
    sm_traceFile = OpenTrace();
    sm_start = Now();
    sm_isRunning = true;
    Write("Start Time ", Digits(sm_start));
    Write("Camera Model ", model);
    return true;
}

void Trace::End() {
    std::int64_t const end = Now();
    Write("End Time ", Digits(end));
    Write("Second Passed ", Digits(end - sm_start));
    sm_isRunning = false;
    if (sm_traceFile >= 0) close(sm_traceFile);
    sm_traceFile = -1;
}

void Trace::Write(char const* label, wxString const& text) {
    if (sm_traceFile < 0) return;
    std::string line = label + TolToUtf8(text);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
    line += '\n';
    std::size_t done = 0;
    while (done < line.size()) {
        ssize_t const put = write(sm_traceFile, line.data() + done, line.size() - done);
        if (put <= 0) return;
        done += static_cast<std::size_t>(put);
    }
}

void Trace::WritePhoto(Photo const& photo) {
    Write("ID ", photo.GetPhotoId());
    Write("Size ", SizeText(photo.GetPhotoSize(PhotoSizeOriginal)));
    Write("Link ", photo.GetPhotoLink(PhotoSizeOriginal));
}

}  // namespace orvsearch
