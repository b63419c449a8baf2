// SPDX-License-Identifier: Apache-2.0
#include "tolimage/crawler_google.h"

#include <unistd.h>
#include <wx/datetime.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tolbase/hash.h"
#include "tolbase/limits.h"
#include "tolbase/parser.h"
#include "tolbase/text.h"
#include "tolimage/exiftool.h"
#include "tolimage/webservices.h"

using Candidate = GetPhotoListManager::Candidate;

namespace {

// Where cameras put their metadata: in front of the picture.
constexpr std::size_t HeadBytes = std::size_t{256} * 1024;

// A file of the process's own that is gone when the object is.
class ScratchFile {
public:
    explicit ScratchFile(std::string const& bytes) {
        std::error_code error;
        std::string name = (std::filesystem::temp_directory_path(error) / "orvelle-head-XXXXXX").string();
        int const descriptor = mkstemp(name.data());
        if (descriptor < 0) return;
        close(descriptor);
        m_path = name;
        std::ofstream(m_path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    ~ScratchFile() {
        if (!m_path.empty()) unlink(m_path.c_str());
    }
    ScratchFile(ScratchFile const&) = delete;
    ScratchFile& operator=(ScratchFile const&) = delete;
    std::string const& Path() const { return m_path; }

private:
    std::string m_path;
};

// The first bytes of a public file; empty where its site doesn't give them.
std::string FetchHead(CurlClass& connection, wxString const& link) {
    std::string head;
    connection.SetExtraHeaders({});
    connection.SetUpload({}, {}, {});
    connection.SetFollowRedirects(false);
    connection.SetPlainHttpAllowed(true);
    connection.SetTimeLimit(static_cast<int>(std::min<std::uint64_t>(GetTolLimit(TolLimit::WebSeconds), 100000)));
    connection.SetMaxResponseBytes(static_cast<std::size_t>(GetTolLimit(TolLimit::WebAnswerBytes)));
    connection.SetFirstBytes(HeadBytes);
    // A server that sends more all the same is cut off; what has come is enough.
    connection.SetReceiver([&head](char const* data, std::size_t size) {
        head.append(data, std::min(size, HeadBytes - head.size()));
        return head.size() < HeadBytes;
    });
    connection.SetRequest(link);
    int const result = connection.SendSSLRequest(wxString(), {}, wxString());
    bool const good = result == 0 ? connection.GetHttpStatus() / 100 == 2 : head.size() == HeadBytes;
    connection.SetReceiver(nullptr);
    connection.SetFirstBytes(0);
    return good ? head : std::string();
}

int DaysSince(wxString const& date) {
    VecString const parts = StringToVecString(date, "-", wxTOKEN_DEFAULT, true);
    std::tm day{};
    if (parts.size() != 3 || !TryFromString<int>(parts[0], day.tm_year) || !TryFromString<int>(parts[1], day.tm_mon) ||
        !TryFromString<int>(parts[2], day.tm_mday))
        return 0;
    day.tm_year -= 1900;
    --day.tm_mon;
    day.tm_isdst = -1;
    constexpr std::int64_t DaySeconds = 86400;
    std::int64_t const seconds = std::time(nullptr) - std::mktime(&day);
    // The day itself counts.
    return static_cast<int>(std::clamp<std::int64_t>(seconds / DaySeconds + 1, 0, 100000));
}

tolimage::GooglePicture ReadPicture(wxJSONValue const& item, std::string const& key) {
    tolimage::GooglePicture picture;
    picture.link = tolimage::ItemLink(item, "link", key);
    picture.site = tolimage::ItemText(item, "displayLink", key);
    picture.title = tolimage::ItemText(item, "title", key);
    wxJSONValue const& image = item.ItemAt("image");
    picture.page = tolimage::ItemLink(image, "contextLink", key);
    picture.size = wxSize(tolimage::ItemNumber(image, "width"), tolimage::ItemNumber(image, "height"));
    return picture;
}

}  // namespace

namespace tolimage {

std::string GoogleKey(std::string& error) {
    std::string key = TolToUtf8(Trim(GetTolWebServices().googleKey));
    if (key.empty()) error = "Google: no key is set (program option \"Google API Key\" of the group \"Web Services\").";
    return key;
}

std::string GoogleError(WebAnswer const& answer, std::string const& key) {
    wxJSONValue root;
    std::string ignored;
    if (!answer.arrived || !ParseAnswer("Google", answer.bytes, root, ignored)) return answer.error;
    wxString const message = ItemText(root.ItemAt("error"), "message", key);
    return message.empty() ? answer.error : "Google: " + TolToUtf8(message);
}

bool AskGooglePictures(CurlClass& connection, wxString const& words, int days, int page,
                       std::vector<GooglePicture>& pictures, int& pageCount, std::string& error) {
    std::string const key = GoogleKey(error);
    if (key.empty()) return false;
    WebFields fields{{"key", key},
                     {"q", TolToUtf8(words)},
                     {"searchType", "image"},
                     {"num", std::to_string(GooglePagePictures)},
                     {"start", std::to_string((page - 1) * GooglePagePictures + 1)}};
    if (days > 0) fields.emplace_back("dateRestrict", "d" + std::to_string(days));
    WebQuestion question;
    question.service = "Google";
    std::string const endpoint = TolToUtf8(GetTolWebServices().googleEndpoint);
    question.address = WithQuery(endpoint, fields);
    question.secret = key;
    WebAnswer const answer = AskWeb(connection, question);
    if (!answer.good) {
        error = GoogleError(answer, key);
        if (answer.arrived && endpoint.find("cx=") == std::string::npos)
            error += " The option \"Google Endpoint\" names no search engine (\"?cx=...\").";
        return false;
    }
    wxJSONValue root;
    if (!ParseAnswer("Google", answer.bytes, root, error)) return false;
    wxJSONValue const& items = root.ItemAt("items");
    for (int i = 0; i < items.Size(); ++i) {
        GooglePicture const picture = ReadPicture(items.ItemAt(static_cast<unsigned>(i)), key);
        if (!picture.link.empty()) pictures.push_back(picture);
    }
    int const total = ItemNumber(root.ItemAt("searchInformation"), "totalResults");
    int const pages = total / GooglePagePictures + (total % GooglePagePictures > 0 ? 1 : 0);
    pageCount = std::min(pages, GoogleMostPages);
    return true;
}

}  // namespace tolimage

GetPhotoListManagerGoogle::GetPhotoListManagerGoogle(VecString const& makeModel, wxString const& date,
                                                     TagFilter const& filter, int count)
    : GetPhotoListManager(makeModel, date, filter, count) {}

bool GetPhotoListManagerGoogle::AskPage(CurlClass& connection, int page, std::vector<Candidate>& candidates,
                                        int& pageCount) {
    std::vector<tolimage::GooglePicture> pictures;
    std::string error;
    wxString const words = Trim(CatVecString(m_makeModel, " "));
    if (!tolimage::AskGooglePictures(connection, words, DaysSince(m_date), page, pictures, pageCount, error)) {
        NoteError(TolFromUtf8(error));
        return false;
    }
    for (auto const& picture : pictures) {
        Candidate one;
        std::string const link = TolToUtf8(picture.link);
        one.photo.SetPhotoId(TcvCalcHashFromMemory(link.data(), link.size(), MD5));
        one.photo.SetOwnerId(picture.site);
        one.photo.SetPhotoFile(PhotoSizeOriginal, picture.link, picture.size);
        candidates.push_back(one);
    }
    return true;
}

void GetPhotoListManagerGoogle::AskDetails(CurlClass& connection, Candidate& candidate) {
    // One site that doesn't answer is no failure of the search: its picture is left without metadata.
    std::string const head = FetchHead(connection, candidate.photo.GetPhotoLink(PhotoSizeOriginal));
    if (head.empty()) return;
    ScratchFile const file(head);
    if (file.Path().empty()) return;
    for (ExifToolValue const& value : ExifToolRead(wxString::FromUTF8(file.Path()))) {
        if (value.group0 != "EXIF") continue;
        candidate.tags[value.group1 + ":" + value.tag] = tolimage::CleanText(value.value, std::string());
    }
    candidate.TakeCamera();
}
