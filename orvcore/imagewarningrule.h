// SPDX-License-Identifier: Apache-2.0
// One declarative check on a file: a message, a kind of comparison and a severity. The caller gives the two operands.
//
// Threading: a rule belongs to the thread that tests it. Ownership: plain values, copied and moved member-wise.
#pragma once

#include <wx/string.h>

#include <cstdint>
#include <type_traits>
#include <vector>

#include "tolbase/export.h"
#include "tolbase/image.h"
#include "tolbase/types.h"
#include "tolcore/camerasizes.h"

// What has to hold between the value a and the reference b for a file to be in order.
enum ImageWarningRuleKind : int {
    RuleGreater = 0,
    RuleLess,
    RuleGreaterEqual,
    RuleLessEqual,
    RuleEqualSilent,  // a equals b; the message tells no values
    RuleEqual,
    RuleMultipleOf,
    RulePresent,
    RuleAbsent,
    RuleExcludedWords,
    RuleRequiredWords,
    RuleAspectRatio,
    RuleNotContains,
    RuleContains,
    RuleSameDate,
    RuleLessAlso,
    RuleKnownResolution
};

class ORV_API ImageWarningRule {
public:
    // Severity 1 is hard, 0 soft. Name and description are keys of the translation catalogue.
    ImageWarningRule(ImageWarningRuleKind kind, int severity, wxString const& name,
                     wxString const& description = wxString());

    // Compares two values of one type: `int`, 64-bit integer, `bool` or text. Kinds 0 to 5 and 15 compare the values,
    // kinds 12 to 14 their texts; any other kind does not pass.
    template <typename T, typename U = T>
    void Test(T const& value, U const& reference);

    // RuleMultipleOf. A reference of 0 switches the rule off: it stays not evaluated.
    void TestMultiple(int value, int reference);

    // RuleExcludedWords and RuleRequiredWords: words are looked for anywhere in the text, without case.
    void TestWords(wxString const& text, VecString const& words);

    // RuleAspectRatio: within 0.01 of an entry of the whitelist.
    void TestAspectRatio(double ratio, std::vector<double> const& whitelist);

    // RuleKnownResolution: passes for an unknown camera and for one whose sizes are not known.
    void TestResolution(wxString const& make, wxString const& model, Resolution const& size);

    // The same against one camera's sizes.
    void TestResolution(DpReviewInfo const& camera, Resolution const& size);

    // RulePresent and RuleAbsent on a list of pictures.
    void TestPresence(std::vector<Image> const& images);

    // RulePresent and RuleAbsent on a text, which is shown as the value.
    void TestTextPresence(wxString const& text);

    // The finding as a text: the name and, for kinds that have an operator text, " (value operator reference)".
    wxString Message() const;

    // Empties both texts and both results; the operator text stays.
    void Clear();

    wxString Name;
    wxString Description;
    wxString Value;
    wxString Reference;
    wxString OperatorText;  // names the failure, not the test: "<" for a kind that asks for at least
    ImageWarningRuleKind Kind;
    int Severity;
    bool Passed = false;  // the file is in order
    bool Evaluated = false;
    DpReviewCollection Cameras;

private:
    void TestBool(bool value, bool reference);
    void TestInt(int value, int reference);
    void TestInt64(int64_t value, int64_t reference);
    void TestString(wxString const& value, wxString const& reference);
    template <typename T>
    void Compare(T const& value, T const& reference);
    bool PassesOnTexts() const;
};

// Whether two dates of the form "YYYY:MM:DD hh:mm:ss" agree: one is empty, they are equal, they differ by at most 5
// seconds, or by a whole number of hours below a day and less than 5 seconds (a time zone, not an edit).
ORV_API bool OrvDatesAgree(wxString const& first, wxString const& second);

template <typename T, typename U>
void ImageWarningRule::Test(T const& value, U const& reference) {
    if constexpr (std::is_same_v<T, bool> && std::is_same_v<U, bool>) {
        TestBool(value, reference);
    } else if constexpr (std::is_integral_v<T> && std::is_integral_v<U>) {
        static_assert(!std::is_same_v<T, bool> && !std::is_same_v<U, bool>, "a bool is compared with a bool");
        static_assert(sizeof(T) <= sizeof(int64_t) && sizeof(U) <= sizeof(int64_t));
        if constexpr (std::is_same_v<T, int> && std::is_same_v<U, int>) {
            TestInt(value, reference);
        } else {
            TestInt64(static_cast<int64_t>(value), static_cast<int64_t>(reference));
        }
    } else {
        TestString(wxString(value), wxString(reference));
    }
}
