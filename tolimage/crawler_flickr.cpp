// SPDX-License-Identifier: Apache-2.0
#include "tolimage/crawler_flickr.h"

#include <algorithm>
#include <cmath>
#include <ctime>

#include "tolbase/limits.h"
#include "tolbase/parser.h"
#include "tolbase/text.h"
#include "tolbase/timetext.h"
#include "tolimage/webservices.h"

using tolimage::AskFlickr;
using tolimage::FlickrAnswer;
using tolimage::ItemLink;
using tolimage::ItemNumber;
using tolimage::ItemText;
using tolimage::ReadFlickrPage;
using tolimage::WebFields;
using Candidate = GetPhotoListManager::Candidate;

namespace {

// Flickr's codes for one photograph: not found, permission denied.
constexpr int CodeNotFound = 1;
constexpr int CodeDenied = 2;
char const* const PageSize = "100";
char const* const PhotoExtras = "date_upload,original_format,o_dims,url_o,geo";

// The photograph's own file, also where the service gives its parts instead of its address.
void ReadOriginal(wxJSONValue const& item, std::string const& key, Photo& photo) {
    wxString const width = item.HasMember("width_o") ? "width_o" : "o_width";
    wxString const height = item.HasMember("height_o") ? "height_o" : "o_height";
    wxSize const size(ItemNumber(item, width.utf8_str()), ItemNumber(item, height.utf8_str()));
    wxString link = ItemLink(item, "url_o", key);
    wxString const secret = ItemText(item, "originalsecret", key);
    if (link.empty() && !secret.empty()) {
        link = "https://live.staticflickr.com/" + TolEscapeUrlString(ItemText(item, "server", key)) + "/" +
               TolEscapeUrlString(photo.GetPhotoId()) + "_" + TolEscapeUrlString(secret) + "_o." +
               TolEscapeUrlString(ItemText(item, "originalformat", key));
    }
    photo.SetPhotoFile(PhotoSizeOriginal, link, size);
}

double ItemDegrees(wxJSONValue const& item, char const* name) {
    double const degrees = FromString<double>(ItemText(item, name, std::string()));
    return std::isfinite(degrees) ? degrees : 0.0;
}

void ReadPlace(wxJSONValue const& item, Photo& photo) {
    photo.SetPhotoLoc(ItemDegrees(item, "latitude"), ItemDegrees(item, "longitude"));
    photo.SetAccuracy(PhotoAccuracyOfLevel(ItemNumber(item, "accuracy")));
}

bool HasPlace(Photo const& photo) {
    return photo.GetPhotoLoc() != std::make_pair(0.0, 0.0) || photo.GetAccuracy() > 0.0;
}

// Midnight of a local day "2024-5-31", in seconds; empty for a text that is none.
std::string SecondsOfDay(wxString const& date) {
    VecString const parts = StringToVecString(date, "-", wxTOKEN_DEFAULT, true);
    std::tm day{};
    int year = 0;
    if (parts.size() != 3 || !TryFromString<int>(parts[0], year) || !TryFromString<int>(parts[1], day.tm_mon) ||
        !TryFromString<int>(parts[2], day.tm_mday) || year < 1900 || year > 9999)
        return {};
    day.tm_year = year - 1900;
    --day.tm_mon;
    day.tm_isdst = -1;
    return std::to_string(std::max<std::int64_t>(std::mktime(&day), 0));
}

// What a search page may leave out.
void AskInfo(CurlClass& connection, Candidate& candidate) {
    FlickrAnswer const answer =
        AskFlickr(connection, "flickr.photos.getInfo", {{"photo_id", TolToUtf8(candidate.photo.GetPhotoId())}});
    if (!answer.good) return;
    wxJSONValue const& photo = answer.root.ItemAt("photo");
    if (candidate.photo.GetUploadDate().empty())
        candidate.photo.SetUploadDate(ItemText(photo, "dateuploaded", answer.key));
    if (candidate.photo.GetOwnerId().empty())
        candidate.photo.SetOwnerId(ItemText(photo.ItemAt("owner"), "nsid", answer.key));
}

void ReadExif(FlickrAnswer const& answer, Candidate& candidate) {
    wxJSONValue const& list = answer.root.ItemAt("photo").ItemAt("exif");
    for (int i = 0; i < list.Size(); ++i) {
        wxJSONValue const& item = list.ItemAt(static_cast<unsigned>(i));
        wxString const tag = ItemText(item, "tagspace", answer.key) + ":" + ItemText(item, "tag", answer.key);
        candidate.tags[tag] = ItemText(item, "raw", answer.key);
    }
    candidate.TakeCamera();
}

bool AskPhotos(CurlClass& connection, int page, WebFields fields, std::vector<Candidate>& candidates, int& pageCount,
               std::string& error) {
    fields.insert(fields.end(), {{"media", "photos"},
                                 {"content_types", "0"},
                                 {"extras", PhotoExtras},
                                 {"per_page", PageSize},
                                 {"page", std::to_string(page)}});
    FlickrAnswer const answer = AskFlickr(connection, "flickr.photos.search", fields);
    error = answer.error;
    return answer.good && ReadFlickrPage(answer, candidates, pageCount, error);
}

}  // namespace

