// SPDX-License-Identifier: Apache-2.0
#include "tolimage/imagedetails.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstdlib>

#include "tolbase/file.h"
#include "tolimage/details_rows.h"
#include "tolimage/exiftool.h"
#include "tolimage/imageio.h"

namespace {

// Looks tags up by the groups in which they may stand, best first.
class Finder {
public:
    explicit Finder(ExifToolValues const& values) : m_values(values) {}

    // The first value of "Group:Tag" names; the group is of family 1, or of family 0 where that is equal. "*" as a
    // group is any but those of ExifTool's own making.
    wxString First(std::initializer_list<char const*> names) const {
        for (char const* name : names) {
            const wxString text(name);
            const wxString group = text.BeforeFirst(':');
            const wxString tag = text.AfterFirst(':');
            for (ExifToolValue const& value : m_values) {
                if (value.tag == tag && Agrees(value, group)) return value.value;
            }
        }
        return wxString();
    }

    int Number(std::initializer_list<char const*> names) const {
        long number = 0;
        return First(names).BeforeFirst(' ').ToCLong(&number) && number >= 0 && number <= 0x7FFFFFFF
                   ? static_cast<int>(number)
                   : 0;
    }

private:
    static bool Agrees(ExifToolValue const& value, wxString const& group) {
        if (group == "*") return IsMetadataValue(value);
        return value.group1 == group || value.group0 == group;
    }

