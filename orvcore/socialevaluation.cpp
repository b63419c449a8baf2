// SPDX-License-Identifier: Apache-2.0
#include "orvcore/socialevaluation.h"

#include <wx/filename.h>

#include <algorithm>
#include <charconv>
#include <set>
#include <utility>

#include "orvcore/smssearch.h"
#include "orvcore/smstable.h"
#include "tolbase/exception.h"
#include "tolbase/parser.h"

namespace {

// Letters and digits in lower case.
wxString Plain(wxString const& text) {
    wxString plain;
    for (wxUniChar const c : text.Lower()) {
        if (c.GetValue() > 127 || wxIsalnum(c)) plain += c;
    }
    return plain;
}

bool IsNone(wxString const& group) {
    return group == "none" || group.StartsWith("none:");
}

// The platform that the group means, or the group itself.
wxString PlatformOf(wxString const& group, std::set<wxString> const& platforms) {
    wxString const plain = Plain(group);
    if (IsNone(group) || plain.empty()) return group;
    auto const found = std::find_if(platforms.begin(), platforms.end(),
                                    [&](wxString const& one) { return Plain(one).StartsWith(plain); });
    return found == platforms.end() ? group : *found;
}

// The signatures that a source's samples are compared with.
struct Remaining {
    std::vector<SocialMediaSignature> list;
    sms::Ranges ranges;
    sms::LargestSides sides;
};

// The files by which a signature is known: its own, and for a modelled one the half that it has of its model's.
bool StandsFor(SocialMediaSignature const& signature, std::set<wxString> const& files,
               std::set<wxString> const& halves) {
    wxString const& file = signature.GetFile();
    if (files.count(file) != 0) return true;
    wxString half;
    return IsModelledSocialMediaFile(file, &half) && halves.count(half) != 0;
}

Remaining LeaveOut(std::vector<SocialMediaSignature> const& list, std::set<wxString> const& files,
                   std::vector<bool>& leftOut) {
    std::set<wxString> halves;
    for (wxString const& file : files) halves.insert(file.Left(kModelHalf));
    Remaining remaining;
    for (size_t i = 0; i < list.size(); ++i) {
        if (StandsFor(list[i], files, halves)) {
            leftOut[i] = true;
        } else {
            remaining.list.push_back(list[i]);
        }
    }
    sms::WidenRanges(remaining.list, remaining.ranges);
    sms::RaiseSides(remaining.list, remaining.sides);
    return remaining;
}

void Count(OrvSocialSample const& sample, Remaining const& remaining, unsigned int k, double threshold,
           OrvSocialEvaluationRow& row) {
    std::vector<sms::Match> const best =
        sms::FindBest(sample.feature, remaining.list, remaining.ranges, sms::kSearched);
    sms::Decision const decision = sms::Decide(sample.feature, best, remaining.list, remaining.sides, k, threshold);
    ++row.samples;
    if (!decision.classified) {
        ++row.notClassified;
        return;
    }
    bool isAmong = false;
    for (size_t i = 0; i < decision.reported.size(); ++i) {
        wxString const& name = remaining.list[decision.reported[i].index].GetSocialName();
        if (i == 0) ++row.named[name];
        if (i == 0 && name == row.group) ++row.right;
        isAmong = isAmong || name == row.group;
    }
    if (isAmong) ++row.rightAmong;
}

wxString Share(uint64_t part, uint64_t whole) {
    if (whole == 0) return wxString();
    char digits[32];
    auto const result =
        std::to_chars(digits, digits + sizeof digits, 100.0 * static_cast<double>(part) / static_cast<double>(whole),
                      std::chars_format::fixed, 1);
    return wxString::FromAscii(digits, static_cast<size_t>(result.ptr - digits)) + " %";
}

}  // namespace

void OrvSocialEvaluation::Add(OrvSocialEvaluation const& other) {
    auto const key = [](OrvSocialEvaluationRow const& row) { return std::make_pair(!row.isPlatform, row.group); };
    std::map<std::pair<bool, wxString>, OrvSocialEvaluationRow> all;
    for (OrvSocialEvaluation const* one : {static_cast<OrvSocialEvaluation const*>(this), &other}) {
        for (OrvSocialEvaluationRow const& row : one->rows) {
            OrvSocialEvaluationRow& sum = all[key(row)];
            sum.group = row.group;
            sum.isPlatform = row.isPlatform;
            sum.samples += row.samples;
            sum.notClassified += row.notClassified;
            sum.right += row.right;
            sum.rightAmong += row.rightAmong;
            for (auto const& [name, count] : row.named) sum.named[name] += count;
        }
    }
    rows.clear();
    for (auto& row : all) rows.push_back(std::move(row.second));
    signatures = std::max(signatures, other.signatures);
    leftOut += other.leftOut;
}

