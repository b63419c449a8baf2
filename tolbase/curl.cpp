// SPDX-License-Identifier: Apache-2.0
#include "tolbase/curl.h"

#include <curl/curl.h>

#include <algorithm>
#include <chrono>
#include <mutex>
#include <utility>

#include "tolbase/limits.h"
#include "tolbase/progress.h"
#include "tolbase/text.h"

namespace {

constexpr long DefaultSeconds = 60;
constexpr long ConnectSeconds = 20;
constexpr long StatusUnauthorized = 401;

bool StartLibrary() {
    static std::once_flag once;
    static bool good = false;
    std::call_once(once, [] { good = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK; });
    return good;
}

// One header line can't become two.
std::string HeaderLine(std::string line) {
    line.erase(std::remove_if(line.begin(), line.end(),
                              [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }),
               line.end());
    return line;
}

struct FreeHandle {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct FreeList {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
struct FreeMime {
    void operator()(curl_mime* form) const { curl_mime_free(form); }
};
struct FreeUrl {
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
};

std::string UrlPart(CURLU* url, CURLUPart part) {
    char* text = nullptr;
    if (curl_url_get(url, part, &text, 0) != CURLUE_OK || text == nullptr) return std::string();
    std::string copy(text);
    curl_free(text);
    return copy;
}

bool IsThisMachine(const std::string& host) {
    if (host == "localhost" || host == "[::1]") return true;
    // Digits and points alone: "127.example.org" is elsewhere.
    return host.compare(0, 4, "127.") == 0 && host.find_first_not_of("0123456789.") == std::string::npos;
}

enum class Address { Refused, Remote, ThisMachine };

Address Judge(const std::string& request, bool plainHttp) {
    const std::unique_ptr<CURLU, FreeUrl> url(curl_url());
    if (url == nullptr || curl_url_set(url.get(), CURLUPART_URL, request.c_str(), 0) != CURLUE_OK)
        return Address::Refused;
    const std::string scheme = UrlPart(url.get(), CURLUPART_SCHEME);
    const bool local = IsThisMachine(UrlPart(url.get(), CURLUPART_HOST));
    if (scheme != "https" && !(scheme == "http" && (local || plainHttp))) return Address::Refused;
    return local ? Address::ThisMachine : Address::Remote;
}

struct Sink {
    std::string bytes;
    std::size_t maxBytes = static_cast<std::size_t>(GetTolLimit(TolLimit::DownloadBytes));
    bool tooLong = false;
    std::size_t received = 0;
    std::function<bool(const char*, std::size_t)> receiver;
};

std::size_t OnData(char* data, std::size_t size, std::size_t count, void* user) {
    auto* sink = static_cast<Sink*>(user);
    const std::size_t bytes = size * count;
    if (bytes > sink->maxBytes - std::min(sink->maxBytes, sink->received)) {
        sink->tooLong = true;
        return 0;
    }
    sink->received += bytes;
    if (sink->receiver) return sink->receiver(data, bytes) ? bytes : 0;
    sink->bytes.append(data, bytes);
    return bytes;
}

using Clock = std::chrono::steady_clock;

// Notices an abort, and when the time that is left after it is over.
struct AbortWatch {
    std::chrono::seconds grace{0};
    bool noticed = false;
    Clock::time_point since;

    bool IsOver() {
        if (!tcvHasAborted()) {
            noticed = false;
            return false;
        }
        if (!std::exchange(noticed, true)) since = Clock::now();
        return Clock::now() - since >= grace;
    }
};

int OnProgress(void* user, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return static_cast<AbortWatch*>(user)->IsOver() ? 1 : 0;
}

std::string FormOf(CURL* handle, const std::vector<NameValueDesc>& fields) {
    std::string form;
    for (const NameValueDesc& field : fields) {
        for (const wxString* text : {&field.Name, &field.Value}) {
            const std::string bytes = TolToUtf8(*text);
            char* escaped = curl_easy_escape(handle, bytes.c_str(), static_cast<int>(bytes.size()));
            form += text == &field.Name ? (form.empty() ? "" : "&") : "=";
            if (escaped != nullptr) form += escaped;
            curl_free(escaped);
        }
    }
    return form;
}

}  // namespace

struct CurlClass::Impl {
    std::unique_ptr<CURL, FreeHandle> handle;
    std::string request;
    long seconds = DefaultSeconds;
    long stallSeconds = 0;
    Sink sink;
    AbortWatch watch;
    std::vector<std::string> extraHeaders;
    bool followRedirects = true;
    bool plainHttp = false;
    std::size_t firstBytes = 0;
    std::string uploadField;
    std::string uploadName;
    std::string uploadBytes;
    long status = 0;
    long retryAfter = 0;
    std::string contentType;
    std::string redirectAddress;
    wxString error;

