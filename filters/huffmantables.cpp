// SPDX-License-Identifier: Apache-2.0
#include "filters/huffmantables.h"

OrvFilterHuffmanTables::OrvFilterHuffmanTables()
    : OrvFilterTable("JPEG Huffman Tables", std::make_unique<JpegInfoTableComparison2>()) {
    m_onlyForJpeg = true;
    m_description =
        "Lists the number of Huffman codes of each length for the picture, its thumbnail and its preview, and tells "
        "whether the tables are the standard ones.";
}
