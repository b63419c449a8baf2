// SPDX-License-Identifier: Apache-2.0
// One question to a web service, with its retries. Private to the engine.
//
// Threads: each connection in one thread at a time. Plain values, texts in UTF-8.
#pragma once
#include <wx/jsonval.h>

#include <chrono>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "tolbase/curl.h"

namespace tolimage {

struct WebQuestion {
    std::string service;  // "Flickr"; begins every error text
    std::string address;
    std::vector<std::string> headers;
    std::string body;    // posted unless empty
    std::string secret;  // what no text may show
    std::string uploadField;
    std::string uploadName;
    std::string uploadBytes;
};

struct WebAnswer {
    bool arrived = false;  // there was an answer, whatever its status
    bool good = false;     // and its status is 2xx
    long status = 0;
    std::string bytes;
    std::string error;  // a sentence unless good
};

// Sends the question within the limits "web-seconds", "web-attempts" and "web-answer-bytes". Never throws.
WebAnswer AskWeb(CurlClass& connection, WebQuestion const& question);

// 429 and 5xx: the server is busy or broken for a while.
bool IsToBeRepeated(long status);

// Sleeps, and looks for an abort meanwhile; false if there was one.
bool PauseUnlessAborted(std::chrono::milliseconds pause);

using WebFields = std::vector<std::pair<std::string, std::string>>;
// The address with the fields, percent-encoded, behind what its query holds already.
std::string WithQuery(std::string const& endpoint, WebFields const& fields);
// The address with one slash at its end and the part behind it, in front of its query.
std::string WithPath(std::string const& endpoint, std::string const& part);

// The value that a service's answer holds; false, and a sentence in `error`, if it is no JSON object.
bool ParseAnswer(std::string const& service, std::string const& bytes, wxJSONValue& root, std::string& error);
// A text of a service as it may be shown: no control characters, no secret, of bounded length.
wxString CleanText(wxString const& text, std::string const& secret);
// The text of an item, also where it stands in "_content"; empty for a missing one.
wxString ItemText(wxJSONValue const& object, char const* key, std::string const& secret);
// The link if it is one of http or https, else empty.
wxString ItemLink(wxJSONValue const& object, char const* key, std::string const& secret);
// 0 for what is missing, negative or no number.
int ItemNumber(wxJSONValue const& object, char const* key);

// "Network Connection Error: ..."
extern char const* const NetworkErrorText;

}  // namespace tolimage