namespace tolimage {

FlickrAnswer AskFlickr(CurlClass& connection, char const* method, WebFields const& fields) {
    FlickrAnswer answer;
    TolWebServices const services = GetTolWebServices();
    answer.key = TolToUtf8(Trim(services.flickrKey));
    if (answer.key.empty()) {
        answer.error = "Flickr: no key is set (program option \"Flickr API Key\" of the group \"Web Services\").";
        return answer;
    }
    WebFields all{{"method", method}, {"api_key", answer.key}, {"format", "json"}, {"nojsoncallback", "1"}};
    all.insert(all.end(), fields.begin(), fields.end());
    WebQuestion question;
    question.service = "Flickr";
    question.address = WithQuery(TolToUtf8(services.flickrEndpoint), all);
    question.secret = answer.key;
    WebAnswer const got = AskWeb(connection, question);
    answer.error = got.error;
    if (!got.good || !ParseAnswer("Flickr", got.bytes, answer.root, answer.error)) return answer;
    answer.good = answer.root.ItemAt("stat").AsString() == "ok";
    if (answer.good) return answer;
    int const code = ItemNumber(answer.root, "code");
    answer.refused = code == CodeNotFound || code == CodeDenied;
    answer.error =
        "Flickr: " + TolToUtf8(ItemText(answer.root, "message", answer.key)) + " (" + std::to_string(code) + ")";
    return answer;
}

std::vector<FlickrBrand> AskFlickrBrands(CurlClass& connection, std::string& error) {
    std::vector<FlickrBrand> brands;
    FlickrAnswer const answer = AskFlickr(connection, "flickr.cameras.getBrands", {});
    error = answer.error;
    if (!answer.good) return brands;
    wxJSONValue const& list = answer.root.ItemAt("brands").ItemAt("brand");
    for (int i = 0; i < list.Size(); ++i) {
        wxJSONValue const& item = list.ItemAt(static_cast<unsigned>(i));
        FlickrBrand const brand{ItemText(item, "id", answer.key), ItemText(item, "name", answer.key).Lower()};
        if (!brand.id.empty() && !brand.name.empty()) brands.push_back(brand);
    }
    return brands;
}

bool ReadFlickrPage(FlickrAnswer const& answer, std::vector<Candidate>& candidates, int& pageCount,
                    std::string& error) {
    wxJSONValue const& photos = answer.root.ItemAt("photos");
    wxJSONValue const& list = photos.ItemAt("photo");
    if (!list.IsArray()) {
        error = "Flickr: the server's answer has no list of photographs.";
        return false;
    }
    pageCount = ItemNumber(photos, "pages");
    for (int i = 0; i < list.Size(); ++i) {
        wxJSONValue const& item = list.ItemAt(static_cast<unsigned>(i));
        Candidate one;
        one.photo.SetPhotoId(ItemText(item, "id", answer.key));
        one.photo.SetOwnerId(ItemText(item, "owner", answer.key));
        one.photo.SetUploadDate(ItemText(item, "dateupload", answer.key));
        ReadOriginal(item, answer.key, one.photo);
        ReadPlace(item, one.photo);
        one.unusable = one.photo.GetPhotoLink(PhotoSizeOriginal).empty();
        if (!one.photo.GetPhotoId().empty()) candidates.push_back(one);
    }
    return true;
}

}  // namespace tolimage

