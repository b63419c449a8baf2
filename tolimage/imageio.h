// SPDX-License-Identifier: Apache-2.0
// Reading and writing pictures. The format is told by the file's content, never by its name.
//
// Read: JPEG (baseline, progressive, arithmetic; grey, YCbCr, RGB, CMYK, YCCK; 8 bits), PNG, TIFF (first picture), WebP
// (first frame), HEIC and AVIF (primary picture), camera RAW as LibRaw knows it, BMP, GIF (first frame), PNM, ICO
// (largest picture) and TGA. A damaged file gives what its decoder gives for it; rows that are missing stay grey or
// black as the decoder leaves them.
// A picture is never turned or cropped by what its metadata say: not by an EXIF orientation, not by a camera's flip,
// not by the transformations of a HEIC file, so that the encoder's grid stays where it was put.
//
// Threads: any, at the same time; the reason of a failure is kept for each thread. Files are opened read-only.
#pragma once
#include <wx/string.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "tolbase/export.h"
#include "tolbase/image.h"
#include "tolbase/types.h"

// Null for a file that is missing, unreadable, of an unknown format, or past a limit; never throws. The caller frees
// the result by cvReleaseImage or hands it to an Image. `color` false turns a colour picture grey. `asStored` keeps
// depth and alpha as the file has them; without it the result has 8 bits and one (grey) or three channels (blue, green,
// red).
ORV_API _IplImage* tcvLoadImage(wxString const& path, bool color, bool asStored);
// tcvLoadImage with true and true, for a file that this program has written itself, such as one of its cache: of a PNG
// the checksum of each chunk is enough, which all its bytes stand under, and that of the unpacked pixels is passed
// over.
ORV_API _IplImage* tcvLoadOwnImage(wxString const& path);
// Why this thread's last tcvLoadImage, tcvLoadOwnImage, tcvLoadThumbnail or DecodeImageFromMemory gave nothing, as a
// sentence: "Refused:
// ..." with the limit's name, "Truncated: ...", "Unsupported: ...", "Corrupt: ...", "Unreadable: ...". Empty after one
// that worked, and where there simply is no thumbnail.
ORV_API wxString tcvLastLoadError();
// What this thread's last of those calls had to pass over to give its picture ("Premature end of JPEG file"), first
// remark only; empty if the file is sound as far as its decoder tells.
ORV_API wxString tcvLastLoadWarning();

// Decodes a picture that stands in memory, by the same rules as tcvLoadImage with true and false. Not ok where that
// fails; never throws.
ORV_API Image DecodeImageFromMemory(unsigned char const* data, size_t size);

// The thumbnail that the file carries: the EXIF one, or that of a TIFF, HEIC or RAW file; null if there is none. Throws
// TolException (code 82) if ExifTool has to be asked and does not answer. The caller frees the result.
ORV_API _IplImage* tcvLoadThumbnail(wxString const& path);

// Writes a picture in the format of the path's extension: jpg, jpeg, png, tif, tiff, bmp, webp, in any case. `quality`
// is 1 to 100 for JPEG and WebP, and of no meaning for the others, which lose nothing. 16-bit pixels stay so in PNG and
// TIFF; what a format can't hold is converted as Image::To8Bit and ToColor do. The file is written beside its place and
// renamed, so that an old one is whole until then. False if that can't be done; never throws.
ORV_API bool tcvSaveImage(wxString const& path, _IplImage const* image, int quality);

// How much work the encoder puts into a small file. Fast matters for PNG alone, which is then stored unpacked: about as
// large as its pixels, and written and read several times as fast.
enum class ImagePacking { Small, Fast };
// The bytes that tcvSaveImage writes for a format given by its extension ("png"). False if the format can't be written
// or the picture not be encoded; never throws.
ORV_API bool tcvEncodeImage(wxString const& format, _IplImage const* image, int quality, ImagePacking packing,
                            std::string& bytes);

// Bare extensions in lower case ("jpg"), for lists of files and selectors.
ORV_API VecString GetReadableImageFormats();
ORV_API VecString GetWritableImageFormats();

// What the head of a picture says of the encoded picture, without decoding it.
struct ImageProbe {
    bool ok = false;  // the format is known and a size was found
    wxString format;  // "JPEG", "PNG", "TIFF", "WEBP", "HEIC", "AVIF", "RAW", "BMP", "GIF", "PNM", "ICO", "TGA"; empty
                      // if unknown
    int width = 0;    // in pixels, as stored
    int height = 0;
    int channels = 0;      // palettes count as 3, CMYK as 4, alpha as one more; a RAW sensor's mosaic as 1
    int bitsPerPixel = 0;  // all channels together; 8 for a palette of 8 bits
};
// Never throws; `ok` is false for a file that is missing or not understood.
ORV_API ImageProbe tcvProbeImage(wxString const& path);
