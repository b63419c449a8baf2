// SPDX-License-Identifier: Apache-2.0
// What the segments of a JPEG tell of its compression: tables, sampling, coding process, quality, and which cameras and
// programs are known to write such tables. Nothing is decoded here.
//
// Threads: a record is a plain value. Reading functions keep no state and may run on any thread.
// Ownership: a record owns all it holds. Files are opened read-only.
#pragma once
#include <wx/string.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "tolbase/export.h"
#include "tolbase/types.h"
#include "tolimage/jpegsignature.h"

// The compression facts of one JPEG picture.
struct ORV_API JpegInfo {
    JpegInfo();
    JpegInfo(JpegInfo const&);
    JpegInfo& operator=(JpegInfo const&);
    ~JpegInfo();

    bool IsProgressive = false;
    // The bytes begin as a JPEG and hold at least one whole quantisation table in front of the first scan, or the frame
    // of a lossless JPEG, which needs none. Only a valid record has entries in the vectors below.
    bool IsValid = false;
    // In pixels, as the frame header (or a later DNL segment) says; 0 where the file ends before it.
    int Width = 0;
    int Height = 0;
    int Precision = 0;       // bits per sample
    int ComponentCount = 0;  // as the frame header says
    // "Grayscale", "YCbCr", "RGB", "CMYK", "YCCK", or "Unknown (n components)"; empty without a frame header. A JFIF
    // segment decides, then an Adobe one, then the components' own ids, as decoders do.
    wxString ColorSpace;
    // The coding process in words, such as "Baseline DCT, Huffman coding".
    wxString Process;
    // Per Huffman table set, by the index in the DHT segments: true if all that the file defines of it are the tables
    // of ITU-T T.81 Annex K (counts and values), or if it defines none. Sets beyond the second are never standard.
    std::array<bool, 3> HtIsStandard{};
    // See jpegsignature.h; empty without a quantisation table.
    wxString QtHash;
    // The same with each table transposed, as a lossless quarter turn leaves them.
    wxString QtHashRot;
    // "4:2:0" and so on; the components' own factors ("1x1,1x1,14x5") where the notation has no name for them or there
    // are not three components; empty for a grey picture.
    wxString ChromaSubsampling;
    // The notation of signature records: "2x1", "2x2", "1x1", "1x2", ..., "Gray"; empty without a frame header.
    wxString SignatureSubsampling;
    // By index, always three in a valid record: eight rows of eight numbers in the picture's own order, or empty.
    std::vector<std::vector<std::vector<int>>> QuantizationTables;
    // A table of index 3, or empty.
    std::vector<std::vector<int>> QuantizationTable3;
    // By index, always three in a valid record: row 0 the DC class, row 1 the AC class, each the 16 counts of codes by
    // length (all zero where the file has only the other class), or empty.
    std::vector<std::vector<std::vector<int>>> HuffmanTables;
    // First the IJG quality, 1 to 100, whose tables come nearest to the file's (equal tables are nearest of all; the
    // sum of absolute differences decides, the higher quality where two are as near). A lossless frame counts as 100.
    // If asked for, the same for table 0 alone and for table 1 alone follow. At least one in a valid record.
    std::vector<int> QualityEstimates;
    // True if the first of QualityEstimates is exact: the tables are those of that quality.
    bool IsStandardQuality = false;
    // In MCUs, 0 if none is set before the first scan.
    int RestartInterval = 0;
    // What follows is known only where the whole picture was walked (see the reading function).
    int ScanCount = 0;
    bool HasEndOfImage = false;
    int64_t TrailerBytes = 0;  // bytes behind the end of the picture
    int EmbeddedImageCount = 0;
    // What is wrong with the structure, in English; empty for a sound file.
    VecString Problems;

    // Cameras and programs of the compiled table that write these tables, in whatever segments they stand; where a
    // record has no tables, its digest is compared. A record that names a sampling matches no other one. A record that
    // agrees only once its tables are transposed is listed with "(rotated)" at its end. The lists are emptied first;
    // they come sorted, each entry once. `cameras` holds "make,model,quality", `software` the program's name with its
    // quality label, `standard` the IJG qualities that have exactly these tables. The flags say whether the list beside
    // them has an entry. The result is true if any list has.
    bool FindSimilarSignaturesInInternalDatabase(bool& softwareFound, bool& cameraFound, VecString& cameras,
                                                 VecString& software, VecString& standard);
    // The same against the user's records, by digest alone.
    bool FindSimilarSignaturesInUserDatabase(std::vector<JpegSignature> const& signatures, bool& softwareFound,
                                             bool& cameraFound, VecString& cameras, VecString& software,
                                             VecString& standard);
};

// Reads a file's record. A file that is missing or is no JPEG gives a default record; nothing is thrown for bad
// contents. `depth` 1 reads up to the first scan, 2 walks the whole picture (scan count, end of image, later tables for
// indices that were still free, the true height of a picture that states it late). `allEstimates` adds the estimates of
// the single tables. `countEmbedded` (with depth 2) fills EmbeddedImageCount and TrailerBytes. Throws TolLimitError for
// a file or a structure past a limit.
ORV_API void tcvJpegReadQuantizationAndHuffmanTables(wxString const& path, JpegInfo& info, int depth, bool allEstimates,
                                                     bool countEmbedded);
// The same for bytes in memory.
ORV_API void tcvJpegReadTablesFromMemory(void const* data, size_t size, JpegInfo& info, int depth, bool allEstimates,
                                         bool countEmbedded);

// The place in the picture's own (row-major) order of the coefficient at `position` (0 to 63) of the zigzag order of
// ITU-T T.81 figure A.6; 0 for any other position.
ORV_API int tcvZigZagIndex(int position);
