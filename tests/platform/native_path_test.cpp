#include "engine/erase/TreeRemoval.h"
#include "engine/platform/NativePath.h"

#include <QTemporaryDir>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace velmora;

TEST(NativePath, EveryByteSequenceComesBackUnchanged) {
    const QByteArray names[] = {
        "plain.txt",
        "bad\xff\xfename",                   // not UTF-8 at all
        "caf\xe9.txt",                       // Latin-1
        "\x83\x65\x83\x58\x83\x67",          // Shift-JIS
        "line\nbreak",
        "\xed\xa0\x80surrogate",             // an encoded surrogate is no valid UTF-8
        "\xc0\xafoverlong",                  // overlong "/"
        "\xf4\x90\x80\x80" "above",           // above U+10FFFF
        "cut\xe2\x82",                       // a sequence cut off at the end
        "caf\xc3\xa9 \xf0\x9f\x98\x80",      // valid two- and four-byte sequences
    };
    for (const QByteArray& name : names) EXPECT_EQ(nativePath(pathFromNative(name)), name) << name.toHex().constData();
    // Valid UTF-8 decodes as Qt decodes it, so text names stay ordinary strings.
    EXPECT_EQ(pathFromNative("caf\xc3\xa9 \xf0\x9f\x98\x80"), QString::fromUtf8("caf\xc3\xa9 \xf0\x9f\x98\x80"));
    EXPECT_FALSE(hasNonTextBytes(pathFromNative("caf\xc3\xa9")));
    EXPECT_TRUE(hasNonTextBytes(pathFromNative("caf\xe9")));
}

TEST(NativePath, DisplayAndEscapedForms) {
    const QString bad = pathFromNative("bad\xff\xfename");
    EXPECT_EQ(displayPath(bad), QString("bad\uFFFD\uFFFDname"));
    EXPECT_EQ(escapedPath(bad), "$'bad\\xff\\xfename'");
    EXPECT_EQ(escapedPath("it's\na\\b"), "$'it\\'s\\na\\\\b'");
    EXPECT_EQ(escapedPath("$'x'"), "$'$\\'x\\''");
    // Text without control characters is printed as it is, quotes and spaces included.
    EXPECT_EQ(escapedPath("my file's copy \u00e9"), "my file's copy \u00e9");
}

TEST(NativePath, OpensPathsLongerThanTheSystemLimit) {
    QTemporaryDir root;
    ASSERT_TRUE(root.isValid());
    QByteArray path = nativePath(root.path());
    int folder = open(path.constData(), O_RDONLY | O_DIRECTORY);
    const QByteArray component = QByteArray(120, 'd') + "\xff";
    for (int level = 0; level < 40; ++level) {
        ASSERT_EQ(mkdirat(folder, component.constData(), 0700), 0);
        const int next = openat(folder, component.constData(), O_RDONLY | O_DIRECTORY);
        close(folder);
        folder = next;
        path += "/" + component;
    }
    ASSERT_GT(path.size(), 4096);
    const int file = openat(folder, "deep", O_WRONLY | O_CREAT, 0600);
    ASSERT_EQ(write(file, "x", 1), 1);
    close(file);
    close(folder);

    const int opened = openLongPath(path + "/deep", O_RDONLY);
    ASSERT_GE(opened, 0) << strerror(errno);
    char byte = 0;
    EXPECT_EQ(read(opened, &byte, 1), 1);
    EXPECT_EQ(byte, 'x');
    close(opened);

    QByteArray name;
    const int containing = openContainingFolder(path + "/deep", name);
    ASSERT_GE(containing, 0);
    EXPECT_EQ(name, "deep");
    struct stat status;
    EXPECT_EQ(fstatat(containing, name.constData(), &status, AT_SYMLINK_NOFOLLOW), 0);
    close(containing);
    EXPECT_EQ(openLongPath(path + "/missing", O_RDONLY), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(openContainingFolder("/", name), -1);
    // QTemporaryDir removes by paths and cannot go this deep; the descriptor walk can.
    EXPECT_EQ(TreeRemoval::remove(nativePath(root.path())), QByteArray());
}