uint64_t OrvSocialEvaluation::GetNegatives() const {
    uint64_t count = 0;
    for (OrvSocialEvaluationRow const& row : rows) count += row.isPlatform ? 0 : row.samples;
    return count;
}

uint64_t OrvSocialEvaluation::GetFalsePositives() const {
    uint64_t count = 0;
    for (OrvSocialEvaluationRow const& row : rows) count += row.isPlatform ? 0 : row.samples - row.notClassified;
    return count;
}

VecVecString OrvSocialEvaluation::GetSummary() const {
    VecVecString table = {
        {"Group", "Samples", "Named rightly", "Share", "Right among several", "Share", "Not classified", "Share"}};
    for (OrvSocialEvaluationRow const& row : rows) {
        VecString cells = {row.group, ToString<uint64_t>(row.samples)};
        for (uint64_t const* part : {&row.right, &row.rightAmong, &row.notClassified}) {
            // A file from no platform has no right one.
            bool const hasMeaning = row.isPlatform || part == &row.notClassified;
            cells.push_back(hasMeaning ? ToString<uint64_t>(*part) : wxString());
            cells.push_back(hasMeaning ? Share(*part, row.samples) : wxString());
        }
        table.push_back(cells);
    }
    return table;
}

VecVecString OrvSocialEvaluation::GetConfusion() const {
    std::set<wxString> names;
    for (OrvSocialEvaluationRow const& row : rows) {
        for (auto const& [name, count] : row.named) names.insert(name);
    }
    VecVecString table = {{"Group"}};
    table[0].insert(table[0].end(), names.begin(), names.end());
    table[0].push_back("Not classified");
    for (OrvSocialEvaluationRow const& row : rows) {
        VecString cells = {row.group};
        for (wxString const& name : names) {
            auto const found = row.named.find(name);
            cells.push_back(ToString<uint64_t>(found == row.named.end() ? 0 : found->second));
        }
        cells.push_back(ToString<uint64_t>(row.notClassified));
        table.push_back(cells);
    }
    return table;
}

OrvSocialEvaluation OrvEvaluateSocialClassifier(std::vector<OrvSocialSample> const& samples,
                                                SMSCollection const& collection, bool leaveSourceOut, unsigned int k,
                                                double threshold) {
    return OrvEvaluateSocialClassifier(samples, collection.GetSignatures(), leaveSourceOut, k, threshold);
}

OrvSocialEvaluation OrvEvaluateSocialClassifier(std::vector<OrvSocialSample> const& samples,
                                                std::vector<SocialMediaSignature> const& list, bool leaveSourceOut,
                                                unsigned int k, double threshold) {
    std::set<wxString> platforms;
    for (SocialMediaSignature const& signature : list) platforms.insert(signature.GetSocialName());
    // Samples that are compared with the same signatures, by source, or each by itself.
    std::map<std::pair<wxString, size_t>, std::vector<OrvSocialSample const*>> runs;
    for (size_t i = 0; i < samples.size(); ++i) {
        bool const isAlone = !leaveSourceOut || samples[i].source.empty();
        runs[{isAlone ? wxString() : samples[i].source, isAlone ? i : 0}].push_back(&samples[i]);
    }
    OrvSocialEvaluation evaluation;
    evaluation.signatures = list.size();
    std::vector<bool> leftOut(list.size(), false);
    std::map<std::pair<bool, wxString>, OrvSocialEvaluationRow> rows;
    for (auto const& [key, run] : runs) {
        std::set<wxString> files;
        for (OrvSocialSample const* sample : run) {
            if (!sample->fileId.empty()) files.insert(sample->fileId);
        }
        Remaining const remaining = LeaveOut(list, files, leftOut);
        for (OrvSocialSample const* sample : run) {
            wxString const group = PlatformOf(sample->group, platforms);
            OrvSocialEvaluationRow& row = rows[{IsNone(group), group}];
            row.group = group;
            row.isPlatform = !IsNone(group);
            Count(*sample, remaining, k, threshold, row);
        }
    }
    for (auto& row : rows) evaluation.rows.push_back(std::move(row.second));
    evaluation.leftOut = static_cast<uint64_t>(std::count(leftOut.begin(), leftOut.end(), true));
    return evaluation;
}
