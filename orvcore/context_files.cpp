// SPDX-License-Identifier: Apache-2.0
// Loading a file into a slot, and the slot's folder in the cache.
#include <wx/filename.h>

#include <cstdio>
#include <future>
#include <optional>
#include <system_error>
#include <vector>

#include "orvcore/context.h"
#include "orvcore/fileslot.h"
#include "orvcore/filtercache.h"
#include "orvcore/translate.h"
#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolbase/filebytes.h"
#include "tolbase/hash.h"
#include "tolbase/progress.h"
#include "tolimage/exiftool.h"
#include "tolimage/imageio.h"
#include "tolimage/subimages.h"

namespace {

using tolbase::FileDescriptor;

constexpr size_t kCacheNameLength = 32;
constexpr size_t kCameraNameLength = 16;
constexpr size_t kCutCameraNameLength = 14;
constexpr size_t kCopyBlock = size_t{1} << 20;
constexpr unsigned long kHashBesideBytes = 64UL << 20;

TolException LoadFailure(int line, wxString const& message) {
    return TolException("context_files.cpp", line, ExceptionGeneral, TolErrorMessage, message);
}

// What a decoder that gave nothing means for the load.
void RequireSupported(wxString const& path) {
    if (!wxFileExists(path) || !wxFileName::IsFileReadable(path)) return;
    wxString const reason = tcvLastLoadError();
    throw LoadFailure(__LINE__, reason.StartsWith("Refused:") ? reason : "File format not supported.");
}

wxString ShortenCameraName(wxString const& name) {
    return name.length() > kCameraNameLength ? name.Left(kCutCameraNameLength) + "..." : name;
}

// A file's MD5, taken on a thread of its own while the file is decoded. Large files wait until they have proved to be
// pictures: a thread can't be called back.
class HashBeside {
public:
    explicit HashBeside(wxString const& path) : m_path(path) {
        wxULongLong const size = wxFileName::GetSize(path);
        if (size == wxInvalidSize || size > kHashBesideBytes) return;
        try {
            m_future = std::async(std::launch::async, TcvCalcHashFromFile, path, MD5, true);
        } catch (std::system_error const&) {
            // No thread to be had: Get does the work.
            return;
        }
    }
    wxString Get() { return m_future.valid() ? m_future.get() : TcvCalcHashFromFile(m_path, MD5, true); }

private:
    wxString m_path;
    std::future<wxString> m_future;
};

bool CopyBytes(std::string const& source, FileDescriptor& out) {
    FileDescriptor const in = tolbase::OpenRegularFile(source);
    if (!in.IsOk()) return false;
    std::vector<char> block(kCopyBlock);
    ssize_t got = 0;
    while ((got = tolbase::ReadBlock(in.Get(), block.data(), block.size())) > 0) {
        if (!tolbase::WriteWhole(out.Get(), block.data(), static_cast<size_t>(got))) return false;
    }
    return got == 0 && out.Close();
}

}  // namespace

void OrvContext::LoadFile(wxString const& path, OrvFileId id, wxString const& originalPath) {
    bool const exists = !path.empty() && wxFileExists(path);
    if (exists) ExifToolPrefetch(path);
    tcvSetProgressString(wxString::Format(OrvTranslate("Loading file: %s"), ::GetFilenameNoPath(path)));
    Image loaded;
    std::optional<HashBeside> hash;
    if (exists) hash.emplace(path);
    // Nothing but a regular file is opened: a pipe or a device would never end.
    if (exists) loaded = Image(tcvLoadImage(path, true, false)).ToColor();
    if (exists && !loaded.IsOk()) RequireSupported(path);

    FileSlot& slot = *m_slots[id];
    slot = FileSlot();
    slot.fileId = 0;
    wxASSERT(!wxThread::IsMain());
    try {
        wxString const sourceName = originalPath.empty() ? path : originalPath;
        bool const folderChanged = wxPathOnly(path) != wxPathOnly(slot.filename);
        slot.image = loaded;
        if (loaded.IsOk()) {
            slot.filename = path;
            if (originalPath.empty()) slot.originalFilename = path;
            ReadDetails(path, id);
            slot.fileInfo = MakeFileInfo(id);
        }
        VecString allFiles;
        if (!path.empty() && m_listFolders) allFiles = GetAllFiles(wxPathOnly(sourceName), imageFormatsRead, false);
        auto const last = std::find(allFiles.rbegin(), allFiles.rend(), sourceName);
        slot.fileId = static_cast<int>(allFiles.rend() - last) - 1;
        if (folderChanged) slot.fileList = std::move(allFiles);
        SetBasePath(id, loaded.IsOk() ? hash->Get() : wxString());
    } catch (...) {
        // A slot that is half one file and half another would credit results to the wrong one.
        slot = FileSlot();
        throw;
    }
}

