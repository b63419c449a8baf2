// SPDX-License-Identifier: Apache-2.0
#include "orvcore/socialmediasignature.h"

#include <wx/datetime.h>
#include <wx/regex.h>

#include <algorithm>
#include <utility>

#include "tolbase/hash.h"
#include "tolbase/image.h"
#include "tolbase/parser.h"
#include "tolimage/imagedetails.h"
#include "tolimage/imageio.h"
#include "tolimage/jpeginfo.h"
#include "tolimage/jpegmarkers.h"

namespace {

constexpr int kLuminanceCount = SMS_FeatureChrominance - SMS_FeatureLuminance;
constexpr int kChrominanceCount = SMS_FeatureCount - SMS_FeatureChrominance;

using QuantizationTable = std::vector<std::vector<int>>;

int CountMarkers(wxString const& file) {
    std::vector<JpegMarkerPos> const markers = FindJpegMarkers(file, InitJpegMarkers());
    // No name holds a blank, so each marker is one token.
    return static_cast<int>(std::count_if(markers.begin(), markers.end(), [](JpegMarkerPos const& marker) {
        return !marker.name.empty() && !marker.name.Contains("RST");
    }));
}

void AppendSubsampling(wxString const& notation, std::vector<int>& out) {
    wxRegEx const expression("[0-4]:([0-4]):([0-4])", wxRE_EXTENDED);
    bool const found = expression.Matches(notation);
    for (size_t const group : {1, 2}) out.push_back(found ? FromString<int>(expression.GetMatch(notation, group)) : 0);
}

// The table row by row, in the shape of `shape`; places that it lacks are left out with all behind them.
std::vector<int> Flatten(QuantizationTable const& table, QuantizationTable const& shape) {
    std::vector<int> flat;
    for (size_t row = 0; row < shape.size(); ++row) {
        for (size_t column = 0; column < shape[row].size(); ++column) {
            if (row >= table.size() || column >= table[row].size()) return flat;
            flat.push_back(table[row][column]);
        }
    }
    return flat;
}

void AppendZigZag(std::vector<int> const& flat, int count, std::vector<int>& out) {
    int const end = std::min(count, static_cast<int>(flat.size()));
    for (int k = 0; k < end; ++k) {
        auto const place = static_cast<size_t>(tcvZigZagIndex(k));
        if (place < flat.size()) out.push_back(flat[place]);
    }
}

// Empty for what is neither a text nor a number, and where the key is missing.
wxString TextOf(wxJSONValue const& value) {
    bool const isText = value.IsValid() && !value.IsNull() && !value.IsArray() && !value.IsObject();
    return isText ? value.AsString() : wxString();
}

}  // namespace

SocialMediaSignature::SocialMediaSignature(wxString const& file, wxString const& socName, wxString const& date,
                                           wxString const& featHash, std::vector<int> feature, SMS_Type type)
    : m_file(file),
      m_socialName(socName),
      m_featureHash(featHash),
      m_feature(std::move(feature)),
      m_date(date),
      m_type(type) {}

SocialMediaSignature::SocialMediaSignature(wxString const& file, wxString const& socName, JpegInfo const& info,
                                           ImageDetailsExifTool const& details, SMS_Type type, wxString const& date)
    : m_file(file), m_socialName(socName), m_type(type) {
    ComputeFeature(file, info, details, m_feature);
    Compute(date);
}

SocialMediaSignature::SocialMediaSignature(wxString const& file, wxString const& socName, SMS_Type type,
                                           wxString const& date)
    : m_file(file), m_socialName(socName), m_type(type) {
    ComputeFeature(file, m_feature);
    Compute(date);
}

// Date and hash, once file, platform and vector stand.
void SocialMediaSignature::Compute(wxString const& date) {
    m_date = date.empty() ? wxDateTime::Now().FormatISODate() : date;
    wxString text = m_file + m_socialName;
    for (int const element : m_feature) text += ToString<int>(element);
    m_featureHash = TcvCalcHashOfConcatenatedStrings({text}, "\n");
}

bool SocialMediaSignature::IsValid() const {
    return m_feature.size() == SMS_FeatureCount && !m_socialName.empty() && !m_featureHash.empty() && !m_file.empty();
}

VecString SocialMediaSignature::GetAsVecString() const {
    return {m_file, m_socialName, m_date, m_featureHash};
}

void SocialMediaSignature::ComputeFeature(wxString const& file, std::vector<int>& out) {
    JpegInfo info;
    tcvJpegReadQuantizationAndHuffmanTables(file, info, 1, false, false);
    ComputeFeature(file, info, tcvLoadImageDetailsExifTool(file), out);
}

void SocialMediaSignature::ComputeFeature(wxString const& file, JpegInfo const& info,
                                          ImageDetailsExifTool const& details, std::vector<int>& out) {
    out.clear();
    out.push_back(info.Width);
    out.push_back(info.Height);
    Image const thumbnail(tcvLoadThumbnail(file));
    out.push_back(thumbnail.IsOk() ? thumbnail.Width() : 0);
    out.push_back(thumbnail.IsOk() ? thumbnail.Height() : 0);
    out.push_back(details.ExifFieldCount);
    out.push_back(CountMarkers(file));
    AppendSubsampling(details.ChromaSubsampling, out);
    if (info.QuantizationTables.empty()) return;
    QuantizationTable const& luminance = info.QuantizationTables[0];
    bool const hasSecond = info.QuantizationTables.size() > 1 && info.QuantizationTables[1].size() >= 2;
    QuantizationTable const& chrominance = hasSecond ? info.QuantizationTables[1] : luminance;
    AppendZigZag(Flatten(luminance, luminance), kLuminanceCount, out);
    AppendZigZag(Flatten(chrominance, luminance), kChrominanceCount, out);
}

wxJSONValue SocialMediaSignature::WriteToJson() const {
    wxJSONValue value(wxJSONTYPE_OBJECT);
    value["File"] = m_file;
    value["SocName"] = m_socialName;
    for (int const element : m_feature) value["FeatVect"].Append(element);
    value["FeatHash"] = m_featureHash;
    value["Date"] = m_date;
    return value;
}

void SocialMediaSignature::ReadFromJson(wxJSONValue const& value) {
    m_file = TextOf(value.ItemAt("File"));
    m_socialName = TextOf(value.ItemAt("SocName"));
    m_featureHash = TextOf(value.ItemAt("FeatHash"));
    m_date = TextOf(value.ItemAt("Date"));
    wxJSONValue const& elements = value.ItemAt("FeatVect");
    if (!elements.IsArray() || elements.Size() != SMS_FeatureCount) return;
    m_feature.clear();
    for (unsigned int i = 0; i < SMS_FeatureCount; ++i) m_feature.push_back(elements.ItemAt(i).AsInt());
}
