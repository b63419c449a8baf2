// SPDX-License-Identifier: Apache-2.0
// Threads and managers, whatever the service.
#include "tolimage/crawler.h"

#include <algorithm>
#include <exception>
#include <set>
#include <utility>

#include "tolbase/exception.h"
#include "tolbase/limits.h"
#include "tolbase/progress.h"
#include "tolimage/crawler_candidate.h"

ImageCrawlerInterface::ImageCrawlerInterface() : wxThread(wxTHREAD_JOINABLE) {}
ImageCrawlerInterface::~ImageCrawlerInterface() = default;

void ImageCrawlerInterface::RunAndWait() {
    if (Run() != wxTHREAD_NO_ERROR) {
        Crawl();
        return;
    }
    Wait();
}

void ImageCrawlerInterface::Crawl() {
    try {
        Work();
    } catch (TolException const& failure) {
        SetErrorMsg(failure.GetMessage());
    } catch (std::exception const& failure) {
        SetErrorMsg(wxString::FromUTF8(failure.what()));
    } catch (...) {
        SetErrorMsg("The request failed.");
    }
}

wxThread::ExitCode ImageCrawlerInterface::Entry() {
    Crawl();
    return nullptr;
}

wxString ImageCrawlerInterface::GetErrorMsg() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_errorMsg.Clone();
}

void ImageCrawlerInterface::SetErrorMsg(wxString const& message) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_errorMsg = message.Clone();
}

// Does one after another of a manager's jobs, until there is none left.
class ImageReqManager::Crawler : public ImageCrawlerInterface {
public:
    Crawler(std::vector<Job>& jobs, std::atomic<std::size_t>& next) : m_jobs(jobs), m_next(next) {}

    bool m_started = false;

protected:
    void Work() override {
        while (!tcvHasAborted()) {
            std::size_t const index = m_next++;
            if (index >= m_jobs.size()) return;
            m_jobs[index](*this);
        }
        SetErrorMsg("The search was stopped.");
    }

private:
    std::vector<Job>& m_jobs;
    std::atomic<std::size_t>& m_next;
};

ImageReqManager::ImageReqManager() = default;
ImageReqManager::~ImageReqManager() = default;

void ImageReqManager::CreateThreads() {
    m_nextJob = 0;
    m_crawlers.clear();
    std::size_t const count = std::min<std::uint64_t>(m_jobs.size(), GetTolLimit(TolLimit::WebThreads));
    for (std::size_t i = 0; i < count; ++i) m_crawlers.push_back(std::make_unique<Crawler>(m_jobs, m_nextJob));
}

void ImageReqManager::ExecuteThreads() {
    for (auto const& crawler : m_crawlers)
        static_cast<Crawler&>(*crawler).m_started = crawler->Run() == wxTHREAD_NO_ERROR;
}

void ImageReqManager::WaitForThreads() {
    for (auto const& crawler : m_crawlers) {
        // What found no thread is done by the caller.
        if (static_cast<Crawler&>(*crawler).m_started) {
            crawler->Wait();
        } else {
            crawler->Crawl();
        }
    }
}

void ImageReqManager::CollectResults() {
    for (auto const& crawler : m_crawlers) NoteError(crawler->GetErrorMsg());
}

void ImageReqManager::FreeThreads() {
    m_crawlers.clear();
    m_jobs.clear();
}

void ImageReqManager::RunThreadMngr() {
    CreateThreads();
    ExecuteThreads();
    WaitForThreads();
    CollectResults();
    FreeThreads();
}

void ImageReqManager::SetJobs(std::vector<Job> jobs) {
    m_jobs = std::move(jobs);
}

void ImageReqManager::RunJobs(std::vector<Job> jobs) {
    SetJobs(std::move(jobs));
    ImageReqManager::RunThreadMngr();
}

VecVecString ImageReqManager::GetResults() const {
    return m_results;
}

wxString ImageReqManager::GetErrorMsg() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_errorMsg.Clone();
}

void ImageReqManager::NoteError(wxString const& message) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_errorMsg.empty()) m_errorMsg = message.Clone();
}

void ImageReqManager::ForgetError() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_errorMsg.clear();
}

bool ImageReqManager::HasError() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return !m_errorMsg.empty();
}