GetCameraListManager::GetCameraListManager() = default;

void GetCameraListManager::CreateThreads() {
    SetJobs({[this](CurlClass& connection) {
        std::string error;
        for (auto const& brand : tolimage::AskFlickrBrands(connection, error)) m_names.push_back(brand.name);
        NoteError(TolFromUtf8(error));
    }});
    ImageReqManager::CreateThreads();
}

void GetCameraListManager::CollectResults() {
    ImageReqManager::CollectResults();
    m_results = {m_names};
    m_names.clear();
}

GetCameraModelListManager::GetCameraModelListManager(VecString const& makes) : m_makes(makes) {}

void GetCameraModelListManager::CreateThreads() {
    m_models.assign(m_makes.size(), VecString());
    std::vector<Job> jobs;
    for (std::size_t i = 0; i < m_makes.size(); ++i) {
        jobs.emplace_back([this, i](CurlClass& connection) { AskModels(connection, m_makes[i].Lower(), m_models[i]); });
    }
    SetJobs(std::move(jobs));
    ImageReqManager::CreateThreads();
}

// The service asks for the make's id, which is not its name: "sony ericsson" may be "sony_ericsson".
void GetCameraModelListManager::AskModels(CurlClass& connection, wxString const& make, VecString& models) {
    std::string error;
    wxString id = make;
    id.Replace(" ", "_");
    for (auto const& brand : tolimage::AskFlickrBrands(connection, error)) {
        if (brand.name == make) id = brand.id;
    }
    FlickrAnswer const answer = AskFlickr(connection, "flickr.cameras.getBrandModels", {{"brand", TolToUtf8(id)}});
    NoteError(TolFromUtf8(answer.error));
    wxJSONValue const& list = answer.root.ItemAt("cameras").ItemAt("camera");
    for (int i = 0; answer.good && i < list.Size(); ++i) {
        wxString const name = ItemText(list.ItemAt(static_cast<unsigned>(i)), "name", answer.key).Lower();
        if (!name.empty()) models.push_back(name.StartsWith(make) ? name : make + " " + name);
    }
}

void GetCameraModelListManager::CollectResults() {
    ImageReqManager::CollectResults();
    m_results.assign(m_models.begin(), m_models.end());
}

GetPhotoListManagerFlickr::GetPhotoListManagerFlickr(VecString const& makeModel, wxString const& date,
                                                     TagFilter const& filter, int count)
    : GetPhotoListManager(makeModel, date, filter, count) {}

bool GetPhotoListManagerFlickr::AskPage(CurlClass& connection, int page, std::vector<Candidate>& candidates,
                                        int& pageCount) {
    VecString words;
    for (wxString const& word : m_makeModel) {
        // A model that has the make in front already says it once.
        if (!words.empty() && word.StartsWith(words.back())) words.pop_back();
        if (!word.empty()) words.push_back(word);
    }
    WebFields fields{{"text", TolToUtf8(CatVecString(words, " "))}, {"sort", "date-posted-desc"}};
    std::string const since = SecondsOfDay(m_date);
    if (!since.empty()) fields.emplace_back("min_upload_date", since);
    std::string error;
    bool const good = AskPhotos(connection, page, fields, candidates, pageCount, error);
    NoteError(TolFromUtf8(error));
    return good;
}

