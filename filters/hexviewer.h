// SPDX-License-Identifier: Apache-2.0
// The bytes of a file as they stand, as a filter. The layout is that of the command hexdump with its option "-C".
#pragma once
#include <wx/string.h>

#include <cstdint>
#include <string>

#include "orvcore/filtertext.h"
#include "tolbase/export.h"

// The greatest part that the filter shows at once, in bytes.
constexpr int OrvHexMaximumLength = 1024 * 1024;

// A line for each sixteen bytes: the offset in hexadecimal (eight digits, more where that is not enough), the bytes in
// hexadecimal, and between bars the same bytes as characters, a point for each that is not printable ASCII. Each line
// ends with a line feed. `offset` is that of the first byte.
ORV_API wxString OrvFormatHexDump(std::string const& bytes, uint64_t offset);

// Reads `length` bytes from `offset` on, fewer at the end of the file, none behind it; nothing else of the file is
// read. `fileSize` gets the size of the whole file. Throws TolException (82) for a file that can't be read and for
// negative numbers.
ORV_API std::string OrvReadFileWindow(wxString const& path, int64_t offset, int64_t length, int64_t& fileSize);

// Shows a part of the file that is in a slot, first that of the Evidence, then that of the Reference; each with a line
// above it that names the file, its size and the part. Parameters: "Offset" (of the first byte) and "Length" (1 to
// OrvHexMaximumLength bytes).
class ORV_API OrvFilterHexViewer : public OrvFilterTextCustom {
public:
    OrvFilterHexViewer();

    // Throws TolException (82) for a negative offset and for a file that can't be read. An offset behind the end of the
    // file shows a line that says so.
    void Apply(OrvFileId id) override;
    void UpdateOutputData() override;

protected:
    void Reset(OrvFileId id) override;
    OrvFilterGuiBase* CreateFilterGui(wxWindow* parent, OrvFilter* filter) override;

private:
    wxString m_dumps[2];
};
