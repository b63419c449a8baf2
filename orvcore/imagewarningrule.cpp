// SPDX-License-Identifier: Apache-2.0
#include "orvcore/imagewarningrule.h"

#include <wx/datetime.h>
#include <wx/translation.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <string>

#include "orvcore/tablewriter.h"
#include "tolbase/parser.h"
#include "tolbase/text.h"

namespace {

constexpr double AspectTolerance = 0.01;
constexpr int64_t SameMomentSeconds = 5;
constexpr int64_t SecondsPerHour = 3600;
constexpr int64_t HoursPerDay = 24;

wxString OperatorTextOf(ImageWarningRuleKind kind) {
    switch (kind) {
        case RuleGreater:
            return "<=";
        case RuleLess:
            return ">=";
        case RuleGreaterEqual:
            return "<";
        case RuleLessEqual:
            return ">";
        case RuleEqual:
            return OrvTranslate(wxTRANSLATE("different"));
        case RuleMultipleOf:
            return OrvTranslate(wxTRANSLATE("is not multiple of"));
        default:
            return wxString();
    }
}

// -1, 0 or 1 as the value is below, equal to or above the reference.
template <typename T>
int Order(T const& value, T const& reference) {
    if (value < reference) return -1;
    return reference < value ? 1 : 0;
}

int Order(wxString const& value, wxString const& reference) {
    return value.Cmp(reference);
}

bool PassesOnOrder(ImageWarningRuleKind kind, int order) {
    switch (kind) {
        case RuleGreater:
            return order > 0;
        case RuleLess:
        case RuleLessAlso:
            return order < 0;
        case RuleGreaterEqual:
            return order >= 0;
        case RuleLessEqual:
            return order <= 0;
        case RuleEqualSilent:
        case RuleEqual:
            return order == 0;
        default:
            return false;
    }
}

bool ContainsAnyWord(wxString const& text, VecString const& words) {
    const wxString lower = text.Lower();
    return std::any_of(words.begin(), words.end(),
                       [&lower](wxString const& word) { return lower.Contains(word.Lower()); });
}

// Reads a date text as seconds of Universal Time: the texts carry no zone, and the answer must not depend on the clock
// changes of the zone that the examiner's machine is in. False where the text doesn't parse.
bool ParseDate(wxString const& text, int64_t& seconds) {
    wxDateTime date;
    wxString::const_iterator end;
    if (!date.ParseFormat(text, "%Y:%m:%d %H:%M:%S", wxDefaultDateTime, &end) || !date.IsValid()) return false;
    const wxDateTime::Tm fields = date.GetTm();
    std::tm moment{};
    moment.tm_year = fields.year - 1900;
    moment.tm_mon = fields.mon;
    moment.tm_mday = fields.mday;
    moment.tm_hour = fields.hour;
    moment.tm_min = fields.min;
    moment.tm_sec = fields.sec;
    seconds = timegm(&moment);
    return true;
}

std::string Narrow(wxString const& text) {
    return std::string(text.utf8_str());
}

}  // namespace

bool OrvDatesAgree(wxString const& first, wxString const& second) {
    if (first.empty() || second.empty() || first.IsSameAs(second)) return true;
    int64_t a = 0;
    int64_t b = 0;
    if (!ParseDate(first, a) || !ParseDate(second, b)) return false;
    const int64_t seconds = std::abs(a - b);
    if (seconds <= SameMomentSeconds) return true;
    return seconds % SecondsPerHour < SameMomentSeconds && seconds / SecondsPerHour < HoursPerDay;
}

ImageWarningRule::ImageWarningRule(ImageWarningRuleKind kind, int severity, wxString const& name,
                                   wxString const& description)
    : Name(OrvTranslate(name)),
      Description(OrvTranslate(description)),
      OperatorText(OperatorTextOf(kind)),
      Kind(kind),
      Severity(severity) {}

