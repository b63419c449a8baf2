// SPDX-License-Identifier: Apache-2.0
// Answers of web services: parsed as they are, and given by a server of this process to the searches that ask it.
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <mutex>
#include <thread>

#include "orvcore/webmediasearch.h"
#include "tests/fuzz/engine.h"
#include "tests/fuzz/target.h"
#include "tolbase/exception.h"
#include "tolbase/limits.h"
#include "tolbase/text.h"
#include "tolimage/crawler_flickr.h"
#include "tolimage/crawler_google.h"
#include "tolimage/webservices.h"

namespace fuzz {

namespace {

char const* const Key = "secret-key-0123456789";

// Answers every request with the same bytes, one connection after the other.
class Answerer {
public:
    Answerer() : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        Require(bind(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0, "a port is free");
        listen(m_socket, 16);
        socklen_t size = sizeof address;
        getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &size);
        m_url = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/";
        std::thread([this] { Serve(); }).detach();
    }
    std::string const& Url() const { return m_url; }
    void Set(std::string const& bytes) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_bytes = bytes;
    }

private:
    [[noreturn]] void Serve() {
        for (;;) {
            int const connection = accept(m_socket, nullptr, nullptr);
            if (connection < 0) continue;
            char head[8192];
            ssize_t const got = recv(connection, head, sizeof head, 0);
            std::string bytes;
            {
                const std::lock_guard<std::mutex> lock(m_mutex);
                bytes = m_bytes;
            }
            if (got > 0) send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            shutdown(connection, SHUT_WR);
            close(connection);
        }
    }

    int m_socket;
    std::string m_url;
    std::mutex m_mutex;
    std::string m_bytes;
};

Answerer& Server() {
    static auto* const server = [] {
        auto* const made = new Answerer;
        TolWebServices services;
        services.flickrEndpoint = services.googleEndpoint = services.tinEyeEndpoint = services.sightingsEndpoint =
            wxString::FromUTF8(made->Url());
        services.flickrKey = services.googleKey = services.tinEyeKey = Key;
        SetTolWebServices(services);
        SetTolLimit(TolLimit::WebAttempts, 1);
        SetTolLimit(TolLimit::WebSeconds, 2);
        SetTolLimit(TolLimit::WebPhotos, 20);
        SetTolLimit(TolLimit::WebThreads, 1);
        return made;
    }();
    return *server;
}

void CheckText(wxString const& text) {
    Require(TolToUtf8(text).find(Key) == std::string::npos, "no text shows the key");
}

void CheckPhotos(std::vector<GetPhotoListManager::Candidate> const& candidates) {
    for (auto const& one : candidates) {
        CheckText(one.photo.GetPhotoId());
        CheckText(one.photo.GetPhotoLink(PhotoSizeOriginal));
        wxSize const size = one.photo.GetPhotoSize(PhotoSizeOriginal);
        Require(size.x >= 0 && size.y >= 0, "a size is not negative");
    }
}

// The key stands where the bytes have a byte 1: a fuzzer would not find it.
std::string WithKey(std::string const& bytes) {
    std::string filled;
    for (const char c : bytes) {
        if (c == '\x01') {
            filled += Key;
        } else {
            filled += c;
        }
    }
    return filled;
}

void ParseAsItIs(std::string const& bytes) {
    tolimage::FlickrAnswer answer;
    answer.key = Key;
    std::string error;
    if (!tolimage::ParseAnswer("Flickr", bytes, answer.root, error)) {
        Require(!error.empty(), "a refused answer is told");
        return;
    }
    std::vector<GetPhotoListManager::Candidate> candidates;
    int pages = 0;
    tolimage::ReadFlickrPage(answer, candidates, pages, error);
    Require(pages >= 0, "a number of pages is not negative");
    CheckPhotos(candidates);
}