void OrvContext::ReadDetails(wxString const& path, OrvFileId id) {
    FileSlot& slot = *m_slots[id];
    slot.details = tcvLoadImageDetailsExifTool(path);
    if (!slot.details.IsJpeg) {
        slot.thumbnail = Image(tcvLoadThumbnail(path));
        return;
    }
    tcvJpegReadQuantizationAndHuffmanTables(path, slot.jpegInfo, 2, true, true);
    TakeSubImages(path, id);
}

void OrvContext::TakeSubImages(wxString const& path, OrvFileId id) {
    FileSlot& slot = *m_slots[id];
    std::vector<Image> images;
    std::vector<JpegInfo> infos;
    tcvSaveSubImages(path, images, infos);
    int const width = slot.image.Width();
    int const height = slot.image.Height();
    for (size_t i = 0; i < images.size() && i < infos.size(); ++i) {
        Image const& image = images[i];
        if (image.Width() == width && image.Height() == height) continue;
        if (image.Width() == height && image.Height() == width) continue;
        if (!slot.thumbnail.IsOk()) {
            slot.thumbnail = image;
            slot.thumbnailJpegInfo = infos[i];
        } else if (!slot.preview.IsOk()) {
            slot.preview = image;
            slot.previewJpegInfo = infos[i];
        }
    }
}

wxString OrvContext::MakeFileInfo(OrvFileId id) const {
    FileSlot const& slot = *m_slots[id];
    ImageDetailsExifTool const& details = slot.details;
    wxString info =
        wxString::Format(OrvTranslate("Size: %dx%d, %s"), details.EncodedWidth, details.EncodedHeight, details.Format);
    if (details.IsJpeg && slot.jpegInfo.IsValid && !slot.jpegInfo.QualityEstimates.empty()) {
        info += wxString::Format(", Q: %d%%", slot.jpegInfo.QualityEstimates.front());
    }
    wxString const make = ShortenCameraName(details.Make);
    wxString const model = ShortenCameraName(details.Model);
    if (!make.empty() || !model.empty()) info += wxString::Format(OrvTranslate(", Camera: %s %s"), make, model);
    return info;
}

void OrvContext::UpdateBasePath(OrvFileId id) {
    FileSlot const& slot = *m_slots[id];
    SetBasePath(id, slot.image.IsOk() ? TcvCalcHashFromFile(slot.filename, MD5, true) : wxString());
}

void OrvContext::SetBasePath(OrvFileId id, wxString hash) {
    FileSlot& slot = *m_slots[id];
    slot.outputBasePath.clear();
    if (!slot.image.IsOk()) return;
    wxString const name = GetFilenameNoPath(id).Left(kCacheNameLength);
    wxString base = GetAppDocumentsPath() + wxFILE_SEP_PATH + "cache";
    if (m_cacheLocation == 1) base = wxPathOnly(slot.filename);
    if (m_cacheLocation == 2) base = m_customCacheFolder;
    // A file that is gone since it was loaded keeps its name in the cache.
    if (hash.empty()) hash = slot.hash;
    if (hash.empty()) throw LoadFailure(__LINE__, "The file can't be read to its end.");
    slot.hash = hash;
    slot.outputBasePath = base + wxFILE_SEP_PATH + name + "-" + hash + wxFILE_SEP_PATH + name;
    wxString const copy = wxPathOnly(slot.outputBasePath) + wxFILE_SEP_PATH + ::GetFilenameNoPath(slot.filename);
    if (!wxFileExists(copy)) CopyToCache(slot.filename, copy);
    filtercache::Refresh(id, m_filters, m_cacheEnabled);
}

// A cache that can't be written is no failure of the load. The copy appears whole or not at all.
void OrvContext::CopyToCache(wxString const& source, wxString const& copy) const {
    wxString const folder = wxPathOnly(copy);
    // A link that somebody put there may lead anywhere.
    if (filtercache::IsLink(folder) || !CreateDirIfNotExists(folder)) return;
    // Its name is short whatever the file's own length, and no other process has it.
    std::string temporary;
    FileDescriptor target(filtercache::CreateCopyFile(PathToBytes(folder), temporary));
    if (!target.IsOk()) return;
    if (!CopyBytes(PathToBytes(source), target) || std::rename(temporary.c_str(), PathToBytes(copy).c_str()) != 0) {
        std::remove(temporary.c_str());
    }
}
