// SPDX-License-Identifier: Apache-2.0
#include "tolbase/timetext.h"

#include <array>
#include <chrono>
#include <ctime>

#include "tolbase/numbertext.h"
#include "tolbase/text.h"

namespace {

constexpr int64_t SecondMs = 1000;
constexpr int64_t MinuteMs = 60 * SecondMs;
constexpr int64_t HourMs = 60 * MinuteMs;
constexpr int64_t DayMs = 24 * HourMs;

wxString Padded(int64_t number, std::size_t width) {
    wxString digits = tolbase::NumberToText(number);
    while (digits.length() < width) digits.insert(0, "0");
    return digits;
}

int64_t FloorDivide(int64_t number, int64_t divisor) {
    const int64_t quotient = number / divisor;
    return number % divisor < 0 ? quotient - 1 : quotient;
}

struct Date {
    int64_t year;
    int month;
    int day;
};

bool IsLeap(int64_t year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

int DaysInMonth(int64_t year, int month) {
    constexpr std::array<int, 12> days = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && IsLeap(year) ? 29 : days[static_cast<std::size_t>(month - 1)];
}

// Days from 1970-01-01 of the Gregorian calendar. Years begin in March here, so that the leap day stands at a year's
// end; 400 years have 146097 days.
int64_t DaysFromDate(const Date& date) {
    const int64_t year = date.month <= 2 ? date.year - 1 : date.year;
    const int64_t era = FloorDivide(year, 400);
    const int64_t yearOfEra = year - era * 400;
    const int64_t month = (date.month + 9) % 12;
    const int64_t dayOfYear = (153 * month + 2) / 5 + date.day - 1;
    return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719468;
}

Date DateFromDays(int64_t days) {
    const int64_t shifted = days + 719468;
    const int64_t era = FloorDivide(shifted, 146097);
    const int64_t dayOfEra = shifted - era * 146097;
    const int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int64_t month = (5 * dayOfYear + 2) / 153;
    const int day = static_cast<int>(dayOfYear - (153 * month + 2) / 5 + 1);
    const int civilMonth = static_cast<int>(month < 10 ? month + 3 : month - 9);
    return {yearOfEra + era * 400 + (civilMonth <= 2 ? 1 : 0), civilMonth, day};
}

// Walks through a text; every reading operation gives false, and moves nothing, where the text has something else.
class Cursor {
public:
    explicit Cursor(const wxString& text) : m_text(TolToUtf8(text)) {}

    bool Char(char c) {
        if (m_at >= m_text.size() || m_text[m_at] != c) return false;
        ++m_at;
        return true;
    }
    // At least `least` and at most `most` digits.
    bool Number(std::size_t least, std::size_t most, int64_t& number) {
        std::size_t end = m_at;
        int64_t value = 0;
        while (end < m_text.size() && end - m_at < most && m_text[end] >= '0' && m_text[end] <= '9')
            value = value * 10 + (m_text[end++] - '0');
        if (end - m_at < least) return false;
        m_digits = end - m_at;
        m_at = end;
        number = value;
        return true;
    }
    std::size_t Digits() const { return m_digits; }
    bool Rest(const char* text) const { return m_text.compare(m_at, std::string::npos, text) == 0; }

private:
    std::string m_text;
    std::size_t m_at = 0;
    std::size_t m_digits = 0;
};

bool ReadDate(Cursor& cursor, int64_t& milliseconds) {
    const bool negative = cursor.Char('-');
    int64_t year = 0;
    int64_t month = 0;
    int64_t day = 0;
    const bool read = cursor.Number(4, 9, year) && cursor.Char('-') && cursor.Number(2, 2, month) && cursor.Char('-') &&
                      cursor.Number(2, 2, day);
    if (!read || month < 1 || month > 12 || day < 1) return false;
    if (negative) year = -year;
    if (day > DaysInMonth(year, static_cast<int>(month))) return false;
    const int64_t days = DaysFromDate({year, static_cast<int>(month), static_cast<int>(day)});
    constexpr int64_t most = INT64_MAX / DayMs - 1;
    if (days > most || days < -most) return false;
    milliseconds = days * DayMs;
    return true;
}

bool ReadTime(Cursor& cursor, int64_t& milliseconds) {
    int64_t hour = 0;
    int64_t minute = 0;
    int64_t second = 0;
    const bool read = cursor.Number(2, 2, hour) && cursor.Char(':') && cursor.Number(2, 2, minute) &&
                      cursor.Char(':') && cursor.Number(2, 2, second);
    if (!read || hour > 23 || minute > 59 || second > 59) return false;
    int64_t fraction = 0;
    if (cursor.Char('.')) {
        if (!cursor.Number(1, 3, fraction)) return false;
        for (std::size_t i = cursor.Digits(); i < 3; ++i) fraction *= 10;
    }
    milliseconds = hour * HourMs + minute * MinuteMs + second * SecondMs + fraction;
    return true;
}

}  // namespace

wxString DateTimeNowAsString() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const int64_t milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
    const auto seconds = static_cast<std::time_t>(FloorDivide(milliseconds, SecondMs));
    std::tm local{};
    localtime_r(&seconds, &local);
    return Padded(local.tm_year + 1900, 4) + "-" + Padded(local.tm_mon + 1, 2) + "-" + Padded(local.tm_mday, 2) + "_" +
           Padded(local.tm_hour, 2) + "-" + Padded(local.tm_min, 2) + "-" + Padded(local.tm_sec, 2) + "." +
           Padded(milliseconds - static_cast<int64_t>(seconds) * SecondMs, 3);
}

wxString MillisecondsToTimeString(int64_t milliseconds) {
    // Negated part by part: the smallest number has no positive one.
    const int64_t sign = milliseconds < 0 ? -1 : 1;
    return wxString(sign < 0 ? "-" : "") + Padded(milliseconds / HourMs * sign, 1) + ":" +
           Padded(milliseconds % HourMs / MinuteMs * sign, 2) + ":" +
           Padded(milliseconds % MinuteMs / SecondMs * sign, 2) + "." + Padded(milliseconds % SecondMs * sign, 3);
}

wxString MillisecondsFromEpochToDateTimeString(int64_t milliseconds) {
    const int64_t days = FloorDivide(milliseconds, DayMs);
    // Not days * DayMs: that may fall below the smallest number.
    const int64_t rest = milliseconds % DayMs;
    const int64_t inDay = rest < 0 ? rest + DayMs : rest;
    const Date date = DateFromDays(days);
    wxString text = date.year < 0 ? "-" + Padded(-date.year, 4) : Padded(date.year, 4);
    text += "-" + Padded(date.month, 2) + "-" + Padded(date.day, 2) + " " + Padded(inDay / HourMs, 2) + ":" +
            Padded(inDay % HourMs / MinuteMs, 2) + ":" + Padded(inDay % MinuteMs / SecondMs, 2);
    if (inDay % SecondMs != 0) text += "." + Padded(inDay % SecondMs, 3);
    return text + " UTC";
}

int64_t StringToMillisecondsFromEpoch(const wxString& text) {
    const wxString trimmed = Trim(text);
    int64_t number = 0;
    if (tolbase::TextToNumber(trimmed, number)) return number;
    Cursor cursor(trimmed);
    int64_t date = 0;
    if (!ReadDate(cursor, date)) return 0;
    if (cursor.Rest("")) return date;
    int64_t time = 0;
    if (!cursor.Char(' ') && !cursor.Char('T')) return 0;
    if (!ReadTime(cursor, time)) return 0;
    return cursor.Rest("") || cursor.Rest("Z") || cursor.Rest(" UTC") ? date + time : 0;
}
