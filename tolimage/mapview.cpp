// SPDX-License-Identifier: Apache-2.0
#include "tolimage/mapview.h"

#include <wx/base64.h>
#include <wx/filename.h>

#include <mutex>

#include "tolbase/file.h"
#include "tolbase/htmlwriter.h"
#include "tolbase/text.h"
#include "tolimage/crawler_google.h"
#include "tolimage/crawler_request.h"
#include "tolimage/webservices.h"

using tolimage::ItemLink;
using tolimage::ItemText;

namespace {

// What the services take: TinEye a file of 20 MB, Google a request of 10 MB.
constexpr std::size_t TinEyeBytes = 20000000;
constexpr std::size_t GoogleBytes = 7400000;
constexpr int MostResults = 100;
char const* const GoogleHost = "://www.googleapis.com/";
char const* const VisionAddress = "https://vision.googleapis.com/v1/images:annotate";

// Of this thread's call under way.
wxString& Problem() {
    thread_local wxString problem;
    return problem;
}

std::mutex& LastProblemMutex() {
    static std::mutex mutex;
    return mutex;
}

wxString& LastProblem() {
    static wxString problem;
    return problem;
}

// Begins a call without a problem, and in the end lets every thread see which one it had.
class Call {
public:
    Call() { Problem().clear(); }
    ~Call() {
        const std::lock_guard<std::mutex> lock(LastProblemMutex());
        LastProblem() = Problem().Clone();
    }
    Call(Call const&) = delete;
    Call& operator=(Call const&) = delete;
};

bool ReadEvidence(wxString const& path, std::size_t most, std::string& bytes) {
    if (ReadFileBytes(path, bytes, most) && !bytes.empty()) return true;
    Problem() = "The file can't be read, or has more than the " + wxString::FromUTF8(std::to_string(most)) +
                " bytes that the service takes: " + path;
    return false;
}

wxString Link(wxString const& address) {
    wxString const shown = EscapeHtmlString(address);
    return address.empty() ? wxString() : "<a rel=\"noopener noreferrer\" href=\"" + shown + "\">" + shown + "</a>";
}

wxString Row(VecString const& cells) {
    wxString row;
    for (wxString const& cell : cells) row += "<td>" + cell + "</td>";
    return "<tr>" + row + "</tr>\n";
}

bool WritePage(wxString const& path, wxString const& title, wxString const& content) {
    CreateDirIfNotExists(wxPathOnly(path));
    wxString const page = HtmlWriter::DoHeader(wxString(), title) +
                          HtmlWriter::DoH(1, EscapeHtmlString(title), wxString()) + content + HtmlWriter::DoFooter();
    if (WriteFileAtomically(path, TolToUtf8(page))) return true;
    Problem() = "The page can't be written: " + path;
    return false;
}

// A row for each page that shows the match, or one row without a page.
void AddMatch(wxJSONValue const& match, std::string const& key, VecVecString& table) {
    VecString row{wxString(),
                  ItemText(match, "domain", key),
                  ItemText(match, "score", key),
                  ItemText(match, "width", key),
                  ItemText(match, "height", key),
                  ItemText(match, "format", key),
                  ItemLink(match, "image_url", key),
                  wxString(),
                  wxString()};
    wxJSONValue const& links = match.ItemAt("backlinks");
    for (int i = 0; i == 0 || i < links.Size(); ++i) {
        wxJSONValue const& link = links.ItemAt(static_cast<unsigned>(i));
        row[0] = wxString::FromUTF8(std::to_string(table.size()));
        row[7] = ItemLink(link, "backlink", key);
        row[8] = ItemText(link, "crawl_date", key);
        table.push_back(row);
    }
}

wxString TinEyePage(VecVecString const& table) {
    wxString rows = Row(table.front());
    for (std::size_t i = 1; i < table.size(); ++i) {
        VecString cells;
        for (std::size_t column = 0; column < table[i].size(); ++column) {
            bool const isLink = column == 6 || column == 7;
            cells.push_back(isLink ? Link(table[i][column]) : EscapeHtmlString(table[i][column]));
        }
        rows += Row(cells);
    }
    return HtmlWriter::DoTable(rows);
}

bool AskTinEye(wxString const& evidence, std::string const& key, wxJSONValue& root) {
    tolimage::WebQuestion question;
    question.service = "TinEye";
    question.secret = key;
    question.headers = {"x-api-key: " + key};
    question.uploadField = "image_upload";
    question.uploadName = "image";
    if (!ReadEvidence(evidence, TinEyeBytes, question.uploadBytes)) return false;
    std::string const endpoint = TolToUtf8(GetTolWebServices().tinEyeEndpoint);
    question.address = tolimage::WithQuery(
        tolimage::WithPath(endpoint, "search/"),
        {{"offset", "0"}, {"limit", std::to_string(MostResults)}, {"sort", "score"}, {"order", "desc"}});
    CurlClass connection;
    tolimage::WebAnswer const answer = tolimage::AskWeb(connection, question);
    std::string error = answer.error;
    bool good = answer.good && tolimage::ParseAnswer(question.service, answer.bytes, root, error);
    if (good && !root.ItemAt("results").ItemAt("matches").IsArray()) {
        error = "TinEye: the server's answer has no list of matches.";
        good = false;
    }
    Problem() = TolFromUtf8(error);
    return good;
}

std::string VisionAddressOf(wxString const& endpoint) {
    return endpoint.Contains(GoogleHost) ? std::string(VisionAddress) : TolToUtf8(endpoint);
}

bool AskVision(wxString const& evidence, std::string const& key, wxJSONValue& detection) {
    std::string bytes;
    if (!ReadEvidence(evidence, GoogleBytes, bytes)) return false;
    tolimage::WebQuestion question;
    question.service = "Google";
    question.secret = key;
    question.headers = {"Content-Type: application/json; charset=utf-8", "X-Goog-Api-Key: " + key};
    question.address = VisionAddressOf(GetTolWebServices().googleEndpoint);
    question.body =
        "{\"requests\":[{\"image\":{\"content\":\"" + wxBase64Encode(bytes.data(), bytes.size()).ToStdString() +
        "\"},\"features\":[{\"type\":\"WEB_DETECTION\",\"maxResults\":" + std::to_string(MostResults) + "}]}]}";
    CurlClass connection;
    tolimage::WebAnswer const answer = tolimage::AskWeb(connection, question);
    wxJSONValue root;
    std::string error = answer.good ? std::string() : tolimage::GoogleError(answer, key);
    bool good = answer.good && tolimage::ParseAnswer(question.service, answer.bytes, root, error);
    wxJSONValue const first = root.ItemAt("responses").ItemAt(0U);
    if (good && (!first.IsObject() || first.HasMember("error"))) {
        error = "Google: " + TolToUtf8(ItemText(first.ItemAt("error"), "message", key));
        good = false;
    }
    detection = first.ItemAt("webDetection");
    Problem() = TolFromUtf8(error);
    return good;
}

wxString LinkList(wxJSONValue const& detection, char const* name, wxString const& heading, std::string const& key) {
    wxJSONValue const& list = detection.ItemAt(name);
    wxString rows;
    for (int i = 0; i < list.Size(); ++i) {
        wxJSONValue const& item = list.ItemAt(static_cast<unsigned>(i));
        wxString const address = ItemLink(item, "url", key);
        if (!address.empty()) rows += Row({EscapeHtmlString(ItemText(item, "pageTitle", key)), Link(address)});
    }
    wxString const content = rows.empty() ? HtmlWriter::DoP("None.") : HtmlWriter::DoTable(rows);
    return HtmlWriter::DoH(2, heading, wxString()) + content;
}

wxString GuessList(wxJSONValue const& detection, std::string const& key) {
    VecString items;
    wxJSONValue const& labels = detection.ItemAt("bestGuessLabels");
    for (int i = 0; i < labels.Size(); ++i)
        items.push_back(EscapeHtmlString(ItemText(labels.ItemAt(static_cast<unsigned>(i)), "label", key)));
    if (items.empty()) return {};
    return HtmlWriter::DoH(2, "What the service takes it for", wxString()) + HtmlWriter::DoLi(items);
}

// Pictures found for the user's words; false if the service couldn't be asked.
bool AddPicturesOfText(wxString const& text, wxString& content) {
    CurlClass connection;
    std::vector<tolimage::GooglePicture> pictures;
    int pageCount = 0;
    std::string error;
    if (!tolimage::AskGooglePictures(connection, text, 0, 1, pictures, pageCount, error)) {
        Problem() = TolFromUtf8(error);
        return false;
    }
    wxString rows;
    for (auto const& picture : pictures)
        rows += Row({EscapeHtmlString(picture.title), Link(picture.link), Link(picture.page)});
    content += HtmlWriter::DoH(2, "Pictures for: " + EscapeHtmlString(text), wxString());
    content += rows.empty() ? HtmlWriter::DoP("None.") : HtmlWriter::DoTable(rows);
    return true;
}

}  // namespace

