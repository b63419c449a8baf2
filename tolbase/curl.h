// SPDX-License-Identifier: Apache-2.0
// One HTTP request. An object is used by one thread at a time; different objects are independent.
//
// Certificates are always verified. A request has a time limit, its answer a limit of bytes, and an abort
// (tcvAbortProgress) ends it. Only https is spoken, and http to this machine itself: no key leaves it in the clear.
#pragma once
#include <wx/string.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tolbase/export.h"
#include "tolbase/namevaluedesc.h"

class ORV_API CurlClass {
public:
    CurlClass();
    ~CurlClass();
    CurlClass(const CurlClass&) = delete;
    CurlClass& operator=(const CurlClass&) = delete;

    // Makes ready for a request; false if the library can't be started. Called by itself where it was forgotten.
    bool InitCurl();
    // The whole address, query included.
    void SetRequest(const wxString& request);
    // Default 60 seconds; 0 or less restores it.
    void SetTimeLimit(int seconds);
    // Default: the limit "download-bytes". A longer answer is a failed transfer.
    void SetMaxResponseBytes(std::size_t bytes);

    // Sends the request with one further header line (empty: none). With `fields` they are posted as a form, else a
    // non-empty `body` is posted as it is, else it is a GET. A request with a header line follows no redirection, which
    // could hand the header to another host.
    // Returns 0 when an answer came, whatever its status, and -1 for every failed transfer: no connection, bad
    // certificate, time limit, abort, too long an answer, an address that isn't allowed. The answer to a 401 is
    // emptied: an empty answer means an invalid key.
    int SendSSLRequest(const wxString& header, const std::vector<NameValueDesc>& fields, const wxString& body);

    // What holds for the requests that follow, until it is set anew:
    // Further header lines; like the one above, they make that no redirection is followed.
    void SetExtraHeaders(const std::vector<std::string>& lines);
    // Whether redirections are followed where no header line forbids it; they are by default.
    void SetFollowRedirects(bool follow);
    // Plain http to other machines too: for what is public and carries no key. Not by default.
    void SetPlainHttpAllowed(bool allowed);
    // Where the answer's bytes go instead of GetResponseBytes, as they arrive; false from it ends the transfer as a
    // failed one. The limit of bytes counts all the same. Empty restores the default.
    void SetReceiver(std::function<bool(const char* data, std::size_t size)> receiver);
    // Asks for the first bytes only, which a server may pass over; 0 for all.
    void SetFirstBytes(std::size_t count);
    // A transfer of less than a byte a second for so long fails; 0 (the default) lifts that.
    void SetStallLimit(int seconds);
    // How long a transfer may go on after an abort; 0 (the default) ends it at once.
    void SetAbortGrace(int seconds);
    // The requests are posted as multipart forms: the fields, and these bytes as a file. An empty field name lifts
    // that.
    void SetUpload(const std::string& field, const std::string& fileName, const std::string& bytes);

    // The answer as text (UTF-8, else ISO 8859-1) and as bytes; empty before the first answer and after a failure.
    wxString GetResponseString() const;
    const std::string& GetResponseBytes() const;
    // The status of the answer (200, 404, ...); 0 if there was none.
    long GetHttpStatus() const;
    // Of the last answer: the seconds for which the server asks to wait (0: none), what the content is said to be, the
    // address to which it redirects and that was not followed.
    long GetRetryAfter() const;
    std::string GetContentType() const;
    std::string GetRedirectAddress() const;
    // Whether an address may be asked, and whether it is on this machine.
    static bool IsAllowedAddress(const std::string& address, bool plainHttp);
    static bool IsAddressOfThisMachine(const std::string& address);
    // Why the last transfer failed; empty if it did not.
    wxString GetErrorMessage() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};
