// SPDX-License-Identifier: Apache-2.0
// Points in time are those of date(1).
#include "tolbase/timetext.h"

#include <unistd.h>
#include <wx/datetime.h>
#include <wx/regex.h>

#include "tests/support/tempdir.h"

TEST(TimeText, Now_SortsAndMayStandInAFileName) {
    const wxString now = DateTimeNowAsString();
    EXPECT_TRUE(wxRegEx("^[0-9]{4}-[0-9]{2}-[0-9]{2}_[0-9]{2}-[0-9]{2}-[0-9]{2}[.][0-9]{3}$").Matches(now)) << now;
    usleep(5000);
    EXPECT_LT(now, DateTimeNowAsString());
    EXPECT_EQ(wxDateTime::Now().FormatISODate(), DateTimeNowAsString().Left(10));
}

TEST(TimeText, Durations) {
    EXPECT_EQ(wxString("0:00:00.000"), MillisecondsToTimeString(0));
    EXPECT_EQ(wxString("0:00:01.250"), MillisecondsToTimeString(1250));
    EXPECT_EQ(wxString("0:01:01.000"), MillisecondsToTimeString(61000));
    EXPECT_EQ(wxString("1:01:01.001"), MillisecondsToTimeString(3661001));
    EXPECT_EQ(wxString("100:00:00.000"), MillisecondsToTimeString(360000000));
    EXPECT_EQ(wxString("-0:00:00.001"), MillisecondsToTimeString(-1));
    EXPECT_EQ(wxString("-2562047788015:12:55.808"), MillisecondsToTimeString(INT64_MIN));
}

TEST(TimeText, Points_AreInUtc) {
    EXPECT_EQ(wxString("1970-01-01 00:00:00 UTC"), MillisecondsFromEpochToDateTimeString(0));
    EXPECT_EQ(wxString("2017-07-14 02:40:00 UTC"), MillisecondsFromEpochToDateTimeString(1500000000000));
    EXPECT_EQ(wxString("2000-02-29 12:00:00.005 UTC"), MillisecondsFromEpochToDateTimeString(951825600005));
    EXPECT_EQ(wxString("1969-12-31 23:59:59 UTC"), MillisecondsFromEpochToDateTimeString(-1000));
    EXPECT_EQ(wxString("1969-12-31 23:59:59.999 UTC"), MillisecondsFromEpochToDateTimeString(-1));
    EXPECT_EQ(wxString("9999-12-31 23:59:59 UTC"), MillisecondsFromEpochToDateTimeString(253402300799000));
    EXPECT_EQ(wxString("1600-03-01 00:00:00 UTC"), MillisecondsFromEpochToDateTimeString(-11670912000000));
}

TEST(TimeText, Points_ReadBack) {
    for (const int64_t point : {INT64_C(0), INT64_C(-1), INT64_C(951825600005), INT64_C(1500000000000),
                                INT64_C(253402300799000), INT64_C(-11670912000000), INT64_C(-99999999999999)})
        EXPECT_EQ(point, StringToMillisecondsFromEpoch(MillisecondsFromEpochToDateTimeString(point)));
}

TEST(TimeText, OtherForms_AreRead) {
    EXPECT_EQ(1500000000000, StringToMillisecondsFromEpoch("1500000000000"));
    EXPECT_EQ(-5, StringToMillisecondsFromEpoch("-5"));
    EXPECT_EQ(1499990400000, StringToMillisecondsFromEpoch("2017-07-14"));
    EXPECT_EQ(1500000000500, StringToMillisecondsFromEpoch(" 2017-07-14T02:40:00.5Z "));
    EXPECT_EQ(1500000000000, StringToMillisecondsFromEpoch("2017-07-14 02:40:00"));
}

TEST(TimeText, WhatIsNoTime_IsZero) {
    for (const char* text :
         {"", "yesterday", "2017-13-01", "2017-02-29", "2017-00-10", "2017-07-14 24:00:00", "2017-07-14 02:60:00",
          "2017-07-14 02:40", "2017-07-14x", "2017-07-14 02:40:00 CET", "999999999-01-01", "99999999999999999999"})
        EXPECT_EQ(0, StringToMillisecondsFromEpoch(text)) << text;
}

TEST(TimeText, ExtremePoints_HaveAText) {
    EXPECT_FALSE(MillisecondsFromEpochToDateTimeString(INT64_MAX).empty());
    EXPECT_TRUE(MillisecondsFromEpochToDateTimeString(INT64_MIN).StartsWith("-"));
}
