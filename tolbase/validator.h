// SPDX-License-Identifier: Apache-2.0
// What a Parameter knows of the type of its value: conversions, the check of a new value, equality.
//
// Validators are immutable after construction and shared by the copies of a parameter: any thread may use one.
#pragma once
#include <boost/any.hpp>
#include <cmath>
#include <limits>
#include <memory>
#include <typeinfo>
#include <utility>

#include "tolbase/exception.h"
#include "tolbase/export.h"
#include "tolbase/parser.h"

class ORV_API Validator {
public:
    explicit Validator(const wxString& text = wxString()) : m_text(text) {}
    virtual ~Validator();

    virtual wxJSONValue ValueToJson(const boost::any& value) const;
    // Both give an empty any for what can't be read as a value of the type.
    virtual boost::any JsonToValue(const wxJSONValue& json) const;
    virtual boost::any TextToValue(const wxString& text) const;
    virtual wxString ValueToText(const boost::any& value) const;
    virtual wxString ValueToReport(const boost::any& value) const;
    virtual wxString ValueToPlainText(const boost::any& value) const;
    // A copy of a value that the parameter may hold. Throws TolException (61) for another type or one out of range.
    virtual boost::any CheckedCopy(const boost::any& value) const = 0;
    // Throws TolException (61) if one of the two is of another type.
    virtual bool AreEqual(const boost::any& left, const boost::any& right) const = 0;

    // Numbers only: all others throw TolException (61).
    virtual double GetMinimum() const;
    virtual double GetMaximum() const;
    virtual double GetStep() const;
    virtual double ValueToNumber(const boost::any& value) const;
    virtual boost::any NumberToValue(double number) const;

    virtual std::unique_ptr<Validator> Clone() const = 0;

    virtual bool IsNumeric() const { return false; }
    virtual bool IsBounded() const { return false; }

    // A text that the kind of parameter needs beside its value, such as the caption of a file dialog.
    const wxString& GetText() const { return m_text; }

protected:
    Validator(const Validator&) = default;
    Validator& operator=(const Validator&) = default;

    wxString m_text;
};

// The value as T; throws TolException (61) if it is of another type.
template <class T>
const T& AnyCast(const boost::any& value) {
    const T* typed = boost::any_cast<T>(&value);
    if (typed == nullptr) throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorWrongType, wxString());
    return *typed;
}

template <class T>
class ValidatorTyped : public Validator {
public:
    explicit ValidatorTyped(const wxString& text = wxString()) : Validator(text) {}

    wxJSONValue ValueToJson(const boost::any& value) const override { return ::ToJson<T>(AnyCast<T>(value)); }
    boost::any JsonToValue(const wxJSONValue& json) const override {
        T value{};
        return ::TryFromJson<T>(json, value) ? boost::any(value) : boost::any();
    }
    boost::any TextToValue(const wxString& text) const override {
        T value{};
        return ::TryFromString<T>(text, value) ? boost::any(value) : boost::any();
    }
    wxString ValueToText(const boost::any& value) const override { return ::ToString<T>(AnyCast<T>(value)); }
    wxString ValueToReport(const boost::any& value) const override { return ::ToStringReport<T>(AnyCast<T>(value)); }
    wxString ValueToPlainText(const boost::any& value) const override { return ::ToString<T>(AnyCast<T>(value)); }
    boost::any CheckedCopy(const boost::any& value) const override { return boost::any(AnyCast<T>(value)); }
    bool AreEqual(const boost::any& left, const boost::any& right) const override {
        return AnyCast<T>(left) == AnyCast<T>(right);
    }
    std::unique_ptr<Validator> Clone() const override { return std::make_unique<ValidatorTyped<T>>(*this); }
};

// A finite number, with or without bounds. An unbounded one has the type's own range.
template <class T>
class ValidatorNumber : public ValidatorTyped<T> {
public:
    ValidatorNumber() = default;
    // Both bounds belong to the range. `step` is the distance of the values that a filter tries.
    ValidatorNumber(T minimum, T maximum, T step)
        : m_minimum(minimum), m_maximum(maximum), m_step(step), m_bounded(true) {}

    boost::any CheckedCopy(const boost::any& value) const override {
        const T number = AnyCast<T>(value);
        const bool finite = std::isfinite(static_cast<double>(number));
        if (!finite || number < m_minimum || number > m_maximum)
            throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorWrongType, wxString());
        return boost::any(number);
    }
    double GetMinimum() const override { return static_cast<double>(m_minimum); }
    double GetMaximum() const override { return static_cast<double>(m_maximum); }
    double GetStep() const override { return static_cast<double>(m_step); }
    double ValueToNumber(const boost::any& value) const override { return static_cast<double>(AnyCast<T>(value)); }
    // An empty any for a number out of the range.
    boost::any NumberToValue(double number) const override {
        if (!(number >= GetMinimum() && number <= GetMaximum())) return boost::any();
        // The largest 64-bit integer has no double of its own: the next one above would not fit.
        if (std::numeric_limits<T>::is_integer && number >= 9223372036854775807.0) return boost::any(m_maximum);
        return boost::any(static_cast<T>(number));
    }
    std::unique_ptr<Validator> Clone() const override { return std::make_unique<ValidatorNumber<T>>(*this); }
    bool IsNumeric() const override { return true; }
    bool IsBounded() const override { return m_bounded; }

private:
    T m_minimum = std::numeric_limits<T>::lowest();
    T m_maximum = std::numeric_limits<T>::max();
    T m_step = std::numeric_limits<T>::is_integer ? T(1) : T(0);
    bool m_bounded = false;
};

// One of several texts; the value is the int index. Its text, report and JSON forms are the selected text.
class ORV_API ValidatorOption : public ValidatorTyped<int> {
public:
    explicit ValidatorOption(VecString options) : m_options(std::move(options)) {}

    wxJSONValue ValueToJson(const boost::any& value) const override;
    boost::any JsonToValue(const wxJSONValue& json) const override;
    boost::any TextToValue(const wxString& text) const override;
    // An index that was set unchecked past the list reads as its digits.
    wxString ValueToText(const boost::any& value) const override;
    wxString ValueToReport(const boost::any& value) const override;
    wxString ValueToPlainText(const boost::any& value) const override;
    boost::any CheckedCopy(const boost::any& value) const override;
    std::unique_ptr<Validator> Clone() const override;

    const VecString& GetOptions() const { return m_options; }

private:
    VecString m_options;
};
