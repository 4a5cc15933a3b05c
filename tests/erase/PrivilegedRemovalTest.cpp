// Removal with administrator rights: the privileged helper's protocol and
// refusals, and the two rights holders on their root path (no prompt).
#include "support/EraseTestSupport.h"
#include "engine/erase/AsMDeleteExecutor.h"
#include "engine/erase/FileDeletion.h"
#include "engine/erase/KxAuthorization.h"
#include "engine/erase/PrivilegedHelper.h"
#include "engine/erase/PrivilegedHelperClient.h"

#include <QEventLoop>
#include <QTimer>
#include <sys/stat.h>

namespace velmora::test {
namespace {

class PrivilegedRemovalTest : public EraseTest {
protected:
    void SetUp() override {
        EraseTest::SetUp();
        if (geteuid() != 0) GTEST_SKIP() << "SKIPPED: needs root, so that no password prompt is involved";
    }

    // A tree of a few files and folders under the scratch folder.
    QString makeTree(const QString& name) {
        const QString root = scratch(name);
        writeFile(root + "/one.txt", "1");
        writeFile(root + "/sub/two.txt", "2");
        QDir().mkpath(root + "/sub/empty");
        return root;
    }
};

// The helper program, started directly (we are root already) instead of through pkexec.
TEST_F(PrivilegedRemovalTest, HelperRemovesExactlyTheItemAskedAndNeverFollowsALink) {
    PrivilegedHelperClient helper({binDir() + "/velmora-privileged-helper"});
    ASSERT_TRUE(helper.start());
    const auto identity = [](const QString& path) { return *TreeRemoval::identityOf(QFile::encodeName(path)); };
    const QString outside = makeTree("outside");
    const QString tree = makeTree("tree");
    ASSERT_TRUE(QFile::link(outside, tree + "/sub/to-outside"));
    ASSERT_TRUE(QFile::link(outside + "/one.txt", tree + "/to-file"));
    QByteArray reply = "unset";
    ASSERT_TRUE(helper.removeExactly(QFile::encodeName(tree), identity(tree), &reply));
    EXPECT_EQ(reply, "");
    EXPECT_FALSE(existsOnDisk(tree));
    EXPECT_TRUE(existsOnDisk(outside + "/one.txt")) << "a link inside the tree was followed";
    EXPECT_TRUE(existsOnDisk(outside + "/sub/two.txt"));

    // The item asked about was moved away and another put in its place: nothing goes.
    const QString swapped = makeTree("swapped");
    const TreeRemoval::Identity asked = identity(swapped);
    ASSERT_TRUE(QDir().rename(swapped, scratch("moved")));
    makeTree("swapped");
    ASSERT_TRUE(helper.removeExactly(QFile::encodeName(swapped), asked, &reply));
    EXPECT_TRUE(reply.contains("refused")) << reply.constData();
    EXPECT_TRUE(existsOnDisk(swapped + "/one.txt"));
    EXPECT_TRUE(existsOnDisk(scratch("moved/one.txt")));

    // The same item, reached through a folder that is a link: refused, not followed.
    ASSERT_TRUE(QFile::link(scratch("moved"), scratch("via-link")));
    ASSERT_TRUE(helper.removeExactly(QFile::encodeName(scratch("via-link/sub")), identity(scratch("moved/sub")), &reply));
    EXPECT_FALSE(reply.isEmpty());
    EXPECT_TRUE(existsOnDisk(scratch("moved/sub/two.txt")));

    const QString kept = makeTree("kept");
    for (const QByteArray& path : {QByteArray("/"), QByteArray("//"), QByteArray("relative/path"), QByteArray(""),
                                   QFile::encodeName(kept) + "/..", QFile::encodeName(kept) + "/./one.txt"}) {
        ASSERT_TRUE(helper.removeExactly(path, identity(kept), &reply)) << path.constData();
        EXPECT_TRUE(reply.startsWith("refused")) << path.constData() << " -> " << reply.constData();
    }
    EXPECT_TRUE(PrivilegedHelper::answer("12 not-a-number " + QFile::encodeName(kept)).startsWith("refused"));
    EXPECT_TRUE(existsOnDisk(kept + "/one.txt"));

    // A removal that fails is reported, not taken for success.
    const QString locked = scratch("locked.txt");
    writeFile(locked, "x");
    if (makeImmutable(locked)) {
        ASSERT_TRUE(helper.removeExactly(QFile::encodeName(locked), identity(locked), &reply));
        EXPECT_TRUE(reply.contains("cannot remove")) << reply.constData();
    }
    EXPECT_EQ(helper.stop(), 0);
    EXPECT_FALSE(helper.isRunning());
    EXPECT_FALSE(helper.removeExactly("/tmp/anything", {}, &reply));
}

// Making an item deletable gives its owner the write permission and nothing more, and
// a link is refused rather than followed to its target.
TEST_F(PrivilegedRemovalTest, OwnerWriteIsAddedWithoutFollowingLinksOrWideningTheMode) {
    const QString folder = scratch("read-only");
    QDir().mkpath(folder);
    ASSERT_EQ(chmod(QFile::encodeName(folder).constData(), 0500), 0);
    EXPECT_TRUE(FileDeletion::addOwnerWrite(folder));
    struct stat status;
    ASSERT_EQ(stat(QFile::encodeName(folder).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700u);

    const QString target = scratch("target.txt");
    writeFile(target, "t");
    ASSERT_EQ(chmod(QFile::encodeName(target).constData(), 0444), 0);
    const QString link = scratch("link");
    ASSERT_TRUE(QFile::link(target, link));
    EXPECT_FALSE(FileDeletion::addOwnerWrite(link));
    ASSERT_EQ(stat(QFile::encodeName(target).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0444u) << "the link's target was changed";
}

TEST_F(PrivilegedRemovalTest, HelperThatNeverGreetsIsNotStarted) {
    // As pkexec does when the password prompt is dismissed: the launcher ends without a helper.
    PrivilegedHelperClient dismissed({"sh", "-c", "exit 126"});
    int exitStatus = 0;
    EXPECT_FALSE(dismissed.start(&exitStatus));
    EXPECT_EQ(exitStatus, 126);
    EXPECT_FALSE(dismissed.isRunning());
}

TEST_F(PrivilegedRemovalTest, KxAuthorizationRemovesTreesAndRefusesRootAndRelativePaths) {
    const QString tree = makeTree("tree");
    EXPECT_TRUE(KxAuthorization::removeItemAtPath(tree));
    EXPECT_FALSE(existsOnDisk(tree));
    EXPECT_FALSE(KxAuthorization::removeItemAtPath("/"));
    EXPECT_FALSE(KxAuthorization::removeItemAtPath("relative"));

    // A path longer than the 260-byte minimum buffer still fits its own length.
    QString deep = scratch("");
    while (deep.size() < 300) deep += "/" + QString(40, 'd');
    writeFile(deep + "/leaf.txt", "l");
    ASSERT_GE(deep.size(), 300);
    EXPECT_TRUE(KxAuthorization::removeItemAtPath(deep));
    EXPECT_FALSE(existsOnDisk(deep));

    KxAuthorization* shared = KxAuthorization::shareKxAuthorization();
    EXPECT_EQ(shared, KxAuthorization::shareKxAuthorization());
    const QString file = scratch("plain.txt");
    writeFile(file, "p");
    EXPECT_TRUE(shared->synFastRemovePath(file));
    EXPECT_FALSE(existsOnDisk(file));
    const QString locked = scratch("locked.txt");
    writeFile(locked, "x");
    if (!makeImmutable(locked)) GTEST_SKIP() << "SKIPPED: the file system does not take the immutable flag";
    // Neither the ordinary nor the privileged delete may remove an immutable file.
    EXPECT_FALSE(shared->synFastRemovePath(locked));
    EXPECT_TRUE(existsOnDisk(locked));
}

TEST_F(PrivilegedRemovalTest, ExecutorReportsEachItemFromTheBackground) {
    const QString tree = makeTree("tree");
    const QString file = scratch("file.txt");
    writeFile(file, "f");
    const QString locked = scratch("locked.txt");
    writeFile(locked, "x");
    const bool haveLocked = makeImmutable(locked);

    LogCapture log;
    QList<QUrl> removed, failed;
    {
        AsMDeleteExecutor executor;
        QEventLoop loop;
        const int expected = haveLocked ? 3 : 2;
        auto count = [&] {
            if (removed.size() + failed.size() == expected) loop.quit();
        };
        QObject::connect(&executor, &AsMDeleteExecutor::deleteRelatedFile, &loop, [&](const QUrl& url) {
            removed.append(url);
            count();
        });
        QObject::connect(&executor, &AsMDeleteExecutor::deleteRelatedFileFail, &loop, [&](const QUrl& url) {
            failed.append(url);
            count();
        });
        QTimer::singleShot(60000, &loop, &QEventLoop::quit);
        QList<QUrl> urls = {QUrl::fromLocalFile(tree), QUrl::fromLocalFile(file)};
        if (haveLocked) urls.append(QUrl::fromLocalFile(locked));
        executor.executeDelete(urls);
        loop.exec();
    }
    EXPECT_EQ(removed, (QList<QUrl>{QUrl::fromLocalFile(tree), QUrl::fromLocalFile(file)}));
    EXPECT_FALSE(existsOnDisk(tree));
    EXPECT_FALSE(existsOnDisk(file));
    if (!haveLocked) GTEST_SKIP() << "SKIPPED (failure path): the file system does not take the immutable flag";
    EXPECT_EQ(failed, QList<QUrl>{QUrl::fromLocalFile(locked)});
    EXPECT_TRUE(log.lines().contains("Clean file by authorization failed: " + locked));
}

}  // namespace
}  // namespace velmora::test
