// SPDX-License-Identifier: Apache-2.0
#include "orvcore/exifinfotable.h"

#include <vector>

#include "orvcore/context.h"
#include "tolimage/metadata.h"

ExifInfoTable::ExifInfoTable(OrvFileId fileId, bool useDetails) : OrvInfoTable(fileId), m_useDetails(useDetails) {}

VecVecString ExifInfoTable::Evaluate() {
    OrvContext* const context = GetContext();
    const wxString path = context->GetFilename(m_fileId);
    if (path.empty()) {
        Reset();
    } else if (m_useDetails) {
        m_table = context->GetImageDetails(m_fileId).Metadata;
    } else {
        std::vector<NameValueDesc> list;
        tcvLoadImageMetadata(path, list);
        for (NameValueDesc const& entry : list) m_table.push_back({entry.Name, entry.Value});
    }
    return m_table;
}

VecVecString ExifInfoTable::Reset() {
    m_table.clear();
    return GenerateTable();
}

VecVecString ExifInfoTable::GenerateTable() {
    return m_table;
}