    ExifToolValues const& m_values;
};

void CountGroups(ExifToolValues const& values, ImageDetailsExifTool& details) {
    for (ExifToolValue const& value : values) {
        if (value.group0 == "EXIF") ++details.ExifFieldCount;
        if (value.group0 == "MakerNotes") ++details.MakerNotesFieldCount;
        if (value.group0 == "IPTC") ++details.IptcFieldCount;
        if (value.group0 == "XMP") ++details.XmpFieldCount;
        if (value.group0 == "Photoshop") ++details.PhotoshopFieldCount;
        if (value.group0 == "ICC_Profile") ++details.IccFieldCount;
        if (value.group0 == "Composite") ++details.CompositeCount;
        if (value.group0 == "ExifTool" && (value.tag == "Warning" || value.tag == "Error")) ++details.WarningCount;
    }
}

int OrientationNumber(wxString const& text) {
    constexpr std::array<char const*, 8> words = {"Horizontal (normal)",
                                                  "Mirror horizontal",
                                                  "Rotate 180",
                                                  "Mirror vertical",
                                                  "Mirror horizontal and rotate 270 CW",
                                                  "Rotate 90 CW",
                                                  "Mirror horizontal and rotate 90 CW",
                                                  "Rotate 270 CW"};
    const auto* found = std::find_if(words.begin(), words.end(), [&](char const* word) { return text == word; });
    return found == words.end() ? 0 : static_cast<int>(found - words.begin()) + 1;
}

// "YCbCr4:2:0 (2 2)" holds the notation; anything else is no subsampling.
wxString Notation(wxString const& text) {
    const auto isDigit = [&](size_t at) { return text[at] >= '0' && text[at] <= '9'; };
    for (size_t i = 0; i + 4 < text.length(); ++i) {
        if (isDigit(i) && text[i + 1] == ':' && isDigit(i + 2) && text[i + 3] == ':' && isDigit(i + 4)) {
            return text.Mid(i, 5);
        }
    }
    return wxString();
}

// Formats that ExifTool tells and no decoder of ours, by the names under which they are listed.
wxString FormatFromExifTool(wxString const& type, wxString const& mime) {
    if (type == "DNG" || mime == "image/x-raw" || (mime.StartsWith("image/x-") && IsRawType(type))) return "RAW";
    if (type == "JPEG" || type == "MPO" || type == "JPS") return "JPEG";
    if (type == "Extended WEBP") return "WEBP";
    return type;
}

void PutTexts(Finder const& find, ImageDetailsExifTool& details) {
    details.Make = find.First({"IFD0:Make", "EXIF:Make", "XMP-tiff:Make", "*:Make"});
    details.Model = find.First({"IFD0:Model", "EXIF:Model", "XMP-tiff:Model", "*:Model"});
    details.Software = find.First({"IFD0:Software", "EXIF:Software", "XMP-tiff:Software", "PNG:Software"});
    details.SerialNumber = find.First({"ExifIFD:SerialNumber", "EXIF:SerialNumber", "MakerNotes:SerialNumber",
                                       "XMP-aux:SerialNumber", "XMP-exifEX:SerialNumber", "XMP-exifEX:BodySerialNumber",
                                       "*:CameraSerialNumber", "MakerNotes:InternalSerialNumber"});
    details.LensModel = find.First({"ExifIFD:LensModel", "EXIF:LensModel", "XMP-exifEX:LensModel", "XMP-aux:Lens"});
    details.DateTimeOriginal =
        find.First({"ExifIFD:DateTimeOriginal", "EXIF:DateTimeOriginal", "XMP-exif:DateTimeOriginal"});
    details.CreateDate = find.First({"ExifIFD:CreateDate", "EXIF:CreateDate", "XMP-xmp:CreateDate"});
    details.ModifyDate = find.First({"IFD0:ModifyDate", "EXIF:ModifyDate", "XMP-xmp:ModifyDate"});
    details.RotateTag = find.First({"IFD0:Orientation", "EXIF:Orientation", "XMP-tiff:Orientation"});
    details.Orientation = OrientationNumber(details.RotateTag);
    details.EncodingProcess = find.First({"File:EncodingProcess"});
    details.GpsLatitude = find.First({"Composite:GPSLatitude", "GPS:GPSLatitude", "XMP-exif:GPSLatitude"});
    details.GpsLongitude = find.First({"Composite:GPSLongitude", "GPS:GPSLongitude", "XMP-exif:GPSLongitude"});
    details.GpsAltitude = find.First({"Composite:GPSAltitude", "GPS:GPSAltitude", "XMP-exif:GPSAltitude"});
    details.GpsDateTime = find.First({"Composite:GPSDateTime", "XMP-exif:GPSDateTime"});
    details.ChromaSubsampling = Notation(
        find.First({"File:YCbCrSubSampling", "IFD0:YCbCrSubSampling", "Meta:ChromaFormat", "QuickTime:ChromaFormat"}));
}

void PutFormat(Finder const& find, ImageProbe const& probe, ImageDetailsExifTool& details) {
    const wxString type = find.First({"File:FileType"});
    const wxString mime = find.First({"File:MIMEType"});
    details.FileTypeExtension = find.First({"File:FileTypeExtension"});
    const wxString told = FormatFromExifTool(type, mime);
    // The content decides; ExifTool goes by the name where a TIFF container may be many things.
    details.Format = probe.format.empty() || (probe.format == "TIFF" && told == "RAW") ? told : probe.format;
    details.IsJpeg = probe.format == "JPEG";
    if (!mime.empty()) details.FormatDescription = mime + " (" + type + ")";
}

void PutSizes(Finder const& find, ImageProbe const& probe, ImageDetailsExifTool& details) {
    if (probe.ok) {
        details.EncodedWidth = probe.width;
        details.EncodedHeight = probe.height;
        details.Channels = probe.channels;
        details.BitsPerPixel = probe.bitsPerPixel;
        if (find.First({"Meta:ChromaFormat"}).Contains("onochrome") && probe.channels == 3) {
            details.Channels = 1;
            details.BitsPerPixel = probe.bitsPerPixel / 3;
        }
    } else {
        details.EncodedWidth = find.Number({"File:ImageWidth", "*:ImageWidth"});
        details.EncodedHeight = find.Number({"File:ImageHeight", "*:ImageHeight"});
        details.Channels =
            find.Number({"File:ColorComponents", "Jpeg2000:NumberOfComponents", "Photoshop:NumChannels"});
        details.BitsPerPixel = details.Channels * find.Number({"File:BitsPerSample", "*:BitsPerSample", "*:BitDepth"});
    }
    details.BitsPerChannel = details.Channels > 0 ? details.BitsPerPixel / details.Channels : 0;
    details.NormalizedShortSide = std::min(details.EncodedWidth, details.EncodedHeight);
    details.NormalizedLongSide = std::max(details.EncodedWidth, details.EncodedHeight);
    details.IsOk = details.EncodedWidth > 0 && details.EncodedHeight > 0;
}

}  // namespace

ImageDetailsExifTool tcvLoadImageDetailsExifTool(wxString const& path) {
    ImageDetailsExifTool details;
    details.Filename = path;
    struct stat info {};
    if (path.empty() || stat(PathToBytes(path).c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return details;
    details.FileSize = info.st_size;
    details.FileModificationTime = info.st_mtim.tv_sec;
    const ExifToolValues values = ExifToolRead(path);
    const ImageProbe probe = tcvProbeImage(path);
    const Finder find(values);
    PutFormat(find, probe, details);
    PutSizes(find, probe, details);
    PutTexts(find, details);
    CountGroups(values, details);
    details.Metadata = MetadataRows(values);
    details.MetadataCount = static_cast<int64_t>(details.Metadata.size());
    return details;
}