void ImageWarningRule::TestBool(bool value, bool reference) {
    Compare(value, reference);
    Value = OrvTranslate(Value);
    Reference = OrvTranslate(Reference);
}

void ImageWarningRule::TestInt(int value, int reference) {
    Compare(value, reference);
}

void ImageWarningRule::TestInt64(int64_t value, int64_t reference) {
    Compare(value, reference);
}

void ImageWarningRule::TestString(wxString const& value, wxString const& reference) {
    Compare(value, reference);
}

template <typename T>
void ImageWarningRule::Compare(T const& value, T const& reference) {
    Value = ToString<T>(value);
    Reference = ToString<T>(reference);
    Passed = PassesOnOrder(Kind, Order(value, reference)) || PassesOnTexts();
    Evaluated = true;
}

bool ImageWarningRule::PassesOnTexts() const {
    switch (Kind) {
        case RuleNotContains:
            return !Value.Contains(Reference);
        case RuleContains:
            return Value.Contains(Reference);
        case RuleSameDate:
            return OrvDatesAgree(Value, Reference);
        default:
            return false;
    }
}

void ImageWarningRule::TestMultiple(int value, int reference) {
    if (reference == 0) return;
    Value = ToString<int>(value);
    Reference = ToString<int>(reference);
    // In 64 bits, since the smallest int has no remainder by -1.
    if (Kind == RuleMultipleOf) Passed = int64_t{value} % int64_t{reference} == 0;
    Evaluated = true;
}

void ImageWarningRule::TestWords(wxString const& text, VecString const& words) {
    Passed = false;
    Value = text;
    Reference = CatVecString(words, ", ");
    if (Kind == RuleExcludedWords) Passed = text.empty() || !ContainsAnyWord(text, words);
    if (Kind == RuleRequiredWords) Passed = words.empty() || (!text.empty() && ContainsAnyWord(text, words));
    Evaluated = true;
}

void ImageWarningRule::TestAspectRatio(double ratio, std::vector<double> const& whitelist) {
    if (Kind == RuleAspectRatio) {
        Passed = std::any_of(whitelist.begin(), whitelist.end(),
                             [ratio](double entry) { return std::fabs(ratio - entry) <= AspectTolerance; });
    }
    Evaluated = true;
}

void ImageWarningRule::TestResolution(wxString const& make, wxString const& model, Resolution const& size) {
    // An unknown camera stays one without sizes.
    DpReviewInfo camera;
    Cameras.find(Narrow(make), Narrow(model), camera);
    TestResolution(camera, size);
}

void ImageWarningRule::TestResolution(DpReviewInfo const& camera, Resolution const& size) {
    Passed = camera.getResolutions().empty() || camera.hasResolution(size);
    if (!Passed) {
        Value = ToString<int>(size.longSide) + " x " + ToString<int>(size.shortSide);
        Reference = wxString::FromUTF8(camera.getReferenceUrl());
        OperatorText = "is not listed at";
    }
    Evaluated = true;
}

void ImageWarningRule::TestPresence(std::vector<Image> const& images) {
    Value = OrvTranslate(images.empty() ? wxTRANSLATE("Not present") : wxTRANSLATE("Present"));
    Passed = (Kind == RulePresent && !images.empty()) || (Kind == RuleAbsent && images.empty());
    Evaluated = true;
}

void ImageWarningRule::TestTextPresence(wxString const& text) {
    Value = text;
    Passed = (Kind == RulePresent && !text.empty()) || (Kind == RuleAbsent && text.empty());
    Evaluated = true;
}

wxString ImageWarningRule::Message() const {
    if (OperatorText.empty() || Kind == RuleEqualSilent) return Name;
    return Name + " (" + Value + " " + OperatorText + " " + Reference + ")";
}

void ImageWarningRule::Clear() {
    Value.clear();
    Reference.clear();
    Passed = false;
    Evaluated = false;
}
