#include "support/QtTestSupport.h"
#include "support/TempDataDir.h"
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

TEST(PropertyList, NulByteEndsStringOrKeyInsteadOfAborting) {
    // A NUL byte inside a string or key, in either format, ends it; the reader must not abort.
    const QByteArray xml("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">"
                         "<dict><key>a</key><string>x\0y</string></dict></plist>",
                         113);
    const QByteArray binary("bplist00\xd1\x01\x02\x51\x61\x53\x78\x00\x79\x08\x0b\x0d\x00\x00\x00\x00\x00\x00"
                            "\x01\x01\x00\x00\x00\x00\x00\x00\x00\x03\x00\x00\x00\x00\x00\x00\x00\x00"
                            "\x00\x00\x00\x00\x00\x00\x00\x11",
                            52);
    for (const QByteArray& bytes : {xml, binary})
        EXPECT_EQ(propertyListFromData(bytes).toMap().value("a").toString(), "x");

    // A binary list's UTF-16 key may hold one too: {"\u00e9\0<&>": "v"}.
    const QByteArray utf16Key("bplist00\xd1\x01\x02\x65\x00\xe9\x00\x00\x00\x3c\x00\x26\x00\x3e\x51\x76\x08\x0b\x16"
                              "\x00\x00\x00\x00\x00\x00\x01\x01\x00\x00\x00\x00\x00\x00\x00\x03\x00\x00\x00\x00"
                              "\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x18",
                              59);
    const QVariantMap map = propertyListFromData(utf16Key).toMap();
    EXPECT_EQ(map.keys(), QStringList{QString::fromUtf8("\xc3\xa9")});
    EXPECT_EQ(map.first().toString(), "v");
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
    {
        const test::ScopedEnv root("VELMORA_ROOT", "/tmp/fakeroot/");
        const test::ScopedEnv home("VELMORA_HOME", "/tmp/fakehome");
        const test::ScopedEnv macos("VELMORA_LAYOUT", "macos");
        EXPECT_EQ(StandardPaths::systemRoot(), "/tmp/fakeroot");
        EXPECT_EQ(StandardPaths::preferencesDir(), "/tmp/fakehome/Library/Preferences");
        EXPECT_EQ(StandardPaths::applicationsDirs().first(), "/tmp/fakeroot/Applications");
        EXPECT_EQ(StandardPaths::volumesRoot(), "/Volumes");
        EXPECT_EQ(StandardPaths::diskUtilPath(), "/usr/sbin/diskutil");
        const test::ScopedEnv linux("VELMORA_LAYOUT", "linux");
        EXPECT_EQ(StandardPaths::preferencesDir(), "/tmp/fakehome/.config");
        EXPECT_EQ(StandardPaths::cachesDir(), "/tmp/fakehome/.cache");
        EXPECT_TRUE(StandardPaths::volumesRoot().isEmpty());
        EXPECT_TRUE(StandardPaths::diskUtilPath().endsWith("velmora-diskutil"));
    }
    EXPECT_EQ(StandardPaths::systemRoot(), "/");
}