    void Forget() {
        sink.bytes.clear();
        sink.received = 0;
        sink.tooLong = false;
        watch.noticed = false;
        status = 0;
        retryAfter = 0;
        contentType.clear();
        redirectAddress.clear();
        error.clear();
    }
    std::unique_ptr<curl_slist, FreeList> Headers(const wxString& header) const {
        std::unique_ptr<curl_slist, FreeList> list;
        std::vector<std::string> lines = extraHeaders;
        lines.insert(lines.begin(), TolToUtf8(header));
        for (const std::string& text : lines) {
            const std::string line = HeaderLine(text);
            if (!line.empty()) list.reset(curl_slist_append(list.release(), line.c_str()));
        }
        return list;
    }
    std::unique_ptr<curl_mime, FreeMime> Form(const std::vector<NameValueDesc>& fields) const {
        std::unique_ptr<curl_mime, FreeMime> form(curl_mime_init(handle.get()));
        for (const NameValueDesc& field : fields) {
            const std::string value = TolToUtf8(field.Value);
            curl_mimepart* part = curl_mime_addpart(form.get());
            curl_mime_name(part, TolToUtf8(field.Name).c_str());
            curl_mime_data(part, value.data(), value.size());
        }
        curl_mimepart* file = curl_mime_addpart(form.get());
        curl_mime_name(file, uploadField.c_str());
        curl_mime_filename(file, uploadName.c_str());
        curl_mime_data(file, uploadBytes.data(), uploadBytes.size());
        return form;
    }
    void ReadInfo() {
        CURL* curl = handle.get();
        curl_off_t pause = 0;
        char* text = nullptr;
        curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
        if (curl_easy_getinfo(curl, CURLINFO_RETRY_AFTER, &pause) == CURLE_OK)
            retryAfter = static_cast<long>(std::clamp<curl_off_t>(pause, 0, 1000000));
        if (curl_easy_getinfo(curl, CURLINFO_CONTENT_TYPE, &text) == CURLE_OK && text != nullptr) contentType = text;
        if (curl_easy_getinfo(curl, CURLINFO_REDIRECT_URL, &text) == CURLE_OK && text != nullptr)
            redirectAddress = text;
    }

    int Fail(const wxString& message) {
        sink.bytes.clear();
        error = message;
        return -1;
    }
    void SetSafety(bool local, bool follow) const {
        CURL* curl = handle.get();
        curl_easy_setopt(curl, CURLOPT_SSL_VERIFYPEER, 1L);
        curl_easy_setopt(curl, CURLOPT_SSL_VERIFYHOST, 2L);
        curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, local || plainHttp ? "http,https" : "https");
        curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, "https");
        curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, follow ? 1L : 0L);
        curl_easy_setopt(curl, CURLOPT_MAXREDIRS, 5L);
        curl_easy_setopt(curl, CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
        // A signal can't end a name look-up in one thread of many.
        curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(curl, CURLOPT_TIMEOUT, seconds);
        curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, std::min(seconds, ConnectSeconds));
        if (local) curl_easy_setopt(curl, CURLOPT_NOPROXY, "*");
        if (stallSeconds > 0) {
            curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, 1L);
            curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, stallSeconds);
        }
        if (firstBytes > 0) {
            const std::string range = "0-" + std::to_string(firstBytes - 1);
            curl_easy_setopt(curl, CURLOPT_RANGE, range.c_str());
        }
    }
    void SetCallbacks() {
        CURL* curl = handle.get();
        curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, OnData);
        curl_easy_setopt(curl, CURLOPT_WRITEDATA, &sink);
        curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
        curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, OnProgress);
        curl_easy_setopt(curl, CURLOPT_XFERINFODATA, &watch);
        curl_easy_setopt(curl, CURLOPT_ACCEPT_ENCODING, "");
        curl_easy_setopt(curl, CURLOPT_USERAGENT, "Orvelle");
    }
};

