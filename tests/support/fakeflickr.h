// SPDX-License-Identifier: Apache-2.0
// Plays Flickr's REST methods for a test: photographs with their metadata, makes, models.
#pragma once
#include <atomic>
#include <map>
#include <string>
#include <vector>

#include "tests/support/webserver.h"
#include "tolbase/limits.h"
#include "tolimage/webservices.h"

namespace support {

struct FakePhoto {
    std::string id;
    std::string make = "Canon";
    std::string model = "Canon EOS 5D";
    std::string software;
    int width = 4000;
    int height = 3000;
    std::string uploaded = "1500000000";
    std::string link;         // none: "https://photos.example.org/ID_o.jpg"
    bool hasOriginal = true;  // else the owner doesn't share it
    bool hidesExif = false;   // else the owner shows it
    std::string place;        // members of the page's entry, such as "\"latitude\":\"45.5\","
};

class FakeFlickr {
public:
    // Sets the endpoint and the key, and takes the waiting out of the retries.
    FakeFlickr() : server([this](const std::string& request) { return Answer(request); }) {
        TolWebServices services = GetTolWebServices();
        services.flickrEndpoint = wxString::FromUTF8(server.Url("/services/rest/"));
        services.flickrKey = "key-of-flickr";
        SetTolWebServices(services);
        SetTolLimit(TolLimit::WebBackoffMs, 1);
    }

    static std::string Ok(const std::string& members) {
        return HttpAnswer("200 OK", "{" + members + ",\"stat\":\"ok\"}");
    }
    static std::string Fail(int code, const std::string& message) {
        return HttpAnswer("200 OK",
                          "{\"stat\":\"fail\",\"code\":" + std::to_string(code) + ",\"message\":\"" + message + "\"}");
    }
    // The requests for a method, in order.
    std::vector<std::string> Requests(const std::string& method) {
        std::vector<std::string> found;
        for (const std::string& request : server.AllRequests())
            if (QueryField(request, "method") == method) found.push_back(request);
        return found;
    }

    std::vector<FakePhoto> photos;
    std::size_t pageSize = 100;
    std::map<std::string, std::string> answers;  // by method: instead of the played ones
    mutable std::atomic<int> refusals{0};        // so many requests are first told to come again later
    WebServer server;

private:
    static std::string Text(const std::string& name, const std::string& value) {
        return "\"" + name + "\":\"" + value + "\",";
    }
    std::string Entry(const FakePhoto& photo) const {
        const std::string link = photo.link.empty() ? "https://photos.example.org/" + photo.id + "_o.jpg" : photo.link;
        std::string entry = "{" + Text("id", photo.id) + Text("owner", "owner@N01") + photo.place;
        if (!photo.uploaded.empty()) entry += Text("dateupload", photo.uploaded);
        if (photo.hasOriginal)
            entry += Text("url_o", link) + "\"width_o\":" + std::to_string(photo.width) +
                     ",\"height_o\":" + std::to_string(photo.height) + ",";
        return entry + "\"title\":\"t\"}";
    }
    std::string Search(const std::string& request) const {
        const std::size_t page = std::stoul(QueryField(request, "page"));
        const std::size_t pages = (photos.size() + pageSize - 1) / pageSize;
        std::string list;
        for (std::size_t i = (page - 1) * pageSize; i < photos.size() && i < page * pageSize; ++i)
            list += (list.empty() ? "" : ",") + Entry(photos[i]);
        return Ok("\"photos\":{\"page\":" + std::to_string(page) + ",\"pages\":\"" + std::to_string(pages) +
                  "\",\"photo\":[" + list + "]}");
    }
    static std::string Tag(const std::string& tag, const std::string& value) {
        return "{\"tagspace\":\"IFD0\",\"tag\":\"" + tag + "\",\"label\":\"l\",\"raw\":{\"_content\":\"" + value +
               "\"}}";
    }
    std::string Exif(const std::string& request) const {
        for (const FakePhoto& photo : photos) {
            if (photo.id != QueryField(request, "photo_id")) continue;
            if (photo.hidesExif) return Fail(2, "Permission denied");
            std::string tags = Tag("Make", photo.make) + "," + Tag("Model", photo.model);
            if (!photo.software.empty()) tags += "," + Tag("Software", photo.software);
            return Ok("\"photo\":{\"id\":\"" + photo.id + "\",\"exif\":[" + tags + "]}");
        }
        return Fail(1, "Photo not found");
    }
    WebReply Answer(const std::string& request) const {
        if (refusals > 0) {
            --refusals;
            return HttpAnswer("429 Too Many Requests", "");
        }
        const std::string method = QueryField(request, "method");
        if (QueryField(request, "api_key") != "key-of-flickr") return Fail(100, "Invalid API Key");
        const auto own = answers.find(method);
        if (own != answers.end()) return own->second;
        if (method == "flickr.photos.search") return Search(request);
        if (method == "flickr.photos.getExif") return Exif(request);
        return Fail(112, "Method not found");
    }
};

}  // namespace support
