// SPDX-License-Identifier: Apache-2.0
// Requests to photo services, by a bounded number of threads of their own: lists of cameras, lists of photographs, one
// photograph's file.
//
// Threads: a manager belongs to one thread, and its own threads end inside RunThreadMngr; at most "web-threads" run at
// a time. An abort (tcvAbortProgress) ends a search. Ownership: managers own their threads, results are copies.
//
// Every request has the time limit "web-seconds", retries included, and its answer the limit "web-answer-bytes". A 429
// and a 5xx are tried again, up to "web-attempts" times, each time after twice as long a pause, or after the pause that
// the server asks for. Certificates are verified, requests with a key follow no redirection, and
// no error text holds a key or an address' query. Addresses and keys: tolimage/webservices.h. Nothing throws.
#pragma once
#include <wx/string.h>
#include <wx/thread.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "tolbase/curl.h"
#include "tolbase/export.h"
#include "tolbase/types.h"
#include "tolimage/photo.h"

// One thread with one connection.
class ORV_API ImageCrawlerInterface : public CurlClass, public wxThread {
public:
    ImageCrawlerInterface();
    ~ImageCrawlerInterface() override;

    // Does the work on a thread of its own and waits for its end; where no thread can be started, on the caller's.
    void RunAndWait();
    // Does the work here. Whatever is thrown becomes the error message.
    void Crawl();
    // Why the work failed; empty if it did not.
    wxString GetErrorMsg() const;

protected:
    virtual void Work() = 0;
    ExitCode Entry() override;
    void SetErrorMsg(wxString const& message);

private:
    mutable std::mutex m_mutex;
    wxString m_errorMsg;
};

// How long a download may take.
struct DownloadTimeout {
    DownloadTimeout() = default;
    DownloadTimeout(int attemptCount, int secondCount) : attempts(attemptCount), seconds(secondCount) {}
    int attempts = 1;    // how often it is tried; where the server is busy (429, 5xx), "web-attempts" if that is more
    int seconds = 2400;  // all attempts together
};

// Fetches one photograph into a folder, as "ID.EXTENSION": characters of the id that don't belong into a file name
// become "_", the extension is the link's, or what the bytes are ("jpg", ...) where it has none. The bytes arrive in a
// temporary file beside it, which gets its name when it is whole; a file that is there already is not replaced. Only
// http and https links, followed to at most five other places, never from elsewhere to this machine. An answer of more
// than "download-bytes", one that is a web page, a server that sends nothing for "web-seconds": errors, and no file.
// An abort lets the transfer go on for five seconds, then ends it.
class ORV_API DownloadPhoto : public ImageCrawlerInterface {
public:
    // `timeout` may be null for the defaults. The format is noted only: the link tells which one it is.
    DownloadPhoto(wxString id, wxString link, PhotoSizeFormat const& format, wxString const& folder,
                  DownloadTimeout const* timeout);
    ~DownloadPhoto() override;

    // Replaces a file of that name in one step instead of refusing.
    void SetOverwrite(bool overwrite);
    // The path of the file, once it stands; empty before and after a failure.
    wxString GetFile() const;
    // True if it failed only because there is a file of that name.
    bool IsRefusedByExistingFile() const;

protected:
    void Work() override;

private:
    struct Impl;
    // A sentence if it failed.
    wxString Fetch();

    std::unique_ptr<Impl> m_impl;
};

// A set of requests and their results: a table whose rows are whatever the manager lists.
class ORV_API ImageReqManager {
public:
    ImageReqManager();
    virtual ~ImageReqManager();
    ImageReqManager(ImageReqManager const&) = delete;
    ImageReqManager& operator=(ImageReqManager const&) = delete;

    virtual void CreateThreads();
    virtual void ExecuteThreads();
    virtual void WaitForThreads();
    virtual void CollectResults();
    virtual void FreeThreads();
    // All of it, in this order.
    virtual void RunThreadMngr();

    VecVecString GetResults() const;
    // The first thing that went wrong; empty if nothing did.
    wxString GetErrorMsg() const;

protected:
    // One piece of work, done by any of the threads on its connection. Texts that go in must be the job's own.
    using Job = std::function<void(CurlClass&)>;
    // What CreateThreads shares out.
    void SetJobs(std::vector<Job> jobs);
    // Does the jobs with the operations of this class and forgets them.
    void RunJobs(std::vector<Job> jobs);
    // Keeps the first message only. Any thread.
    void NoteError(wxString const& message);
    void ForgetError();
    bool HasError() const;

    VecVecString m_results;

private:
    class Crawler;
    std::vector<Job> m_jobs;
    std::atomic<std::size_t> m_nextJob{0};
    std::vector<std::unique_ptr<ImageCrawlerInterface>> m_crawlers;
    mutable std::mutex m_mutex;
    wxString m_errorMsg;
};

