// SPDX-License-Identifier: Apache-2.0
#include "tolimage/subimages.h"

#include <wx/filename.h>

#include <algorithm>
#include <mutex>

#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolbase/hash.h"
#include "tolimage/imageio.h"
#include "tolimage/jpeg_embedded.h"
#include "tolimage/jpeg_file.h"

namespace {

constexpr size_t kNameLength = 32;

std::mutex& FolderMutex() {
    static std::mutex mutex;
    return mutex;
}

wxString& FolderSetting() {
    static wxString folder;
    return folder;
}

// As the cache folders of the engine are named: without folder and ending, cut to a length.
wxString Stem(wxString const& path) {
    return wxFileName(path).GetName().Left(kNameLength);
}

std::vector<EmbeddedJpeg> FindIn(ByteView file) {
    return file.Matches(0, "\xFF\xD8", 2) ? FindEmbeddedJpegs(file) : FindJpegsAnywhere(file);
}

}  // namespace

void tcvSaveSubImages(wxString const& path, std::vector<Image>& images, std::vector<JpegInfo>& infos) {
    images.clear();
    infos.clear();
    std::string bytes;
    if (!ReadJpegFile(path, true, bytes)) return;
    std::vector<EmbeddedJpeg> pictures = FindEmbeddedJpegs(ByteView(bytes.data(), bytes.size()));
    // Makers put previews in front of it; what the EXIF data call the thumbnail is the first all the same.
    std::stable_partition(pictures.begin(), pictures.end(), [](EmbeddedJpeg const& p) { return p.isExifThumbnail; });
    for (EmbeddedJpeg const& picture : pictures) {
        const ByteView view = picture.Bytes();
        JpegInfo info;
        tcvJpegReadTablesFromMemory(view.Data(), view.Size(), info, 2, true, false);
        if (!info.IsValid) continue;
        Image image;
        try {
            image = DecodeImageFromMemory(view.Data(), view.Size());
        } catch (std::exception const&) {
            // A picture that can't be decoded, or is larger than the limits allow, is none to show; the others are.
            continue;
        }
        if (!image.IsOk()) continue;
        images.push_back(image);
        infos.push_back(info);
    }
}

VecString tcvDumpSubImages(wxString const& path) {
    std::string bytes;
    if (!ReadJpegFile(path, false, bytes)) return {};
    const wxString hash = TcvCalcHashFromMemory(bytes.data(), bytes.size(), MD5);
    return tcvDumpSubImages(path, TolGetDumpFolder() + "/" + Stem(path) + "-" + hash);
}

VecString tcvDumpSubImages(wxString const& path, wxString const& folder) {
    VecString files;
    std::string bytes;
    if (!ReadJpegFile(path, false, bytes)) return files;
    const std::vector<EmbeddedJpeg> pictures = FindIn(ByteView(bytes.data(), bytes.size()));
    if (pictures.empty()) return files;
    if (!CreateDirIfNotExists(folder)) {
        throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage, "Can't make the folder " + folder);
    }
    const wxString stem = Stem(path);
    for (EmbeddedJpeg const& picture : pictures) {
        const wxString file = folder + "/" + stem + wxString::Format("-embedded-%02zu.jpg", files.size() + 1);
        if (!WriteFileAtomically(file, picture.Bytes().ToString())) {
            throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage, "Can't write " + file);
        }
        files.push_back(file);
    }
    return files;
}

void TolSetDumpFolder(wxString const& folder) {
    const std::lock_guard<std::mutex> lock(FolderMutex());
    FolderSetting() = folder;
}

wxString TolGetDumpFolder() {
    {
        const std::lock_guard<std::mutex> lock(FolderMutex());
        if (!FolderSetting().empty()) return FolderSetting();
    }
    return GetAppDocumentsPath() + "/cache";
}
