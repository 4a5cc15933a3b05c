#include "support/QtTestSupport.h"
#include "engine/history/HistoryKey.h"

#include <QTimeZone>
#include <gtest/gtest.h>

using namespace velmora;

TEST(HistoryKey, UsesTheWeekBasedYearOfTheLocale) {
    const QDateTime newYearsEve(QDate(2026, 12, 31), QTime(23, 59, 59));
    // US weeks start on Sunday and week 1 holds January 1st.
    EXPECT_EQ(HistoryKey::format(newYearsEve, "en_US"), "2027-12-31 23-59-59");
    // ISO weeks: that Thursday and the Friday after it belong to week 53 of 2026.
    EXPECT_EQ(HistoryKey::format(newYearsEve, "de_DE"), "2026-12-31 23-59-59");
    EXPECT_EQ(HistoryKey::format(QDateTime(QDate(2027, 1, 1), QTime(0, 0, 0)), "de_DE"), "2026-01-01 00-00-00");
    EXPECT_EQ(HistoryKey::format(QDateTime(QDate(2026, 6, 15), QTime(8, 5, 3)), "en_US"), "2026-06-15 08-05-03");
}

// Keys are sorted and matched as text, so neither the Persian calendar nor
// native digits may show up in them.
TEST(HistoryKey, KeepsGregorianYearsAndLatinDigitsInEveryLocale) {
    const QDateTime when(QDate(2026, 6, 15), QTime(8, 5, 3));
    for (const char* locale : {"ar_EG", "fa_IR", "en_US_POSIX"})
        EXPECT_EQ(HistoryKey::format(when, locale), "2026-06-15 08-05-03") << locale;
}

TEST(HistoryKey, FormatsTheClockOfTheGivenTimeZone) {
    const QDateTime tokyo(QDate(2026, 3, 1), QTime(1, 2, 3), QTimeZone("Asia/Tokyo"));
    EXPECT_EQ(HistoryKey::format(tokyo, "en_US"), "2026-03-01 01-02-03");
}
