// SPDX-License-Identifier: Apache-2.0
#include "orvcore/filterimage.h"

#include <wx/debug.h>
#include <wx/filefn.h>
#include <wx/filename.h>

#include <algorithm>
#include <string>

#include "orvcore/context.h"
#include "orvcore/filtercache.h"
#include "tolbase/file.h"
#include "tolbase/htmlwriter.h"
#include "tolimage/imageio.h"

namespace {

constexpr int Cubic = 2;

// The width of a report's picture under the limits of the program options. A width above the greatest one is reduced,
// one below the least one enlarged; the latter only where there is a greatest one to stay below.
int ReportWidth(int width, int least, int greatest) {
    if (width <= greatest && width < least) return least;
    if (width > greatest && greatest != 0) return greatest;
    return width;
}

Image FitReport(Image const& picture, int least, int greatest) {
    if (least == 0 && greatest == 0) return picture;
    int const width = ReportWidth(picture.Width(), least, greatest);
    double const ratio = static_cast<double>(picture.Width()) / picture.Height();
    int const height = std::max(1, static_cast<int>(width / ratio));
    return picture.Resize(cvSize(width, height), Cubic, false);
}

// True if a PNG gives the very picture back.
bool IsKeptByPng(Image const& picture) {
    int const depth = static_cast<_IplImage const*>(picture)->depth;
    return (depth == IPL_DEPTH_8U || depth == static_cast<int>(IPL_DEPTH_16U)) && picture.Channels() != 2 &&
           picture.Channels() <= 4;
}

// Packing would take longer than many a calculation, and unpacking as long: speed is what the cache is for.
bool SavePicture(wxString const& path, Image const& picture) {
    bool const png = path.EndsWith(".png");
    if (png && !IsKeptByPng(picture)) return false;
    std::string bytes;
    int const quality = GetContext()->GetJpgQuality();
    if (!tcvEncodeImage(path.AfterLast('.'), picture, quality, ImagePacking::Fast, bytes)) return false;
    // A PNG that a power failure has cut off is told by its checksums.
    return filtercache::WriteWholeFile(path, bytes, png ? filtercache::Sync::No : filtercache::Sync::Yes);
}

}  // namespace

OrvFilterImage::OrvFilterImage(wxString const& name) : OrvFilter(name) {}

OrvFilterImage::OrvFilterImage(OrvFilterImage const& other) : OrvFilter(other) {
    CopyFrom(other);
}

OrvFilterImage& OrvFilterImage::operator=(OrvFilterImage const& other) {
    if (this != &other) {
        OrvFilter::operator=(other);
        CopyFrom(other);
    }
    return *this;
}

OrvFilterImage::~OrvFilterImage() = default;

void OrvFilterImage::CopyFrom(OrvFilterImage const& other) {
    // One lock at a time: two filters that copy each other never wait for one another.
    auto const copy = [](Image& to, wxMutex& toMutex, Image const& from, wxMutex& fromMutex) {
        Image shared;
        {
            wxMutexLocker const lock(fromMutex);
            shared = from;
        }
        wxMutexLocker const lock(toMutex);
        to = shared;
    };
    m_outputBatchSize = other.m_outputBatchSize;
    m_outputHasInputSize = other.m_outputHasInputSize;
    for (int id : {Evidence, Reference}) {
        m_outputImage[id] = other.m_outputImage[id];
        m_outputImagePostProcessing[id] = other.m_outputImagePostProcessing[id];
        copy(m_inputImageDisplayed[id], m_inputMutex[id], other.m_inputImageDisplayed[id], other.m_inputMutex[id]);
        copy(m_outputImageDisplayed[id], m_outputMutex[id], other.m_outputImageDisplayed[id], other.m_outputMutex[id]);
    }
}

OrvDataLocker<Image> OrvFilterImage::GetInputImageDisplayed(OrvFileId id) {
    return OrvDataLocker<Image>(&m_inputImageDisplayed[id], m_inputMutex[id]);
}

OrvDataLocker<Image> OrvFilterImage::GetOutputImageDisplayed(OrvFileId id) {
    return OrvDataLocker<Image>(&m_outputImageDisplayed[id], m_outputMutex[id]);
}

Image OrvFilterImage::GetInputImageDisplayedCopy(OrvFileId id) {
    auto const picture = GetInputImageDisplayed(id);
    return picture->Clone();
}

Image OrvFilterImage::GetOutputImageDisplayedCopy(OrvFileId id) {
    auto const picture = GetOutputImageDisplayed(id);
    return picture->Clone();
}