void AskGoogle() {
    CurlClass connection;
    std::vector<tolimage::GooglePicture> pictures;
    std::string error;
    int pages = 0;
    tolimage::AskGooglePictures(connection, "camera", 10, 1, pictures, pages, error);
    Require(pages >= 0 && pages <= tolimage::GoogleMostPages, "pages are bounded");
    CheckText(Text(error));
    for (auto const& picture : pictures) CheckText(picture.link + picture.page + picture.site + picture.title);
}

void AskFlickrLists() {
    CurlClass connection;
    std::string error;
    for (auto const& brand : tolimage::AskFlickrBrands(connection, error)) CheckText(brand.id + brand.name);
    CheckText(Text(error));
    GetGeoTagPhotoListManagerFlickr places("45", "11", "", "", "5", "km");
    places.RunThreadMngrAlt();
    for (Photo const& photo : places.GetRcvdPhotoList()) CheckText(photo.GetPhotoLink(PhotoSizeOriginal));
    CheckText(places.GetErrorMsg());
}

void AskSightings() {
    VecParameter parameters;
    for (char const* text : {Key, "make", "model", "software", "", "10", ""})
        parameters.push_back(CreateParameterString("", "", text));
    wxString error;
    try {
        for (VecString const& row : SearchImageOnCameraForensics(parameters, 0, error)) {
            for (wxString const& cell : row) CheckText(cell);
        }
    } catch (TolException const& failure) {
        CheckText(failure.GetMessage());
    }
    CheckText(GetSightingsProblem());
}

// The first byte tells who is asked; an answer of the server begins with the head of HTTP or gets one.
void Run(std::string const& bytes) {
    if (bytes.empty()) return;
    std::string const body = WithKey(bytes.substr(1));
    Server().Set(body.compare(0, 5, "HTTP/") == 0 ? body : "HTTP/1.0 200 OK\r\n\r\n" + body);
    switch (bytes[0]) {
        case 'g':
            AskGoogle();
            break;
        case 'f':
            AskFlickrLists();
            break;
        case 's':
            AskSightings();
            break;
        default:
            ParseAsItIs(body);
            break;
    }
}

std::vector<std::string> Seeds() {
    std::string const page =
        R"({"stat":"ok","photos":{"page":1,"pages":2,"photo":[{"id":"1","owner":"o","dateupload":"1700000000",)"
        R"("url_o":"https://example.org/1.jpg","width_o":"4000","height_o":3000,"latitude":"45.5","longitude":11,)"
        R"("accuracy":"16"},{"id":"2","originalsecret":"s","server":"7","originalformat":"jpg"},{"id":3}]}})";
    std::string const google =
        R"({"searchInformation":{"totalResults":"25"},"items":[{"link":"https://example.org/a.jpg","displayLink":)"
        R"("example.org","title":"t","image":{"width":4000,"height":3000,"contextLink":"https://example.org/"}}]})";
    std::string const sightings =
        R"({"results":[{"url":"https://example.org/b.jpg","make":"Acme","model":"S","exifSoftware":null,"width":1}]})";
    return {"p" + page,
            "f" + page,
            "f" + std::string(R"({"stat":"ok","brands":{"brand":[{"id":"acme","name":"Acme"},{"id":5}]}})"),
            "f" + std::string("{\"stat\":\"fail\",\"code\":100,\"message\":\"Invalid key \x01\"}"),
            "g" + google,
            "g" + std::string("HTTP/1.1 403 Forbidden\r\nContent-Length: 42\r\n\r\n") +
                "{\"error\": {\"message\": \"\x01 is wrong\"}}     ",
            "s" + sightings,
            "s" + std::string("HTTP/1.1 429 Too Many\r\nRetry-After: 1\r\nContent-Length: 2\r\n\r\n{}"),
            "p" + std::string("{\"stat\":\"ok\",\"photos\":{\"photo\":[{\"id\":{\"_content\":\"\x01\"}}]}}")};
}

}  // namespace

Target WebTarget() {
    return {"web", Run, Seeds};
}

}  // namespace fuzz
