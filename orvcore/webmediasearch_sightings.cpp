// SPDX-License-Identifier: Apache-2.0
// Sightings of pictures with given camera data.
#include <wx/jsonreader.h>
#include <wx/regex.h>

#include <algorithm>
#include <mutex>

#include "orvcore/webmediasearch.h"
#include "orvcore/webmediasearch_private.h"
#include "tolbase/exception.h"
#include "tolbase/limits.h"
#include "tolbase/parser.h"
#include "tolbase/text.h"
#include "tolimage/crawler_request.h"
#include "tolimage/webservices.h"

using orvsearch::NumberOf;
using orvsearch::TextOf;

namespace {

constexpr int UserLevelFailure = 82;
constexpr int ReaderFlags = 29;
constexpr int ReaderErrors = 30;

std::mutex& ProblemMutex() {
    static std::mutex mutex;
    return mutex;
}

wxString& Problem() {
    static wxString problem;
    return problem;
}

void SetProblem(wxString const& text) {
    const std::lock_guard<std::mutex> lock(ProblemMutex());
    Problem() = text.Clone();
}

[[noreturn]] void Fail(wxString const& message) {
    throw TolException(__FILE__, __LINE__, ExceptionGeneral, UserLevelFailure, message);
}

// A key is pasted by hand, line ends and all.
wxString WithoutControls(wxString const& text) {
    wxString clean;
    for (wxUniChar const c : text) {
        if (c.GetValue() >= 0x20 && c.GetValue() != 0x7F) clean += c;
    }
    return clean;
}

wxString Piece(char const* name, wxString const& text) {
    return text.empty() ? wxString() : name + TolEscapeUrlString(text);
}

wxString HashPiece(wxString const& text) {
    if (text.empty() || text == "Any QT") return {};
    wxRegEx const pattern("(?:[A-Za-z0-9]{32},?){1,3}");
    wxString const hashes = pattern.Matches(text) ? pattern.GetMatch(text) : wxString();
    return "&qtHash=" + TolEscapeUrlString(hashes);
}

wxString ResolutionPiece(wxString const& text) {
    if (text.empty()) return {};
    try {
        int const width = ParseNumber<int>(Trim(text.BeforeFirst('x')));
        int const height = ParseNumber<int>(Trim(text.AfterFirst('x')));
        return "&width=" + ToString<int>(width) + "&height=" + ToString<int>(height);
    } catch (TolException const&) {
        return {};
    }
}

// Everything behind the key, each piece beginning with "&".
wxString QueryOf(VecParameter const& params) {
    wxString const software = TextOf(params, 3);
    wxString qt = HashPiece(TextOf(params, 4));
    if (!qt.empty()) qt += "&exactQTHashMatch=false";
    return Piece("&make=", TextOf(params, 1)) + Piece("&model=", TextOf(params, 2)) +
           (software == "Any Software" ? wxString() : Piece("&exifSoftware=", software)) + qt +
           "&resultSize=" + ToString<int>(NumberOf(params, 5)) + ResolutionPiece(TextOf(params, 6));
}

// The answer's bytes. `key` is the piece of the query that holds it, or empty.
std::string Ask(wxString const& key, wxString const& query, wxString const& secret) {
    wxString endpoint = Trim(GetTolWebServices().sightingsEndpoint);
    if (endpoint.empty())
        Fail(
            "No address of the sightings service is set (program option \"Sightings Endpoint\" of the group \"Web "
            "Services\").");
    while (endpoint.EndsWith("/")) endpoint.RemoveLast();
    tolimage::WebQuestion question;
    question.service = "CameraForensics";
    question.address = TolToUtf8(endpoint + "/sightings?" + key + query);
    question.secret = TolToUtf8(secret);
    wxString header = key;
    header.Replace("=", ": ");
    if (!header.empty()) question.headers.push_back(TolToUtf8(header));
    CurlClass connection;
    connection.InitCurl();
    tolimage::WebAnswer const answer = AskWeb(connection, question);
    constexpr long StatusTooMany = 429;
    constexpr long StatusUnauthorized = 401;
    // No answer of the service's own: there was none, or what came says that it is elsewhere, or busy, or down.
    bool const elsewhere = answer.status >= 300 && answer.status < 400;
    if (!answer.arrived || elsewhere || answer.status == StatusTooMany || answer.status >= 500)
        Fail(tolimage::NetworkErrorText);
    if (answer.status == StatusUnauthorized || answer.bytes.empty()) Fail("Invalid CameraForensics API Key");
    SetProblem(TolFromUtf8(answer.error));
    return answer.bytes;
}

// A cell; nothing where the item is missing, and never the key.
wxString Cell(wxJSONValue const& element, char const* name, wxString const& secret) {
    wxJSONValue const& item = element.ItemAt(name);
    return item.IsValid() && !item.IsNull() ? TolHideSecret(item.AsString(), secret) : wxString();
}

VecVecString TableOf(wxJSONValue const& results, wxString const& secret) {
    VecVecString table{{"Id", "Filename", "Make", "Model", "Software", "Width", "Height", "url"}};
    for (int i = 0; i < results.Size(); ++i) {
        wxJSONValue const& element = results.ItemAt(static_cast<unsigned>(i));
        wxString const url = Cell(element, "url", secret);
        table.push_back({ToString<int>(i + 1), url.AfterLast('/'), Cell(element, "make", secret),
                         Cell(element, "model", secret), Cell(element, "exifSoftware", secret),
                         Cell(element, "width", secret), Cell(element, "height", secret), url});
    }
    return table;
}

}  // namespace

VecVecString SearchImageOnCameraForensics(VecParameter& params, int, wxString&) {
    SetProblem(wxString());
    wxString const secret = WithoutControls(TextOf(params, 0));
    wxString const key = secret.empty() ? wxString() : "api_key=" + TolEscapeUrlString(secret);
    std::string const bytes = Ask(key, QueryOf(params), secret);
    wxJSONValue root;
    wxJSONReader reader(ReaderFlags, ReaderErrors);
    auto const depth = static_cast<int>(std::min<std::uint64_t>(GetTolLimit(TolLimit::JsonDepth), wxJSON_HARD_DEPTH));
    reader.SetLimits(depth, static_cast<std::size_t>(GetTolLimit(TolLimit::WebAnswerBytes)));
    if (reader.Parse(TolFromUtf8(bytes), &root) > 0) {
        SetProblem("The server's answer can't be read.");
        return {};
    }
    wxJSONValue const& results = root.ItemAt("results");
    if (results.Size() < 1) {
        if (!results.IsArray()) SetProblem("The server's answer has no list of results.");
        return {};
    }
    SetProblem(wxString());
    return TableOf(results, secret);
}

wxString GetSightingsProblem() {
    const std::lock_guard<std::mutex> lock(ProblemMutex());
    return Problem().Clone();
}
