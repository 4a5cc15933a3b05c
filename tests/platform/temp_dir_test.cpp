// The per-user temporary folder: only a real folder of ours, mode 0700, is used;
// one prepared by another user or a link planted in its place is refused.
#include "support/QtTestSupport.h"
#include "support/TempDataDir.h"
#include "engine/platform/StandardPaths.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace velmora;

namespace {

constexpr uid_t kNobody = 65534;

mode_t modeOf(const QString& path) {
    struct stat info;
    return ::lstat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_mode : 0;
}

uid_t ownerOf(const QString& path) {
    struct stat info;
    return ::lstat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_uid : uid_t(-1);
}

// A folder that is ours and private, and is not `refused`.
void expectPrivateFolderOtherThan(const QString& dir, const QString& refused) {
    SCOPED_TRACE(dir.toStdString());
    ASSERT_FALSE(dir.isEmpty());
    EXPECT_NE(QDir::cleanPath(dir), QDir::cleanPath(refused));
    EXPECT_TRUE(S_ISDIR(modeOf(dir)));
    EXPECT_EQ(modeOf(dir) & 07777, 0700u);
    EXPECT_EQ(ownerOf(dir), ::geteuid());
}

bool chownTo(const QString& path, uid_t owner) {
    return ::lchown(QFile::encodeName(path).constData(), owner, owner) == 0;
}

// Points XDG_RUNTIME_DIR (and TMPDIR) at folders of the test, with no data-folder
// redirection, for the lifetime of the object.
class RuntimeDirEnvironment {
public:
    RuntimeDirEnvironment() { ::chmod(QFile::encodeName(m_runtime.path()).constData(), 0700); }
    QString runtime() const { return m_runtime.path(); }
    QString tmp() const { return m_tmp.path(); }

private:
    QTemporaryDir m_runtime;
    QTemporaryDir m_tmp;
    test::ScopedEnv m_noDataDir{"VELMORA_DATA_DIR", {}};
    test::ScopedEnv m_runtimeDir{"XDG_RUNTIME_DIR", m_runtime.path()};
    test::ScopedEnv m_tmpDir{"TMPDIR", m_tmp.path()};
};

}  // namespace

TEST(TempDir, DataDirRedirectionGivesAPrivateFolderOfOurs) {
    TempDataDir data;
    const QString expected = data.path() + "/tmp";
    ASSERT_TRUE(QDir().mkdir(expected));
    ASSERT_EQ(::chmod(QFile::encodeName(expected).constData(), 0777), 0);
    EXPECT_EQ(StandardPaths::tempDir(), expected);
    EXPECT_EQ(modeOf(expected) & 07777, 0700u);  // our own folder, narrowed
}

TEST(TempDir, RuntimeDirIsUsedAndAnUnsafeOneIsRefused) {
    RuntimeDirEnvironment environment;
    const QString ours = environment.runtime() + "/velmora";
    EXPECT_EQ(StandardPaths::tempDir(), ours);
    EXPECT_EQ(modeOf(ours) & 07777, 0700u);

    // A runtime folder others may write to could have our folder swapped under us.
    ASSERT_EQ(::chmod(QFile::encodeName(environment.runtime()).constData(), 0777), 0);
    expectPrivateFolderOtherThan(StandardPaths::tempDir(), ours);
    ASSERT_EQ(::chmod(QFile::encodeName(environment.runtime()).constData(), 0700), 0);

    // A link planted in place of our folder: refused, its target left alone.
    QTemporaryDir elsewhere;
    ASSERT_TRUE(QDir(ours).removeRecursively());
    ASSERT_TRUE(QFile::link(elsewhere.path(), ours));
    const QString chosen = StandardPaths::tempDir();
    expectPrivateFolderOtherThan(chosen, ours);
    EXPECT_FALSE(chosen.startsWith(elsewhere.path()));
    EXPECT_TRUE(QDir(elsewhere.path()).isEmpty());
}

TEST(TempDir, FolderPreparedByAnotherUserIsRefused) {
    if (::geteuid() != 0) GTEST_SKIP() << "SKIPPED: handing a folder to another user needs root";
    {
        TempDataDir data;
        const QString prepared = data.path() + "/tmp";
        ASSERT_TRUE(QDir().mkdir(prepared));
        ASSERT_EQ(::chmod(QFile::encodeName(prepared).constData(), 0777), 0);
        ASSERT_TRUE(chownTo(prepared, kNobody));
        expectPrivateFolderOtherThan(StandardPaths::tempDir(), prepared);
        EXPECT_EQ(ownerOf(prepared), kNobody);
        EXPECT_EQ(modeOf(prepared) & 07777, 0777u);  // not ours to change
    }
    RuntimeDirEnvironment environment;
    const QString prepared = environment.runtime() + "/velmora";
    ASSERT_TRUE(QDir().mkdir(prepared));
    ASSERT_TRUE(chownTo(prepared, kNobody));
    expectPrivateFolderOtherThan(StandardPaths::tempDir(), prepared);
}

// Without a runtime folder the folder is made by mkdtemp: a name prepared in advance
// in the temporary folder (the old fixed "velmora-$USER") is never used.
TEST(TempDir, PlantedLinkAtThePredictableNameIsNeverUsed) {
    RuntimeDirEnvironment environment;
    qunsetenv("XDG_RUNTIME_DIR");
    QTemporaryDir victim;
    const QString planted = environment.tmp() + "/velmora-" + qEnvironmentVariable("USER");
    ASSERT_TRUE(QFile::link(victim.path(), planted));

    const QString chosen = StandardPaths::tempDir();
    expectPrivateFolderOtherThan(chosen, planted);
    EXPECT_FALSE(chosen.startsWith(victim.path()));
    EXPECT_EQ(StandardPaths::tempDir(), chosen);  // one folder for the whole process
    EXPECT_TRUE(QDir(victim.path()).isEmpty());
}
