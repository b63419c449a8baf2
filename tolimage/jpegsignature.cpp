// SPDX-License-Identifier: Apache-2.0
#include "tolimage/jpegsignature.h"

#include <vector>

#include "tolimage/jpeg_signaturetable.h"

namespace {

std::vector<JpegsnoopSignature> Unpack() {
    std::vector<JpegsnoopSignature> records;
    records.reserve(kJpegSignatureCount + 1);
    const auto text = [](uint32_t offset) { return &kJpegSignaturePool[offset]; };
    for (size_t i = 0; i <= kJpegSignatureCount; ++i) {
        PackedJpegSignature const& packed = kJpegSignatures[i];
        records.push_back({packed.editorClass, text(packed.make), text(packed.model), text(packed.quality),
                           text(packed.signature), text(packed.signatureRot), text(packed.subsampling),
                           text(packed.softwareVendor), text(packed.softwareName), text(packed.tables[0]),
                           text(packed.tables[1]), text(packed.tables[2]), text(0)});
    }
    return records;
}

}  // namespace

JpegsnoopSignature const* GetInternalJpegSignatures() {
    static const std::vector<JpegsnoopSignature> records = Unpack();
    return records.data();
}

size_t GetInternalJpegSignatureCount() {
    return kJpegSignatureCount;
}