CurlClass::CurlClass() : m_impl(std::make_unique<Impl>()) {}
CurlClass::~CurlClass() = default;

bool CurlClass::InitCurl() {
    if (m_impl->handle == nullptr && StartLibrary()) m_impl->handle.reset(curl_easy_init());
    return m_impl->handle != nullptr;
}

void CurlClass::SetRequest(const wxString& request) {
    m_impl->request = TolToUtf8(request);
}
void CurlClass::SetTimeLimit(int seconds) {
    m_impl->seconds = seconds > 0 ? seconds : DefaultSeconds;
}
void CurlClass::SetMaxResponseBytes(std::size_t bytes) {
    m_impl->sink.maxBytes = bytes;
}

void CurlClass::SetExtraHeaders(const std::vector<std::string>& lines) {
    m_impl->extraHeaders = lines;
}
void CurlClass::SetFollowRedirects(bool follow) {
    m_impl->followRedirects = follow;
}
void CurlClass::SetPlainHttpAllowed(bool allowed) {
    m_impl->plainHttp = allowed;
}
void CurlClass::SetReceiver(std::function<bool(const char* data, std::size_t size)> receiver) {
    m_impl->sink.receiver = std::move(receiver);
}
void CurlClass::SetFirstBytes(std::size_t count) {
    m_impl->firstBytes = count;
}
void CurlClass::SetStallLimit(int seconds) {
    m_impl->stallSeconds = seconds;
}
void CurlClass::SetAbortGrace(int seconds) {
    m_impl->watch.grace = std::chrono::seconds(std::max(seconds, 0));
}

void CurlClass::SetUpload(const std::string& field, const std::string& fileName, const std::string& bytes) {
    m_impl->uploadField = field;
    m_impl->uploadName = fileName;
    m_impl->uploadBytes = bytes;
}

int CurlClass::SendSSLRequest(const wxString& header, const std::vector<NameValueDesc>& fields, const wxString& body) {
    Impl& impl = *m_impl;
    impl.Forget();
    if (!InitCurl()) return impl.Fail("The network library can't be started.");
    CURL* curl = impl.handle.get();
    curl_easy_reset(curl);
    const Address address = Judge(impl.request, impl.plainHttp);
    if (address == Address::Refused) return impl.Fail("The address is none that may be asked: https is needed.");
    const auto headers = impl.Headers(header);
    impl.SetSafety(address == Address::ThisMachine, impl.followRedirects && headers == nullptr);
    impl.SetCallbacks();
    curl_easy_setopt(curl, CURLOPT_URL, impl.request.c_str());
    if (headers != nullptr) curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers.get());
    const bool upload = !impl.uploadField.empty();
    const auto form = upload ? impl.Form(fields) : nullptr;
    const std::string post = upload ? std::string() : (fields.empty() ? TolToUtf8(body) : FormOf(curl, fields));
    if (upload) curl_easy_setopt(curl, CURLOPT_MIMEPOST, form.get());
    if (!post.empty()) {
        curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(post.size()));
        curl_easy_setopt(curl, CURLOPT_POSTFIELDS, post.c_str());
    }
    const CURLcode result = curl_easy_perform(curl);
    if (impl.sink.tooLong) return impl.Fail("The answer is longer than the limit.");
    if (result != CURLE_OK) return impl.Fail(wxString::FromUTF8(curl_easy_strerror(result)));
    impl.ReadInfo();
    if (impl.status == StatusUnauthorized) impl.sink.bytes.clear();
    return 0;
}

long CurlClass::GetRetryAfter() const {
    return m_impl->retryAfter;
}
std::string CurlClass::GetContentType() const {
    return m_impl->contentType;
}
std::string CurlClass::GetRedirectAddress() const {
    return m_impl->redirectAddress;
}

bool CurlClass::IsAllowedAddress(const std::string& address, bool plainHttp) {
    return Judge(address, plainHttp) != Address::Refused;
}

bool CurlClass::IsAddressOfThisMachine(const std::string& address) {
    return Judge(address, true) == Address::ThisMachine;
}

wxString CurlClass::GetResponseString() const {
    return TolFromUtf8(m_impl->sink.bytes);
}

const std::string& CurlClass::GetResponseBytes() const {
    return m_impl->sink.bytes;
}
long CurlClass::GetHttpStatus() const {
    return m_impl->status;
}
wxString CurlClass::GetErrorMessage() const {
    return m_impl->error;
}
