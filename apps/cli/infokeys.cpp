// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/infokeys.h"

#include <array>

namespace cli {

namespace {

constexpr std::array rowKeys = {"filename",
                                "full_path",
                                "format",
                                "format_description",
                                "image_encoded_size",
                                "image_displayed_size",
                                "image_normalized_size",
                                "aspect_ratio",
                                "number_of_channels",
                                "bpp",
                                "thumbnail_size",
                                "thumbnail_normalized_size",
                                "preview_size",
                                "preview_normalized_size",
                                "exif_rotate_tag",
                                "number_of_exif_fields",
                                "number_of_makernotes_fields",
                                "number_of_iptc_fields",
                                "number_of_xmp_fields",
                                "number_of_photoshop_fields",
                                "number_of_icc_fields",
                                "exif_make",
                                "exif_model",
                                "exif_software",
                                "serial_number",
                                "jpeg_quality",
                                "jpeg_qt_is_standard_ijg",
                                "jpeg_qt_hash",
                                "jpeg_chroma_subsampling",
                                "jpeg_ht_is_standard_ijg",
                                "exif_datetimeoriginal",
                                "exif_createdate",
                                "exif_modifydate",
                                "file_size",
                                "last_file_access",
                                "file_creation",
                                "last_file_modification",
                                "md5",
                                "sha1",
                                "sha256",
                                "sha384",
                                "sha512"};

constexpr std::array ruleKeys = {"file_size_small",
                                 "file_size_big",
                                 "resolution_low",
                                 "resolution_high",
                                 "odd_width",
                                 "odd_height",
                                 "unknown_resolution",
                                 "bits_per_pixel",
                                 "channels",
                                 "odd_aspect_ratio",
                                 "exif_missing",
                                 "exif_make_missing",
                                 "exif_model_missing",
                                 "software_editing_application",
                                 "icc_not_expected",
                                 "format_not_standard",
                                 "createdate_differs",
                                 "modifydate_differs",
                                 "file_time_differs_from_modifydate",
                                 "file_time_differs_from_datetimeoriginal",
                                 "file_time_differs_from_createdate",
                                 "compression_only_software",
                                 "compression_unknown",
                                 "compression_not_of_camera",
                                 "no_chroma_subsampling",
                                 "huffman_not_standard",
                                 "thumbnail_missing"};

static_assert(rowKeys.size() == 42 && ruleKeys.size() == 27);

}  // namespace

char const* InfoRowKey(size_t row) {
    return row < rowKeys.size() ? rowKeys[row] : nullptr;
}

char const* InfoRuleKey(size_t rule) {
    return rule < ruleKeys.size() ? ruleKeys[rule] : nullptr;
}

}  // namespace cli
