// SPDX-License-Identifier: Apache-2.0
// The list itself: loading, saving, adding, removing.
#include "orvcore/smscollection.h"

#include <wx/filefn.h>
#include <wx/jsonreader.h>
#include <wx/jsonwriter.h>
#include <algorithm>

#include "orvcore/smssearch.h"
#include "orvcore/smstable.h"
#include "tolbase/file.h"
#include "tolbase/limits.h"
#include "tolbase/parser.h"

std::vector<SocialMediaSignature> SMSCollection::m_collection;
std::vector<std::vector<int>> SMSCollection::m_normalizVectMinMax;
std::map<wxString, uint64_t> SMSCollection::m_socialMaxSupportedRes;
bool SMSCollection::m_internalSigLoaded = false;
bool SMSCollection::m_userSigLoaded = false;

namespace {

// The file that the last reading could not take in whole; saving must not lose what it holds.
wxString& FileNotTakenWhole() {
    static wxString path;
    return path;
}

void KeepAside(wxString const& path) {
    for (int number = 1; number < 100; ++number) {
        wxString const aside = path + ".bak" + (number == 1 ? wxString() : ToString<int>(number));
        if (wxFileExists(aside)) continue;
        wxRenameFile(path, aside, false);
        return;
    }
}

}  // namespace

uint64_t SMSCollection::LoadInternalSignatures() {
    if (m_internalSigLoaded) return 0;
    size_t const before = m_collection.size();
    size_t const count = SocialMediaRecordCount;
    m_collection.reserve(before + count);
    for (size_t i = 0; i < count; ++i) {
        SocialMediaSignature signature = MakeInternalSocialMediaSignature(i);
        if (signature.IsValid()) m_collection.push_back(std::move(signature));
    }
    ComputeNormalizationParams();
    ComputeMinMaxSmpResolution();
    m_internalSigLoaded = true;
    return m_collection.size() - before;
}

uint64_t SMSCollection::LoadUserSignatures(wxString const& path) {
    if (m_userSigLoaded || !wxFileExists(path)) return 0;
    size_t const before = m_collection.size();
    Read(path);
    ComputeNormalizationParams();
    ComputeMinMaxSmpResolution();
    m_userSigLoaded = true;
    return m_collection.size() - before;
}

void SMSCollection::SaveUserSignatures(wxString const& path) {
    if (!path.empty() && path == FileNotTakenWhole() && wxFileExists(path)) {
        KeepAside(path);
        FileNotTakenWhole().clear();
    }
    if (!wxFileExists(path)) WriteFile(path, "");
    Write(path);
}

bool SMSCollection::AddEntryToDatabase(SocialMediaSignature const& signature) {
    m_collection.push_back(signature);
    ComputeNormalizationParams();
    ComputeMinMaxSmpResolution();
    return true;
}

bool SMSCollection::RemoveEntryFromDatabase(wxString const& featHash) {
    auto const found = std::find_if(m_collection.begin(), m_collection.end(),
                                    [&](SocialMediaSignature const& one) { return one.GetFeatureHash() == featHash; });
    if (found == m_collection.end()) return false;
    m_collection.erase(found);
    return true;
}

bool SMSCollection::FindEntryInDatabase(SocialMediaSignature const& signature, SMS_Type type, size_t* index) const {
    auto const found = std::find_if(m_collection.begin(), m_collection.end(), [&](SocialMediaSignature const& one) {
        return one.GetType() == type && one.GetFeatureHash() == signature.GetFeatureHash();
    });
    if (found == m_collection.end()) return false;
    if (index != nullptr) *index = static_cast<size_t>(found - m_collection.begin());
    return true;
}

VecVecString SMSCollection::GetAsVecVecString(SMS_Type type) const {
    VecVecString table;
    for (SocialMediaSignature const& signature : m_collection) {
        if (signature.GetType() == type) table.push_back(signature.GetAsVecString());
    }
    return table;
}

uint64_t SMSCollection::GetTotalNumberOfSMSInDatabase() const {
    return m_collection.size();
}

std::vector<SocialMediaSignature> const& SMSCollection::GetSignatures() const {
    return m_collection;
}

void SMSCollection::ComputeNormalizationParams() {
    sms::WidenRanges(m_collection, m_normalizVectMinMax);
}

void SMSCollection::ComputeMinMaxSmpResolution() {
    sms::RaiseSides(m_collection, m_socialMaxSupportedRes);
}

wxJSONValue SMSCollection::WriteToJson() const {
    wxJSONValue value(wxJSONTYPE_NULL);
    for (SocialMediaSignature const& signature : m_collection) {
        if (signature.GetType() == SMS_User) value["SMSCollection"].Append(signature.WriteToJson());
    }
    return value;
}

void SMSCollection::ReadFromJson(wxJSONValue const& value) {
    for (wxJSONValue const& element : value.ItemAt("SMSCollection").Elements()) {
        SocialMediaSignature signature;
        signature.ReadFromJson(element);
        signature.SetType(SMS_User);
        if (signature.IsValid()) m_collection.push_back(std::move(signature));
    }
}

void SMSCollection::Write(wxString const& path) const {
    WriteFileAtomically(path, wxJSONWriter(wxJSONWRITER_STYLED, 0, 3).WriteUtf8(WriteToJson()));
}

void SMSCollection::Read(wxString const& path) {
    FileNotTakenWhole() = path;
    std::string bytes;
    if (!ReadFileBytes(path, bytes, static_cast<size_t>(GetTolLimit(TolLimit::UserDatabaseBytes)))) return;
    constexpr char const* kMark = "\xEF\xBB\xBF";
    if (bytes.compare(0, 3, kMark) == 0) bytes.erase(0, 3);
    // The lines are joined with nothing between them.
    bytes.erase(std::remove_if(bytes.begin(), bytes.end(), [](char c) { return c == '\n' || c == '\r'; }), bytes.end());
    wxJSONReader reader;
    reader.SetLimits(static_cast<int>(std::min<uint64_t>(GetTolLimit(TolLimit::JsonDepth), wxJSON_HARD_DEPTH)),
                     static_cast<size_t>(GetTolLimit(TolLimit::UserDatabaseBytes)));
    wxJSONValue value;
    bool const isSound = reader.ParseUtf8(bytes, &value) == 0;
    size_t const before = m_collection.size();
    ReadFromJson(value);
    size_t const told = value.IsNull() ? 0 : static_cast<size_t>(std::max(1, value.ItemAt("SMSCollection").Size()));
    if (bytes.empty() || (isSound && m_collection.size() - before == told)) FileNotTakenWhole().clear();
}
