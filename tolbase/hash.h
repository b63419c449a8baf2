// SPDX-License-Identifier: Apache-2.0
// Digests of files and texts. No state: any thread. Files are only read, block by block.
#pragma once
#include <wx/string.h>

#include <cstddef>
#include <vector>

#include "tolbase/export.h"
#include "tolbase/types.h"

enum HashAlgorithm : int { MD5 = 0, SHA1 = 1, SHA256 = 2, SHA384 = 3, SHA512 = 4 };

// The digest of the file's content in hexadecimal digits, lower-case or upper-case. Empty if the file can't be read to
// its end, is no regular file, or the algorithm is unknown.
ORV_API wxString TcvCalcHashFromFile(const wxString& path, HashAlgorithm algorithm, bool lowerCase = true);
// Several digests (lower-case) of one reading of the file, in the order of `algorithms`. All are empty if the file
// can't be read to its end: a digest of half a file is none.
ORV_API std::vector<wxString> TcvCalcHashesFromFile(const wxString& path, const std::vector<HashAlgorithm>& algorithms);
// The digest (lower-case) of `size` bytes; `data` may be null for none.
ORV_API wxString TcvCalcHashFromMemory(const void* data, std::size_t size, HashAlgorithm algorithm);
// The MD5 (32 lower-case digits) of the texts in UTF-8, joined with the separator. It names things; it proves nothing.
ORV_API wxString TcvCalcHashOfConcatenatedStrings(const VecString& strings, const wxString& separator);
