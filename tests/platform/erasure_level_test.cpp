#include "support/TempDataDir.h"
#include "engine/erase/EraserLevel.h"
#include "engine/erase/PublicUtilities.h"

#include <gtest/gtest.h>

using namespace velmora;

TEST(EraserLevel, FirstStartWritesLevelOneAndLaterStartsKeepTheChoice) {
    TempDataDir data;
    EXPECT_EQ(EraserLevel::stored(), 0);
    EraserLevel::writeDefaultIfUnset();
    EXPECT_EQ(EraserLevel::stored(), 1);
    EXPECT_EQ(PublicUtilities::getEraserTimes(), "HMG Infosec Standard 5");
    EraserLevel::store(7);
    EraserLevel::writeDefaultIfUnset();
    EXPECT_EQ(EraserLevel::stored(), 7);
    EXPECT_EQ(PublicUtilities::getEraserTimes(), "DoD 5220.22-M ECE");
}

TEST(EraserLevel, StoredZeroOrNegativeRunsAsLevelOne) {
    TempDataDir data;
    for (int stored : {0, -3}) {
        EraserLevel::store(stored);
        EXPECT_EQ(EraserLevel::clamped(), 1);
        EXPECT_EQ(PublicUtilities::getEraserTimes(), "HMG Infosec Standard 5");
    }
    // No upper check: an unexpected value passes through the clamp.
    EraserLevel::store(5);
    EXPECT_EQ(EraserLevel::clamped(), 5);
}

TEST(EraserLevel, NamesAndOptionStringsPerLevel) {
    struct Row {
        int level;
        const char* name;
        const char* options;
    };
    const Row rows[] = {{1, "HMG Infosec Standard 5", "-fsvrz"},
                        {2, "Peter Gutmann's algorithm 2", "-fsvrz"},
                        {3, "U.S. Army AR380-19", "-fEvrz"},
                        {7, "DoD 5220.22-M ECE", "-fmvrz"},
                        {35, "Peter Gutmann's algorithm 35", "-fvrz"},
                        {5, "HMG Infosec Standard 5", "-fsvrz"}};
    for (const Row& row : rows) {
        EXPECT_EQ(EraserLevel::displayName(row.level), row.name) << row.level;
        EXPECT_EQ(EraserLevel::optionString(row.level, false), row.options) << row.level;
        // Solid-state media always get the single pass.
        EXPECT_EQ(EraserLevel::optionString(row.level, true), "-fsvrz") << row.level;
    }
}