VecVecString MapView::ShowTinEyeFileSearch(wxString const& evidence, wxString const& stem) {
    Call const call;
    VecVecString table;
    std::string const key = TolToUtf8(Trim(GetTolWebServices().tinEyeKey));
    if (key.empty()) {
        Problem() = "TinEye: no key is set (program option \"TinEye API Key\" of the group \"Web Services\").";
        return table;
    }
    wxJSONValue root;
    if (!AskTinEye(evidence, key, root)) return table;
    table.push_back({"#Id", "Domain", "Score", "Width", "Height", "Format", "Image", "Page", "Crawl Date"});
    wxJSONValue const& matches = root.ItemAt("results").ItemAt("matches");
    for (int i = 0; i < matches.Size(); ++i) AddMatch(matches.ItemAt(static_cast<unsigned>(i)), key, table);
    WritePage(stem + "tineye.html", "TinEye: " + GetFilenameNoPath(evidence), TinEyePage(table));
    return table;
}

int MapView::ShowGoogleFileSearch(wxString const& evidence, wxString const& stem, wxString const& text) {
    Call const call;
    std::string error;
    std::string const key = tolimage::GoogleKey(error);
    Problem() = TolFromUtf8(error);
    if (key.empty()) return -1;
    wxJSONValue detection;
    if (!AskVision(evidence, key, detection)) return -1;
    wxString content = GuessList(detection, key) +
                       LinkList(detection, "pagesWithMatchingImages", "Pages that show the picture", key) +
                       LinkList(detection, "fullMatchingImages", "The same picture", key) +
                       LinkList(detection, "partialMatchingImages", "Pictures that share a part", key) +
                       LinkList(detection, "visuallySimilarImages", "Similar pictures", key);
    wxString const words = Trim(text);
    bool const good = words.empty() || AddPicturesOfText(words, content);
    bool const written = WritePage(stem + "google.html", "Google: " + GetFilenameNoPath(evidence), content);
    return good && written ? 0 : -1;
}

wxString MapView::GetLastProblem() {
    const std::lock_guard<std::mutex> lock(LastProblemMutex());
    return LastProblem().Clone();
}