void GetPhotoListManagerFlickr::AskDetails(CurlClass& connection, Candidate& candidate) {
    if (candidate.unusable) return;
    FlickrAnswer const answer =
        AskFlickr(connection, "flickr.photos.getExif", {{"photo_id", TolToUtf8(candidate.photo.GetPhotoId())}});
    if (answer.good) {
        ReadExif(answer, candidate);
    } else if (!answer.refused) {
        candidate.error = TolFromUtf8(answer.error);
        return;
    }
    if (candidate.photo.GetUploadDate().empty() || candidate.photo.GetOwnerId().empty()) AskInfo(connection, candidate);
}

GetGeoTagPhotoListManagerFlickr::GetGeoTagPhotoListManagerFlickr(wxString const& latitude, wxString const& longitude,
                                                                 wxString const& firstDay, wxString const& lastDay,
                                                                 wxString const& radius, wxString const& unit)
    : GetPhotoListManager(VecString(), wxString(), TagFilter(), 0),
      m_latitude(Trim(latitude)),
      m_longitude(Trim(longitude)),
      m_firstDay(Trim(firstDay)),
      m_lastDay(Trim(lastDay)),
      m_radius(Trim(radius)),
      m_unit(unit) {}

wxString GetGeoTagPhotoListManagerFlickr::FindFault() const {
    auto const within = [](wxString const& text, double low, double high) {
        double number = 0.0;
        return TryFromString<double>(text, number) && number >= low && number <= high;
    };
    auto const isDay = [](wxString const& day) { return day.empty() || StringToMillisecondsFromEpoch(day) != 0; };
    if (!within(m_latitude, -90.0, 90.0)) return "Flickr: the latitude must lie between -90 and 90 degrees.";
    if (!within(m_longitude, -180.0, 180.0)) return "Flickr: the longitude must lie between -180 and 180 degrees.";
    if (m_unit != "km" && m_unit != "mi") return "Flickr: the unit must be km or mi.";
    double const most = m_unit == "km" ? 32.0 : 20.0;
    if (!within(m_radius, 1e-3, most))
        return "Flickr: the radius must lie between 0 and " + wxString(m_unit == "km" ? "32 km." : "20 mi.");
    if (!isDay(m_firstDay) || !isDay(m_lastDay)) return "Flickr: a day must read like 2024-05-31.";
    return {};
}

bool GetGeoTagPhotoListManagerFlickr::AskPage(CurlClass& connection, int page, std::vector<Candidate>& candidates,
                                              int& pageCount) {
    wxString const fault = FindFault();
    NoteError(fault);
    if (!fault.empty()) return false;
    WebFields fields{{"lat", TolToUtf8(m_latitude)},
                     {"lon", TolToUtf8(m_longitude)},
                     {"radius", TolToUtf8(m_radius)},
                     {"radius_units", TolToUtf8(m_unit)},
                     {"has_geo", "1"},
                     {"sort", "date-taken-desc"}};
    if (!m_firstDay.empty()) fields.emplace_back("min_taken_date", TolToUtf8(m_firstDay));
    // The whole of the last day counts.
    if (!m_lastDay.empty())
        fields.emplace_back("max_taken_date",
                            TolToUtf8(m_lastDay.length() == 10 ? m_lastDay + " 23:59:59" : m_lastDay));
    std::string error;
    bool const good = AskPhotos(connection, page, fields, candidates, pageCount, error);
    NoteError(TolFromUtf8(error));
    return good;
}

bool GetGeoTagPhotoListManagerFlickr::IsDetailNeeded(Candidate const& candidate) const {
    return !candidate.unusable && !HasPlace(candidate.photo);
}

void GetGeoTagPhotoListManagerFlickr::AskDetails(CurlClass& connection, Candidate& candidate) {
    FlickrAnswer const answer =
        AskFlickr(connection, "flickr.photos.geo.getLocation", {{"photo_id", TolToUtf8(candidate.photo.GetPhotoId())}});
    if (answer.good) ReadPlace(answer.root.ItemAt("photo").ItemAt("location"), candidate.photo);
    if (!answer.good && !answer.refused) candidate.error = TolFromUtf8(answer.error);
    // A row without a place would be one on the equator.
    candidate.unusable = !HasPlace(candidate.photo);
}
