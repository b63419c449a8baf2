// SPDX-License-Identifier: Apache-2.0
// ExifTool's answers as values. Private to this library.
//
// The answers come in PHP's notation: of ExifTool's forms it is the one that keeps every value's text (JSON turns
// "True" into true) and every byte, and that never has a line break inside a value.
#pragma once
#include <string>
#include <vector>

#include "tolimage/exiftool.h"

// The arguments of a question, one a line, without the file's name.
extern char const* const ExifToolValuesArguments;
extern char const* const ExifToolNumbersArguments;

// Bytes as text: UTF-8, else ISO 8859-1.
wxString ExifToolText(std::string const& bytes);
// Throws TolException, code 82, for an answer that is not in the notation. The limits of exiftool.h are kept.
ExifToolValues ParseExifToolAnswer(std::string const& answer);
// What stands behind the "base64:" of an answer in JSON to a question with -b; empty for an answer without a value.
std::string ParseExifToolBinary(std::string const& answer);
