// What the tool must never do: follow links, change hard-linked data, hang on special
// files or unread output, or report success after a failure.

#include "support/ChildProcess.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <climits>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace velmora::test {
namespace {

void makeFolder(const std::string& path)
{
    ASSERT_EQ(mkdir(path.c_str(), 0755), 0) << path;
}

void symlinkTo(const std::string& target, const std::string& link)
{
    ASSERT_EQ(symlink(target.c_str(), link.c_str()), 0) << link;
}

// Hands a path to the user that unprivileged runs use.
void giveAway(const std::string& path)
{
    ASSERT_EQ(lchown(path.c_str(), unprivilegedUid(), unprivilegedGid()), 0) << path;
}

TEST(SrmSafety, SymbolicLinksAreRemovedWithoutTouchingTheirTargets)
{
    TempDir dir;
    const std::string folder = dir / "precious";
    makeFolder(folder);
    writeFile(folder + "/a.txt", "keep me");
    makeFolder(folder + "/inner");
    writeFile(folder + "/inner/b.txt", "keep me too");
    symlinkTo(folder, dir / "link");
    symlinkTo(folder, dir / "slashed");
    symlinkTo(folder + "/a.txt", dir / "file-link");

    // As the application passes them, then bare with a trailing slash.
    for (const auto& [options, link] :
         {std::pair{"-fsvrz", dir / "link"}, std::pair{"-fsvrz", dir / "file-link"}, std::pair{"-f", dir / "slashed/"}}) {
        const ProcessResult run = runSrm({options, link});
        EXPECT_EQ(run.status, 0) << link << "\n" << run.err;
        EXPECT_FALSE(exists(link.back() == '/' ? link.substr(0, link.size() - 1) : link)) << link;
    }
    EXPECT_EQ(readFile(folder + "/a.txt"), "keep me");
    EXPECT_EQ(readFile(folder + "/inner/b.txt"), "keep me too");
}

TEST(SrmSafety, RecursiveWalkRemovesLinksInsideTheTreeButNeverCrossesThem)
{
    TempDir dir;
    const std::string outside = dir / "outside";
    makeFolder(outside);
    writeFile(outside + "/file.txt", "outside data");
    const std::string tree = dir / "tree";
    makeFolder(tree);
    makeFolder(tree + "/sub");
    writeFile(tree + "/sub/erase-me.txt", "inside data");
    symlinkTo(outside, tree + "/sub/to-folder");
    symlinkTo(outside + "/file.txt", tree + "/to-file");
    symlinkTo(dir / "nowhere", tree + "/dangling");

    const ProcessResult run = runSrm({"-fsvrz", tree});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_FALSE(exists(tree));
    EXPECT_EQ(readFile(outside + "/file.txt"), "outside data");
}

// A folder on the way to a path that was swapped for a link must not carry the
// erasure to where the link points.
TEST(SrmSafety, LinkOnTheWayToAPathIsNeverFollowed)
{
    TempDir dir;
    const std::string outside = dir / "outside";
    makeFolder(outside);
    makeFolder(outside + "/tree");
    writeFile(outside + "/tree/file.txt", "outside data");
    writeFile(outside + "/single.txt", "outside single");
    symlinkTo(outside, dir / "swapped");

    for (const std::string& path : {dir / "swapped/tree", dir / "swapped/single.txt", dir / "swapped/tree/file.txt"}) {
        const ProcessResult run = runSrm({"-fsvrz", "--", path});
        EXPECT_EQ(run.status, 1) << path;
        EXPECT_NE(run.err.find("symbolic link"), std::string::npos) << run.err;
    }
    EXPECT_EQ(readFile(outside + "/tree/file.txt"), "outside data");
    EXPECT_EQ(readFile(outside + "/single.txt"), "outside single");
}

TEST(SrmSafety, HardLinkedFileLosesOnlyThisNameAndTheToolSaysSo)
{
    TempDir dir;
    const std::string data = randomBytes(20'000);
    writeFile(dir / "name-a", data);
    ASSERT_EQ(link((dir / "name-a").c_str(), (dir / "name-b").c_str()), 0);
    writeFile(dir / "plain", "plain data");

    const ProcessResult run = runSrm({"-fsvrz", dir / "name-a", dir / "plain"});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find(dir / "name-a"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("hard link"), std::string::npos) << run.err;
    EXPECT_FALSE(exists(dir / "name-a"));
    EXPECT_EQ(readFile(dir / "name-b"), data) << "the other name's data was changed";
    EXPECT_FALSE(exists(dir / "plain")) << "a failure must not stop the other operands";
}

TEST(SrmSafety, SpecialFilesAreNeverOpened)
{
    TempDir dir;
    ASSERT_EQ(mkfifo((dir / "fifo").c_str(), 0644), 0);
    makeFolder(dir / "tree");
    ASSERT_EQ(mkfifo((dir / "tree/inner-fifo").c_str(), 0644), 0);

    // Opening a FIFO without a writer blocks forever: a short time-out catches it.
    const ProcessResult fifos = runSrm({"-fsvrz", dir / "fifo", dir / "tree"}, {.timeoutSeconds = 20});
    EXPECT_FALSE(fifos.timedOut) << "srm hung on a FIFO";
    EXPECT_EQ(fifos.status, 0) << fifos.err;
    EXPECT_FALSE(exists(dir / "fifo"));
    EXPECT_FALSE(exists(dir / "tree"));

    if (geteuid() != 0)
        GTEST_SKIP() << "SKIPPED the device-node case: mknod needs root";
    ASSERT_EQ(mknod((dir / "device").c_str(), S_IFCHR | 0600, makedev(1, 3)), 0); // like /dev/null
    const ProcessResult device = runSrm({"-fsvrz", dir / "device"});
    EXPECT_EQ(device.status, 1);
    EXPECT_NE(device.err.find(dir / "device"), std::string::npos) << device.err;
    EXPECT_TRUE(exists(dir / "device"));
}

TEST(SrmSafety, ExitStatusTellsMissingFilesFoldersWithoutRecursionAndBadUsage)
{
    TempDir dir;
    EXPECT_EQ(runSrm({"-fsvrz", dir / "missing"}).status, 0) << "-f: a missing file is not an error";
    EXPECT_EQ(runSrm({"-fsvrz", dir / "no-folder/missing"}).status, 0);

    const ProcessResult strict = runSrm({"-svrz", dir / "missing"});
    EXPECT_EQ(strict.status, 1);
    EXPECT_NE(strict.err.find(dir / "missing"), std::string::npos) << strict.err;

    makeFolder(dir / "folder");
    writeFile(dir / "folder/file", "data");
    const ProcessResult noRecursion = runSrm({"-fsvz", dir / "folder"});
    EXPECT_EQ(noRecursion.status, 1);
    EXPECT_NE(noRecursion.err.find(dir / "folder"), std::string::npos) << noRecursion.err;
    EXPECT_EQ(readFile(dir / "folder/file"), "data");

    writeFile(dir / "kept", "data");
    EXPECT_EQ(runSrm({"-fsxz", dir / "kept"}).status, 2);
    EXPECT_EQ(runSrm({}).status, 2);
    EXPECT_EQ(runSrm({"-fsvrz"}).status, 2);
    EXPECT_EQ(readFile(dir / "kept"), "data");
    EXPECT_EQ(runSrm({"-fsvrz", dir.path() + "/."}).status, 1) << "'.' must be refused";
    EXPECT_TRUE(exists(dir.path()));
}

// The application hands paths over as NUL-terminated bytes on standard input: names that
// are not UTF-8, hold a line break or start with a dash, and a path longer than PATH_MAX.
// With -0 every output line ends with NUL, so a line break in a name splits no line.
TEST(SrmSafety, PathsFromStandardInputArriveAsTheirBytes)
{
    TempDir dir;
    const std::vector<std::string> names = {"bad\xff\xfename", "two\nlines", "-dash", std::string(255, 'n')};
    std::string input;
    for (const std::string& name : names) {
        writeFile(dir / name, "data");
        input += dir / name + '\0';
    }
    const std::string deepFile = makeDeepFolders(dir.path(), 40, std::string(120, 'd')) + "/deep";
    ASSERT_GT(deepFile.size(), std::size_t(PATH_MAX));
    writeFile(deepFile, "deep data");
    input += deepFile;  // the last path may lack its NUL

    ProcessOptions options;
    options.input = input;
    const ProcessResult run = runSrm({"-fsvrz0", "--files0-from=-"}, options);
    EXPECT_EQ(run.status, 0) << run.err;
    for (const std::string& name : names)
        EXPECT_FALSE(exists(dir / name)) << name;
    EXPECT_FALSE(exists(deepFile));
    EXPECT_NE(run.out.find('\0' + ("removed " + dir / "two\nlines") + '\0'), std::string::npos) << run.out;
    EXPECT_EQ(run.out.back(), '\0');
    std::size_t lineBreaks = 0;
    for (std::size_t at = run.out.find('\n'); at != std::string::npos; at = run.out.find('\n', at + 1))
        lineBreaks += run.out.compare(at, 6, "\nlines") == 0 ? 0 : 1;
    EXPECT_EQ(lineBreaks, 0u) << "a line break outside the name";

    // A problem line ends with NUL too; an empty path or no path at all is bad usage.
    options.input = dir / "gone" + '\0';
    const ProcessResult missing = runSrm({"-svrz0", "--files0-from=-"}, options);
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err.back(), '\0') << missing.err;
    options.input = dir / "x" + std::string(2, '\0') + dir / "y";
    EXPECT_EQ(runSrm({"-fsvrz", "--files0-from=-"}, options).status, 2);
    options.input.clear();
    EXPECT_EQ(runSrm({"-fsvrz", "--files0-from=-"}).status, 2);
    EXPECT_EQ(runSrm({"-fsvrz", "--files0-from=-", dir / "x"}).status, 2);
}

TEST(SrmSafety, WriteProtectedFileNeedsForce)
{
    TempDir dir;
    const std::string file = dir / "read-only.txt";
    writeFile(file, "protected data");
    giveAway(dir.path());
    giveAway(file);
    ASSERT_EQ(chmod(file.c_str(), 0444), 0);

    const ProcessResult polite = runSrm({"-svrz", file}, {.unprivileged = true});
    EXPECT_EQ(polite.status, 1);
    EXPECT_NE(polite.err.find(file), std::string::npos) << polite.err;
    EXPECT_EQ(readFile(file), "protected data");

    const ProcessResult forced = runSrm({"-fsvrz", file}, {.unprivileged = true});
    EXPECT_EQ(forced.status, 0) << forced.err;
    EXPECT_FALSE(exists(file));
}

TEST(SrmSafety, FileInReadOnlyFolderIsErasedAndTheLeftoverNameReported)
{
    TempDir dir;
    const std::string folder = dir / "locked";
    makeFolder(folder);
    const std::string file = folder + "/inside.txt";
    writeFile(file, "data that must go");
    giveAway(file);
    giveAway(folder);
    ASSERT_EQ(chmod(folder.c_str(), 0555), 0);

    const ProcessResult run = runSrm({"-fsvrz", file}, {.unprivileged = true});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find(file), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("left behind"), std::string::npos) << run.err;
    EXPECT_EQ(readFile(file), "") << "the data must be gone even though the name stays";
}

// The application gives the tool a pipe that it never reads.
TEST(SrmSafety, UnreadOutputPipeDoesNotStallTheTool)
{
    TempDir dir;
    const std::string tree = dir / "many";
    makeFolder(tree);
    const std::string longName(200, 'n');
    for (int i = 0; i < 300; ++i)
        writeFile(tree + "/" + longName + std::to_string(i), "x"); // about 300 KB of progress text

    int unread[2];
    ASSERT_EQ(pipe2(unread, O_CLOEXEC), 0);
    const ProcessResult run = runSrm({"-fsvrz", tree}, {.outputFd = unread[1], .timeoutSeconds = 120});
    close(unread[0]);
    close(unread[1]);
    EXPECT_FALSE(run.timedOut) << "srm blocked on its full output pipe";
    EXPECT_EQ(run.status, 0);
    EXPECT_FALSE(exists(tree));
}

} // namespace
} // namespace velmora::test