// The makes that Flickr knows, in one row; none after a failure.
class ORV_API GetCameraListManager : public ImageReqManager {
public:
    GetCameraListManager();
    void CreateThreads() override;
    void CollectResults() override;

private:
    VecString m_names;
};

// The models of each make that Flickr knows, a row for each make in the order given, every model with the make in front
// ("canon eos 5d").
class ORV_API GetCameraModelListManager : public ImageReqManager {
public:
    explicit GetCameraModelListManager(VecString const& makes);
    void CreateThreads() override;
    void CollectResults() override;

private:
    void AskModels(CurlClass& connection, wxString const& make, VecString& models);

    VecString m_makes;
    std::vector<VecString> m_models;
};

// Photographs of one camera, or of one place. What RunThreadMngr leaves in the results are the ids of all photographs
// that the service told of, in one row; GetRcvdPhotoList has those that the filter accepts.
class ORV_API GetPhotoListManager : public ImageReqManager {
public:
    struct Candidate;

    // `date` is the earliest day of upload, "2024-5-31"; at most `count` photographs are given, all up to the limit
    // "web-photos" for 0 or less.
    GetPhotoListManager(VecString const& makeModel, wxString const& date, TagFilter const& filter, int count);
    ~GetPhotoListManager() override;

    // Forgets what an earlier run found.
    virtual void InitPhotoListManager();
    // Page after page until there are enough photographs; the metadata of a page's photographs are asked for by several
    // threads.
    virtual void RunThreadMngrAlt();
    void RunThreadMngr() override;
    // Pages that the service has; 0 before the first answer.
    int GetTotalNumPages() const;
    std::vector<Photo> GetRcvdPhotoList() const;

protected:
    // The photographs of a page, counted from 1, and how many pages there are. False, and an error noted, if there was
    // no answer. Runs in another thread, alone.
    virtual bool AskPage(CurlClass& connection, int page, std::vector<Candidate>& candidates, int& pageCount) = 0;
    // Adds what the page lacks. Runs in several threads at once, each with its candidate.
    virtual void AskDetails(CurlClass& connection, Candidate& candidate);
    // Whether AskDetails is needed at all.
    virtual bool IsDetailNeeded(Candidate const& candidate) const;

    VecString m_makeModel;
    wxString m_date;
    TagFilter m_filter;
    std::size_t m_count;

private:
    void TakePage(std::vector<Candidate>& candidates);

    int m_pageCount = 0;
    std::vector<Photo> m_photos;
    wxString m_partialError;
};

// Flickr: flickr.photos.search with make and model as text, then flickr.photos.getExif of each photograph. Photographs
// whose original isn't offered are left out.
class ORV_API GetPhotoListManagerFlickr : public GetPhotoListManager {
public:
    GetPhotoListManagerFlickr(VecString const& makeModel, wxString const& date, TagFilter const& filter, int count);

protected:
    bool AskPage(CurlClass& connection, int page, std::vector<Candidate>& candidates, int& pageCount) override;
    void AskDetails(CurlClass& connection, Candidate& candidate) override;
};

// Google: Custom Search JSON API, pictures. It has no metadata: they are read from the first 256 KiB of the picture
// itself, asked of the site that has it.
class ORV_API GetPhotoListManagerGoogle : public GetPhotoListManager {
public:
    GetPhotoListManagerGoogle(VecString const& makeModel, wxString const& date, TagFilter const& filter, int count);

protected:
    bool AskPage(CurlClass& connection, int page, std::vector<Candidate>& candidates, int& pageCount) override;
    void AskDetails(CurlClass& connection, Candidate& candidate) override;
};

// Photographs taken near a place, by flickr.photos.search. Latitude and longitude in degrees; first and last day of
// taking as "2024-05-31", either may be empty; the radius as text, up to 32 km or 20 miles; the unit "km" or "mi".
// What is out of range is an error, and nothing is sent.
class ORV_API GetGeoTagPhotoListManagerFlickr : public GetPhotoListManager {
public:
    GetGeoTagPhotoListManagerFlickr(wxString const& latitude, wxString const& longitude, wxString const& firstDay,
                                    wxString const& lastDay, wxString const& radius, wxString const& unit);

protected:
    bool AskPage(CurlClass& connection, int page, std::vector<Candidate>& candidates, int& pageCount) override;
    void AskDetails(CurlClass& connection, Candidate& candidate) override;
    bool IsDetailNeeded(Candidate const& candidate) const override;

private:
    // What is wrong with the question; empty if nothing is.
    wxString FindFault() const;

    wxString m_latitude;
    wxString m_longitude;
    wxString m_firstDay;
    wxString m_lastDay;
    wxString m_radius;
    wxString m_unit;
};
