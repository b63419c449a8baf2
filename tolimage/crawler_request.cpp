// SPDX-License-Identifier: Apache-2.0
#include "tolimage/crawler_request.h"

#include <wx/jsonreader.h>

#include <algorithm>
#include <thread>

#include "tolbase/limits.h"
#include "tolbase/progress.h"
#include "tolbase/text.h"
#include "tolimage/webservices.h"

namespace tolimage {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr long StatusTooMany = 429;
constexpr std::size_t LongestText = 1000;

bool IsGood(long status) {
    return status >= 200 && status < 300;
}

std::string StatusSentence(std::string const& service, long status) {
    if (status == 401) return service + ": the key is refused (401).";
    if (status >= 300 && status < 400)
        return service + ": the server redirects elsewhere (" + std::to_string(status) + "); that is not followed.";
    return service + ": the server answered " + std::to_string(status) + ".";
}

// Whole seconds, at least one.
int SecondsUntil(Clock::time_point end) {
    auto const left = std::chrono::duration_cast<milliseconds>(end - Clock::now()).count();
    return static_cast<int>(std::clamp<std::int64_t>((left + 999) / 1000, 1, 100000));
}

void Prepare(CurlClass& connection, WebQuestion const& question, Clock::time_point end) {
    connection.SetExtraHeaders(question.headers);
    connection.SetFollowRedirects(false);
    connection.SetPlainHttpAllowed(false);
    connection.SetReceiver(nullptr);
    connection.SetFirstBytes(0);
    connection.SetMaxResponseBytes(static_cast<std::size_t>(GetTolLimit(TolLimit::WebAnswerBytes)));
    connection.SetUpload(question.uploadField, question.uploadName, question.uploadBytes);
    connection.SetTimeLimit(SecondsUntil(end));
    connection.SetRequest(TolFromUtf8(question.address));
}

WebAnswer AskOnce(CurlClass& connection, WebQuestion const& question, Clock::time_point end) {
    WebAnswer answer;
    Prepare(connection, question, end);
    answer.arrived = connection.SendSSLRequest(wxString(), {}, TolFromUtf8(question.body)) == 0;
    if (!answer.arrived) {
        answer.error =
            question.service + ": " + NetworkErrorText + " (" + TolToUtf8(connection.GetErrorMessage()) + ")";
        return answer;
    }
    answer.status = connection.GetHttpStatus();
    answer.bytes = connection.GetResponseBytes();
    answer.good = IsGood(answer.status);
    if (!answer.good) answer.error = StatusSentence(question.service, answer.status);
    return answer;
}

}  // namespace

char const* const NetworkErrorText =
    "Network Connection Error: you may be disconnected from the Internet or the server may be down.";

bool IsToBeRepeated(long status) {
    return status == StatusTooMany || (status >= 500 && status < 600);
}

bool PauseUnlessAborted(milliseconds pause) {
    auto const end = Clock::now() + pause;
    while (!tcvHasAborted()) {
        auto const left = std::chrono::duration_cast<milliseconds>(end - Clock::now());
        if (left.count() <= 0) return true;
        std::this_thread::sleep_for(std::min(left, milliseconds(50)));
    }
    return false;
}

WebAnswer AskWeb(CurlClass& connection, WebQuestion const& question) {
    auto const end = Clock::now() + std::chrono::seconds(GetTolLimit(TolLimit::WebSeconds));
    auto const attempts = std::max<std::uint64_t>(GetTolLimit(TolLimit::WebAttempts), 1);
    auto pause = milliseconds(GetTolLimit(TolLimit::WebBackoffMs));
    for (std::uint64_t attempt = 1;; ++attempt) {
        WebAnswer answer = AskOnce(connection, question, end);
        if (!answer.arrived || !IsToBeRepeated(answer.status) || attempt >= attempts) return answer;
        milliseconds const wanted = std::max<milliseconds>(pause, std::chrono::seconds(connection.GetRetryAfter()));
        // A pause that ends after the time limit can be left out.
        if (Clock::now() + wanted >= end || !PauseUnlessAborted(wanted)) return answer;
        pause *= 2;
    }
}

std::string WithQuery(std::string const& endpoint, WebFields const& fields) {
    std::string address = endpoint.substr(0, endpoint.find('#'));
    bool first = address.find('?') == std::string::npos;
    for (auto const& [name, value] : fields) {
        address += first ? "?" : (address.back() == '?' || address.back() == '&' ? "" : "&");
        address +=
            TolToUtf8(TolEscapeUrlString(TolFromUtf8(name))) + "=" + TolToUtf8(TolEscapeUrlString(TolFromUtf8(value)));
        first = false;
    }
    return address;
}

std::string WithPath(std::string const& endpoint, std::string const& part) {
    std::size_t const cut = endpoint.find_first_of("?#");
    std::string path = endpoint.substr(0, cut);
    while (!path.empty() && path.back() == '/') path.pop_back();
    return path + "/" + part + (cut == std::string::npos ? std::string() : endpoint.substr(cut));
}

bool ParseAnswer(std::string const& service, std::string const& bytes, wxJSONValue& root, std::string& error) {
    wxJSONReader reader(wxJSONREADER_STRICT, 1);
    reader.SetLimits(static_cast<int>(std::min<std::uint64_t>(GetTolLimit(TolLimit::JsonDepth), wxJSON_HARD_DEPTH)),
                     static_cast<std::size_t>(GetTolLimit(TolLimit::WebAnswerBytes)));
    if (reader.ParseUtf8(bytes, &root) == 0 && root.IsObject()) return true;
    error = service + ": the server's answer can't be read.";
    return false;
}

wxString CleanText(wxString const& text, std::string const& secret) {
    wxString clean;
    for (wxUniChar const c : text.Left(LongestText)) {
        bool const isControl = c.GetValue() < 0x20 || c.GetValue() == 0x7F;
        clean += isControl ? wxUniChar(' ') : c;
    }
    return TolHideSecret(Trim(clean), TolFromUtf8(secret));
}

wxString ItemText(wxJSONValue const& object, char const* key, std::string const& secret) {
    wxJSONValue const& item = object.ItemAt(key);
    wxJSONValue const& value = item.IsObject() ? item.ItemAt("_content") : item;
    if (!value.IsValid() || value.IsNull() || value.IsArray() || value.IsObject()) return {};
    return CleanText(value.AsString(), secret);
}

wxString ItemLink(wxJSONValue const& object, char const* key, std::string const& secret) {
    wxString const link = ItemText(object, key, secret);
    return CurlClass::IsAllowedAddress(TolToUtf8(link), true) && link.Lower().StartsWith("http") ? link : wxString();
}

int ItemNumber(wxJSONValue const& object, char const* key) {
    wxJSONValue const& item = object.ItemAt(key);
    return std::max(item.IsArray() || item.IsObject() ? 0 : item.AsInt(), 0);
}

}  // namespace tolimage