GetPhotoListManager::GetPhotoListManager(VecString const& makeModel, wxString const& date, TagFilter const& filter,
                                         int count)
    : m_makeModel(makeModel), m_date(date), m_filter(filter), m_count(0) {
    auto const most = static_cast<std::size_t>(GetTolLimit(TolLimit::WebPhotos));
    m_count = count > 0 ? std::min(static_cast<std::size_t>(count), most) : most;
}

GetPhotoListManager::~GetPhotoListManager() = default;

void GetPhotoListManager::InitPhotoListManager() {
    m_pageCount = 0;
    m_photos.clear();
    m_results.clear();
    m_partialError.clear();
    ForgetError();
}

void GetPhotoListManager::RunThreadMngr() {
    RunThreadMngrAlt();
}

void GetPhotoListManager::RunThreadMngrAlt() {
    InitPhotoListManager();
    auto const most = static_cast<std::size_t>(GetTolLimit(TolLimit::WebPhotos));
    std::set<wxString> seen;
    VecString ids;
    for (int page = 1; page == 1 || page <= m_pageCount; ++page) {
        std::vector<Candidate> candidates;
        int pageCount = 0;
        RunJobs({[&](CurlClass& connection) {
            if (!AskPage(connection, page, candidates, pageCount)) candidates.clear();
        }});
        if (HasError() || candidates.empty()) break;
        m_pageCount = std::max(pageCount, page);
        // A service may tell of one photograph on two pages.
        candidates.erase(
            std::remove_if(candidates.begin(), candidates.end(),
                           [&](Candidate const& one) { return !seen.insert(one.photo.GetPhotoId()).second; }),
            candidates.end());
        // One that brings nothing new is the last, whatever the service says.
        if (candidates.empty()) break;
        if (candidates.size() > most - ids.size()) candidates.resize(most - ids.size());
        for (Candidate const& one : candidates) ids.push_back(one.photo.GetPhotoId());
        TakePage(candidates);
        if (m_photos.size() >= m_count || ids.size() >= most || HasError()) break;
    }
    NoteError(m_partialError);
    if (!ids.empty()) m_results.push_back(ids);
}

// A few at a time, so that no more is asked than is wanted. When all of them fail, the service is gone; when some do,
// the search goes on and tells in the end.
void GetPhotoListManager::TakePage(std::vector<Candidate>& candidates) {
    std::size_t const slice = std::max<std::size_t>(static_cast<std::size_t>(GetTolLimit(TolLimit::WebThreads)), 1) * 2;
    for (std::size_t start = 0; start < candidates.size() && m_photos.size() < m_count; start += slice) {
        std::size_t const end = std::min(start + slice, candidates.size());
        std::vector<Job> jobs;
        std::vector<Candidate*> asked;
        for (std::size_t i = start; i < end; ++i) {
            Candidate& one = candidates[i];
            if (!m_filter.AcceptsSize(one.photo.GetPhotoSize(PhotoSizeOriginal)) || !IsDetailNeeded(one)) continue;
            asked.push_back(&one);
            jobs.emplace_back([this, &one](CurlClass& connection) { AskDetails(connection, one); });
        }
        RunJobs(std::move(jobs));
        for (std::size_t i = start; i < end && m_photos.size() < m_count; ++i) {
            Candidate const& one = candidates[i];
            if (!one.unusable && m_filter.Accepts(one.photo, one.tags)) m_photos.push_back(one.photo);
        }
        auto const failed = [](Candidate const* one) { return !one->error.empty(); };
        if (tcvHasAborted()) return;
        if (!asked.empty() && std::all_of(asked.begin(), asked.end(), failed)) NoteError(asked.front()->error);
        if (HasError()) return;
        for (Candidate const* one : asked) {
            if (m_partialError.empty()) m_partialError = one->error;
        }
    }
}

void GetPhotoListManager::AskDetails(CurlClass&, Candidate&) {}

bool GetPhotoListManager::IsDetailNeeded(Candidate const&) const {
    return true;
}

int GetPhotoListManager::GetTotalNumPages() const {
    return m_pageCount;
}

std::vector<Photo> GetPhotoListManager::GetRcvdPhotoList() const {
    return m_photos;
}
