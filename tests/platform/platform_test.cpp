#include "TempDataDir.h"
#include "engine/platform/PropertyList.h"
#include "engine/platform/StandardPaths.h"
#include "engine/platform/SteadyWiperBase.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTimeZone>
#include <gtest/gtest.h>

using namespace velmora;

TEST(PropertyList, RoundTripsNestedValuesThroughXml) {
    const QVariantMap original{
        {"name", "Stick"},
        {"size", qint64(8'000'000'000)},
        {"negative", qint64(-5)},
        {"ejectable", true},
        {"ratio", 0.25},
        {"blob", QByteArray("\x00\x01\xff", 3)},
        {"when", QDateTime(QDate(2026, 11, 21), QTime(10, 30, 0), QTimeZone::utc())},
        {"list", QVariantList{"a", qint64(2), QVariantMap{{"k", "v"}}}},
    };
    const QVariant parsed = propertyListFromData(propertyListToXml(original));
    EXPECT_EQ(parsed.toMap(), original);
}

TEST(PropertyList, UnreadableInputGivesNothing) {
    EXPECT_FALSE(propertyListFromData("not a plist").isValid());
    EXPECT_FALSE(propertyListFromData({}).isValid());
    EXPECT_FALSE(propertyListFromFile("/nonexistent/file.plist").isValid());
}

TEST(SteadyWiperBase, SeedsFromTemplateAndRewritesWholeDictionary) {
    TempDataDir data;
    qputenv("USER", "alice");
    const QVariantMap seeded = SteadyWiperBase::read();
    EXPECT_EQ(seeded.value("WipeFileHistory").toString(), "0");
    EXPECT_EQ(seeded.value("WipeVolumeHistory").toString(), "0");
    EXPECT_EQ(seeded.value("USERNAME").toString(), "alice");
    EXPECT_FALSE(seeded.value("VersionCheck").toString().isEmpty());
    EXPECT_FALSE(seeded.value("Link").toMap().value("IniURL").toString().isEmpty());

    ASSERT_TRUE(SteadyWiperBase::setStringValue("WipeFileHistory", "1"));
    const QVariantMap changed = SteadyWiperBase::read();
    EXPECT_EQ(changed.value("WipeFileHistory").toString(), "1");
    // Changing one key keeps every other entry, the nested dictionary included.
    EXPECT_EQ(changed.value("Link"), seeded.value("Link"));
    EXPECT_EQ(changed.value("USERNAME"), seeded.value("USERNAME"));
    // Only the settings file is left behind: the rewrite went through a temporary file.
    EXPECT_EQ(QDir(data.path()).entryList({"SteadyWiperBase*"}, QDir::Files | QDir::Hidden),
              QStringList{"SteadyWiperBase.plist"});
}

TEST(SteadyWiperBase, ExistingUserCopyIsNotReseeded) {
    TempDataDir data;
    ASSERT_TRUE(writePropertyListAtomically(data.path() + "/SteadyWiperBase.plist", QVariantMap{{"USERNAME", "bob"}}));
    EXPECT_EQ(SteadyWiperBase::stringValue("USERNAME"), "bob");
    EXPECT_TRUE(SteadyWiperBase::stringValue("WipeFileHistory").isEmpty());
}

TEST(StandardPaths, EnvironmentRedirectsRootsAndLayout) {
    TempDataDir data;
    EXPECT_EQ(StandardPaths::dataDir(), data.path());
    qputenv("VELMORA_ROOT", "/tmp/fakeroot/");
    qputenv("VELMORA_HOME", "/tmp/fakehome");
    qputenv("VELMORA_LAYOUT", "macos");
    EXPECT_EQ(StandardPaths::systemRoot(), "/tmp/fakeroot");
    EXPECT_EQ(StandardPaths::preferencesDir(), "/tmp/fakehome/Library/Preferences");
    EXPECT_EQ(StandardPaths::applicationsDirs().first(), "/tmp/fakeroot/Applications");
    EXPECT_EQ(StandardPaths::volumesRoot(), "/Volumes");
    EXPECT_EQ(StandardPaths::diskUtilPath(), "/usr/sbin/diskutil");
    qputenv("VELMORA_LAYOUT", "linux");
    EXPECT_EQ(StandardPaths::preferencesDir(), "/tmp/fakehome/.config");
    EXPECT_EQ(StandardPaths::cachesDir(), "/tmp/fakehome/.cache");
    EXPECT_TRUE(StandardPaths::volumesRoot().isEmpty());
    EXPECT_TRUE(StandardPaths::diskUtilPath().endsWith("velmora-diskutil"));
    qunsetenv("VELMORA_ROOT");
    qunsetenv("VELMORA_HOME");
    qunsetenv("VELMORA_LAYOUT");
    EXPECT_EQ(StandardPaths::systemRoot(), "/");
}
