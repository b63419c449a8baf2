// SPDX-License-Identifier: Apache-2.0
// Searching the list and deciding on a questioned picture.
#include "orvcore/smscollection.h"
#include "orvcore/smssearch.h"

SMS_KnnResult SMSCollection::FindKnns(std::vector<int> const& feature, size_t k) const {
    SMS_KnnResult result;
    for (sms::Match const& match : sms::FindBest(feature, m_collection, m_normalizVectMinMax, k)) {
        result.neighbours.push_back({m_collection[match.index], match.similarity});
        result.similaritySum += static_cast<float>(match.similarity);
    }
    return result;
}

SMS_KnnResult SMSCollection::FindKnns(SocialMediaSignature const& signature, size_t k) const {
    return FindKnns(signature.GetFeature(), k);
}

SMS_ClassifResult SMSCollection::ClassifyFeature(std::vector<int> const& feature, unsigned int const& k,
                                                 double const& threshold) const {
    std::vector<sms::Match> const best = sms::FindBest(feature, m_collection, m_normalizVectMinMax, sms::kSearched);
    sms::Decision const decision = sms::Decide(feature, best, m_collection, m_socialMaxSupportedRes, k, threshold);
    SMS_ClassifResult result;
    if (!decision.classified) {
        result.similarities.push_back(0.0);
        result.socialNames.push_back(wxString());
        return result;
    }
    result.status = 0;
    for (sms::Match const& match : decision.reported) {
        SocialMediaSignature const& signature = m_collection[match.index];
        result.similarities.push_back(match.similarity);
        result.socialNames.push_back(signature.GetSocialName());
        result.signatures.push_back(signature);
        result.sources.push_back(signature.GetType());
    }
    return result;
}

SMS_ClassifResult SMSCollection::ClassifyImage(wxString const& file, JpegInfo const& info,
                                               ImageDetailsExifTool const& details, int const& k,
                                               double const& threshold) const {
    SocialMediaSignature const questioned(file, wxString(), info, details, SMS_Internal, wxString());
    return ClassifyFeature(questioned.GetFeature(), static_cast<unsigned int>(k), threshold);
}
