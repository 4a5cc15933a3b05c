// Removal with administrator rights: the privileged helper's protocol and
// refusals, and the two rights holders on their root path (no prompt).
#include "EraseTestSupport.h"
#include "engine/erase/AsMDeleteExecutor.h"
#include "engine/erase/KxAuthorization.h"
#include "engine/erase/PrivilegedHelper.h"
#include "engine/erase/PrivilegedHelperClient.h"

#include <QEventLoop>
#include <QTimer>

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

// velmora-cli's helper mode, started directly (we are root already) instead of through pkexec.
TEST_F(PrivilegedRemovalTest, HelperRemovesAbsolutePathsAndRefusesTheRest) {
    PrivilegedHelperClient helper({binDir() + "/velmora-cli", PrivilegedHelper::kCommandLineFlag});
    ASSERT_TRUE(helper.start());
    const QString tree = makeTree("tree");
    QByteArray reply = "unset";
    ASSERT_TRUE(helper.removeRecursively(QFile::encodeName(tree), &reply));
    EXPECT_EQ(reply, "");
    EXPECT_FALSE(existsOnDisk(tree));

    const QString kept = makeTree("kept");
    for (const QByteArray& path : {QByteArray("/"), QByteArray("//"), QByteArray("relative/path"), QByteArray(""),
                                   QFile::encodeName(kept) + "/..", QFile::encodeName(kept) + "/./one.txt"}) {
        ASSERT_TRUE(helper.removeRecursively(path, &reply)) << path.constData();
        EXPECT_TRUE(reply.startsWith("refused")) << path.constData() << " -> " << reply.constData();
    }
    EXPECT_TRUE(existsOnDisk(kept + "/one.txt"));

    // What rm prints is a failure, passed back as the reply.
    const QString locked = scratch("locked.txt");
    writeFile(locked, "x");
    if (makeImmutable(locked)) {
        ASSERT_TRUE(helper.removeRecursively(QFile::encodeName(locked), &reply));
        EXPECT_TRUE(reply.startsWith("/bin/rm: cannot remove")) << reply.constData();
    }
    EXPECT_EQ(helper.stop(), 0);
    EXPECT_FALSE(helper.isRunning());
    EXPECT_FALSE(helper.removeRecursively("/tmp/anything", &reply));
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
