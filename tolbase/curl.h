// SPDX-License-Identifier: Apache-2.0
// One HTTP request. An object is used by one thread at a time; different objects are independent.
//
// Certificates are always verified. A request has a time limit, its answer a limit of bytes, and an abort
// (tcvAbortProgress) ends it. Only https is spoken, and http to this machine itself: no key leaves it in the clear.
#pragma once
#include <wx/string.h>

#include <cstddef>
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

    // The answer as text (UTF-8, else ISO 8859-1) and as bytes; empty before the first answer and after a failure.
    wxString GetResponseString() const;
    const std::string& GetResponseBytes() const;
    // The status of the answer (200, 404, ...); 0 if there was none.
    long GetHttpStatus() const;
    // Why the last transfer failed; empty if it did not.
    wxString GetErrorMessage() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};
