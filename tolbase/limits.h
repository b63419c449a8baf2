// SPDX-License-Identifier: Apache-2.0
// How much of a file this program is willing to take in. Examined files may claim anything: each claim is compared with
// its limit before memory is taken, and past it the answer is "refused", with the limit's name.
//
// Threads: limits may be read and set from any thread at any time; a change holds for what is checked afterwards.
// Ownership: the limits are the process's own, nothing has to be freed.
#pragma once
#include <wx/string.h>

#include <cstdint>

#include "tolbase/exception.h"
#include "tolbase/export.h"

// Names and defaults stand in limits.cpp and are told by GetTolLimitInfo.
enum class TolLimit : int {
    FileBytes = 0,       // "file-bytes": a file that is read into memory whole; 1 GiB
    PixelsPerImage,      // "pixels-per-image": width times height of one picture; 268,435,456
    ImageSide,           // "image-side": the longer side of one picture in pixels; 1,000,000
    SegmentBytes,        // "segment-bytes": one segment, chunk or box of a file; 268,435,456
    Segments,            // "segments": segments, chunks or markers of one file; 1,000,000
    EmbeddedImages,      // "embedded-images": pictures taken out of one file; 64
    EmbeddedImageBytes,  // "embedded-image-bytes": one such picture in its coded form; 268,435,456
    MetadataValues,      // "metadata-values": rows of metadata of one file; 100,000
    MetadataValueBytes,  // "metadata-value-bytes": the text of one of them; 1,048,576
    NestingDepth,        // "nesting-depth": structures within structures of a file; 64
    SecondsPerFile,      // "seconds-per-file": waiting for ExifTool's answer on one file; 60
    JsonDepth,           // "json-depth": values within values of a JSON text; 512
    JsonBytes,           // "json-bytes": a JSON text; 268,435,456
    UserDatabaseBytes,   // "user-database-bytes": a file of the user's own signatures; 268,435,456
    PdfObjects,          // "pdf-objects": objects looked at in one PDF; 1,000,000
    DownloadBytes,       // "download-bytes": one file taken from the web; 268,435,456
    WebAnswerBytes,      // "web-answer-bytes": one answer of a search service; 16,777,216
    WebSeconds,          // "web-seconds": one request with its retries, or a download's silence; 60
    WebAttempts,         // "web-attempts": how often one request is sent; 4
    WebBackoffMs,        // "web-backoff-milliseconds": pause before the second attempt, doubled each time; 1,000
    WebThreads,          // "web-threads": requests at the same time; 4
    WebPhotos,           // "web-photos": photographs that one search looks at; 500
    Count                // how many there are; no limit itself
};

// What a limit is called, what it bounds and what holds unless it is set.
struct TolLimitInfo {
    char const* name;         // lower case and hyphens, as program options spell it
    char const* description;  // one English sentence part, such as "pixels of one picture"
    uint64_t defaultValue;
};

// Thrown where a file goes past a limit; `GetMessage` tells the limit's name, its value and what the file asked for.
class ORV_API TolLimitError : public TolException {
public:
    TolLimitError(TolLimit limit, uint64_t asked);

    TolLimit GetLimit() const { return m_limit; }
    // What the file asked for, in the limit's unit.
    uint64_t GetAsked() const { return m_asked; }

private:
    TolLimit m_limit;
    uint64_t m_asked;
};

// Name, description and default; throws std::out_of_range for a number that is no limit.
ORV_API TolLimitInfo const& GetTolLimitInfo(TolLimit limit);
// The value that holds now.
ORV_API uint64_t GetTolLimit(TolLimit limit);
// 0 restores the default.
ORV_API void SetTolLimit(TolLimit limit, uint64_t value);
// The limit of that name ("pixels-per-image"); false if there is none, and `limit` stays as it is.
ORV_API bool FindTolLimit(wxString const& name, TolLimit& limit);
ORV_API void ResetTolLimits();

// True if `asked` is within the limit.
ORV_API bool IsWithinTolLimit(TolLimit limit, uint64_t asked);
// Throws TolLimitError if it is not.
ORV_API void CheckTolLimit(TolLimit limit, uint64_t asked);
// Checks a picture's sides and its number of pixels at once, the product in 64 bits. Sides are in pixels; a negative
// one counts as too large.
ORV_API void CheckPictureSize(int64_t width, int64_t height);