void OrvFilterImage::ResetInput(OrvFileId id) {
    *GetInputImageDisplayed(id) = Image();
}

void OrvFilterImage::ResetOutput(OrvFileId id) {
    m_outputImage[id] = Image();
    m_outputImagePostProcessing[id] = Image();
    *GetOutputImageDisplayed(id) = Image();
}

void OrvFilterImage::Reset(OrvFileId id) {
    ResetInput(id);
    ResetOutput(id);
}

void OrvFilterImage::UpdateOutputData() {
    wxASSERT(!wxThread::IsMain());
    CvSize size = GetInputImage(Evidence).Size();
    if (m_outputImagePostProcessing[Evidence].IsOk()) {
        size = m_outputImagePostProcessing[Evidence].Size();
    } else if (m_outputImagePostProcessing[Reference].IsOk()) {
        size = m_outputImagePostProcessing[Reference].Size();
    }
    DisplayInput(Evidence, size, true);
    DisplayInput(Reference, size, m_outputImagePostProcessing[Reference].IsOk());
    DisplayOutput(Evidence, size);
    DisplayOutput(Reference, size);
}

void OrvFilterImage::DisplayInput(OrvFileId id, CvSize size, bool wanted) {
    Image const& input = GetInputImage(id);
    auto const displayed = GetInputImageDisplayed(id);
    *displayed = wanted && input.IsOk() ? input.Resize(size, Cubic, true) : Image();
}

void OrvFilterImage::DisplayOutput(OrvFileId id, CvSize size) {
    if (!m_outputImagePostProcessing[id].IsOk()) {
        ResetOutput(id);
        return;
    }
    auto const displayed = GetOutputImageDisplayed(id);
    *displayed = m_outputImagePostProcessing[id].Resize(size, Cubic, true);
}

void OrvFilterImage::SaveOutput(wxString const& path) {
    Image const& picture = m_imageToSave;
    if (picture.IsOk()) tcvSaveImage(path, picture, GetContext()->GetJpgQuality());
}

void OrvFilterImage::SaveOutputBatch(wxString const& path) {
    m_outputBatchSize = 0;
    if (!m_outputImagePostProcessing[Evidence].IsOk()) return;
    OrvContext const* context = GetContext();
    Image const picture = FitReport(m_outputImagePostProcessing[Evidence], context->GetOutputImageMinWidth(),
                                    context->GetOutputImageMaxWidth());
    // A report never shows a picture that could not be saved.
    if (tcvSaveImage(path, picture, context->GetJpgQuality())) m_outputBatchSize = picture.Width();
}

wxString OrvFilterImage::GetReportData(wxString const& outputPath, wxString const& /*outputFolder*/) const {
    if (m_outputBatchSize == 0) return {};
    int const standard = GetContext()->GetDefaultImageSize().width;
    return HtmlWriter::DoImg(wxFileName(outputPath).GetFullName(), standard < m_outputBatchSize ? standard : 0);
}

wxString OrvFilterImage::GetOutputFileSelectorString() const {
    return GetContext()->GetStringImageFormatsWrite();
}

wxString OrvFilterImage::GetCacheExtension() const {
    return "." + GetContext()->GetCacheFormat();
}

bool OrvFilterImage::LoadCache(OrvFileId id) {
    wxString const base = GetCacheFilename(id);
    wxString const path = base + (wxFileExists(base + ".png") ? ".png" : ".jpg");
    if (!wxFileExists(path)) return false;
    m_outputImage[id] = Image();
    if (!filtercache::IsWholePicture(path)) return false;
    Image const loaded(tcvLoadOwnImage(path));
    // A remark is that of a decoder that made up what a damaged file lacks.
    if (!loaded.IsOk() || !tcvLastLoadWarning().empty()) return false;
    CvSize const size = GetInputImage(id).Size();
    if (m_outputHasInputSize && (loaded.Width() != size.width || loaded.Height() != size.height)) return false;
    m_outputImage[id] = loaded;
    return true;
}

void OrvFilterImage::SaveCache(OrvFileId id) const {
    wxString const base = GetCacheFilename(id);
    wxString const path = base + GetCacheExtension();
    CreateDirIfNotExists(wxPathOnly(path));
    Image const& picture = m_outputImage[id];
    bool const saved = picture.IsOk() && SavePicture(path, picture);
    if (picture.IsOk() && !saved) FailCache();
    // An older result must not be taken for this one: loading looks for both formats.
    for (char const* extension : {".png", ".jpg"}) {
        if ((!saved || base + extension != path) && !filtercache::RemoveFile(base + extension)) FailCache();
    }
}
