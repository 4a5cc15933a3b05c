// The copy engine: progress, names on a clash, a faithful copy of every kind of item,
// partly ticked folders, failures, cancel and the verification.
#include "CopyTestSupport.h"

#include "engine/copy/CopyVerifier.h"
#include "engine/platform/NativePath.h"
#include "support/TestFiles.h"

#include <fcntl.h>
#include <sys/time.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace velmora::test {
namespace {

QString q(const std::string& path) { return pathFromNative(QByteArray::fromStdString(path)); }

FileNodePtr tickedNode(const std::string& path, bool isDirectory = false) {
    const std::string name = path.substr(path.rfind('/') + 1);
    auto node = std::make_shared<FileNode>(q(path), q(name), isDirectory, nullptr);
    node->state = FileNode::Ticked;
    return node;
}

TEST(CopyEngine, OneItemReportsFiveThenHundredAndAClashDropsTheExtension) {
    TempDir source;
    TempDir destination;
    writeFile(source / "a.txt", "new");
    writeFile(destination / "a.txt", "already there");
    CopyRun run = runCopy(q(source.path()), {tickedNode(source / "a.txt")}, q(destination.path()));
    EXPECT_EQ(run.progress, (std::vector<float>{5, 100}));
    EXPECT_TRUE(run.result.complete());
    EXPECT_EQ(readFile(destination / "a 1"), "new");
    EXPECT_EQ(readFile(destination / "a.txt"), "already there");
    run = runCopy(q(source.path()), {tickedNode(source / "a.txt")}, q(destination.path()));
    EXPECT_EQ(readFile(destination / "a 2"), "new");
    EXPECT_EQ(DoCopyFiles::createFileWithPath(q(destination.path()), ".profile", ".profile"), ".profile");
}

TEST(CopyEngine, ATreeIsCopiedFaithfully) {
    TempDir source;
    TempDir outside;
    TempDir destination;
    const std::string top = source / "top";
    mkdir(top.c_str(), 0750);
    // Contents, permissions, times and an extended attribute.
    writeFile(top + "/plain", "plain contents");
    chmod((top + "/plain").c_str(), 0640);
    const timeval past[2] = {{1000000000, 0}, {1234567890, 0}};
    utimes((top + "/plain").c_str(), past);
    const bool xattrs = setxattr((top + "/plain").c_str(), "user.velmora", "tag", 3, 0) == 0;
    // A sparse file: 64 MiB long, 8 KiB written in the middle.
    {
        const int fd = open((top + "/sparse").c_str(), O_WRONLY | O_CREAT, 0600);
        ASSERT_GE(fd, 0);
        ASSERT_EQ(pwrite(fd, std::string(8192, 's').data(), 8192, 32 << 20), 8192);
        ASSERT_EQ(ftruncate(fd, 64 << 20), 0);
        close(fd);
    }
    // Two names of one file, a link to a folder outside the source, a special file.
    link((top + "/plain").c_str(), (top + "/hard").c_str());
    writeFile(outside / "secret", "outside");
    symlink(outside.path().c_str(), (top + "/away").c_str());
    mkfifo((top + "/fifo").c_str(), 0600);
    // A name that is not text, and a tree deeper than PATH_MAX.
    const std::string oddName = "odd\xff\xfe";
    writeFile(top + "/" + oddName, "bytes");
    const std::string deep = makeDeepFolders(top, 40, std::string(120, 'd'));
    writeFile(deep + "/bottom", "deep");

    const CopyRun run = runCopy(q(source.path()), {tickedNode(top, true)}, q(destination.path()), true);
    const std::string copy = destination / "top";

    ASSERT_EQ(run.result.failures.size(), 1);
    EXPECT_EQ(run.result.failures.first().path, q(top + "/fifo"));
    EXPECT_TRUE(run.result.failures.first().reason.contains("FIFO"));
    EXPECT_FALSE(exists(copy + "/fifo"));
    EXPECT_FALSE(run.result.complete());
    EXPECT_TRUE(run.result.verified);
    EXPECT_TRUE(run.result.mismatches.isEmpty());
    EXPECT_TRUE(run.result.notes.isEmpty()) << run.result.notes.first().reason.toStdString();

    EXPECT_EQ(readFile(copy + "/plain"), "plain contents");
    const struct stat plain = lstatOf(copy + "/plain");
    EXPECT_EQ(plain.st_mode & 07777, 0640u);
    EXPECT_EQ(plain.st_mtim.tv_sec, 1234567890);
    EXPECT_EQ(lstatOf(copy).st_mode & 07777, 0750u);
    if (xattrs) {
        char value[8] = {};
        EXPECT_EQ(getxattr((copy + "/plain").c_str(), "user.velmora", value, sizeof value), 3);
        EXPECT_STREQ(value, "tag");
    }
    EXPECT_EQ(lstatOf(copy + "/hard").st_ino, plain.st_ino);

    const struct stat sparse = lstatOf(copy + "/sparse");
    EXPECT_EQ(sparse.st_size, 64 << 20);
    EXPECT_LE(sparse.st_blocks, lstatOf(top + "/sparse").st_blocks);
    EXPECT_LT(sparse.st_blocks * 512, 1 << 20);

    EXPECT_TRUE(S_ISLNK(lstatOf(copy + "/away").st_mode));
    char target[4096] = {};
    ASSERT_GT(readlink((copy + "/away").c_str(), target, sizeof target - 1), 0);
    EXPECT_EQ(std::string(target), outside.path());
    EXPECT_FALSE(exists(copy + "/secret"));
    EXPECT_EQ(readFile(outside / "secret"), "outside");

    EXPECT_EQ(readFile(copy + "/" + oddName), "bytes");
    EXPECT_EQ(readFile(copy + deep.substr(top.size()) + "/bottom"), "deep");
}

TEST(CopyEngine, PartlyTickedFoldersKeepTheirPlaceAndOnlyTheirTickedContents) {
    TempDir source;
    TempDir destination;
    makeDeepFolders(source.path(), 3, "level");
    const std::string l1 = source / "level";
    const std::string l2 = l1 + "/level";
    const std::string l3 = l2 + "/level";
    writeFile(l1 + "/skip", "no");
    writeFile(l2 + "/take", "yes");
    writeFile(l2 + "/skip", "no");
    writeFile(l3 + "/whole", "all");
    EumeRoot lister;
    FileNodeList top = everythingIn(q(source.path()));
    ASSERT_EQ(top.size(), 1);
    FileNode* first = top.first().get();
    lister.getNodeListWithFaterNode(first);
    first->state = FileNode::PartlyTicked;
    for (const FileNodePtr& child : first->children) {
        child->state = FileNode::NotTicked;
        if (child->name != "level") continue;
        child->state = FileNode::PartlyTicked;
        lister.getNodeListWithFaterNode(child.get());
        for (const FileNodePtr& grandchild : child->children) {
            grandchild->state = grandchild->name == "skip" ? FileNode::NotTicked : FileNode::Ticked;
        }
    }
    const CopyRun run = runCopy(q(source.path()), top, q(destination.path()));
    EXPECT_TRUE(run.result.complete());
    EXPECT_EQ(readFile(destination / "level/level/take"), "yes");
    EXPECT_EQ(readFile(destination / "level/level/level/whole"), "all");
    EXPECT_FALSE(exists(destination / "level/skip"));
    EXPECT_FALSE(exists(destination / "level/level/skip"));
    EXPECT_FALSE(exists(destination / "take"));
}

TEST(CopyEngine, CancelStopsTheCopyAndSaysSo) {
    TempDir source;
    TempDir destination;
    const std::string many = source / "many";
    mkdir(many.c_str(), 0755);
    for (int i = 0; i < 3000; ++i) writeFile(many + "/f" + std::to_string(i), std::string(4096, 'x'));
    const CopyRun run = runCopy(q(source.path()), everythingIn(q(source.path())), q(destination.path()), false,
                                [](DoCopyFiles& copy) { copy.setIsCancel(true); });
    EXPECT_TRUE(run.result.cancelled);
    EXPECT_FALSE(run.result.complete());
    EXPECT_LT(run.result.copiedItems, 3001u);
}

TEST(CopyEngine, VerificationFindsACopyThatDiffers) {
    TempDir folder;
    writeFile(folder / "source", std::string(3 << 20, 'a'));
    std::string changed(3 << 20, 'a');
    changed[(2 << 20) + 7] = 'b';
    writeFile(folder / "copy", changed);
    writeFile(folder / "same", std::string(3 << 20, 'a'));
    std::atomic<bool> cancel{false};
    CopyVerifier verifier(cancel);
    const QList<CopyIssue> mismatches =
        verifier.compare({{QByteArray::fromStdString(folder / "source"), QByteArray::fromStdString(folder / "copy")},
                          {QByteArray::fromStdString(folder / "source"), QByteArray::fromStdString(folder / "same")}});
    ASSERT_EQ(mismatches.size(), 1);
    EXPECT_TRUE(mismatches.first().reason.contains(QString::number(2 << 20)));
    EXPECT_EQ(verifier.comparedFiles(), 2u);
}

TEST(CopyEngine, AnUnreadableItemIsReportedAndTheRestCopiedByTheCli) {
    TempDir source;
    TempDir destination;
    writeFile(source / "readable", "fine");
    writeFile(source / "locked", "private");
    chmod((source / "locked").c_str(), 0);
    const ProcessResult result = runCli({"copy", "--yes", source.path(), destination.path()}, {}, withoutReadOverride());
    EXPECT_EQ(result.status, 1) << result.err;
    EXPECT_NE(result.out.find("Failed  " + source.path() + "/locked: "), std::string::npos) << result.out;
    const std::string clone = onlyEntryStartingWith(destination.path(), "VLclone(");
    ASSERT_FALSE(clone.empty());
    EXPECT_NE(result.out.find("Destination: " + destination.path() + "/" + clone), std::string::npos) << result.out;
    EXPECT_EQ(readFile(destination / clone + "/readable"), "fine");
    EXPECT_FALSE(exists(destination / clone + "/locked"));
}

}  // namespace
}  // namespace velmora::test
