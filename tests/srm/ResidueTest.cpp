// The truth test: after the tool erased a folder on a real file system, its files'
// unique marker must be nowhere in the raw image.

#include "support/ChildProcess.h"
#include "support/LoopVolume.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <tuple>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::test {
namespace {

void writeSynced(const std::string& path, const std::string& content)
{
    writeFile(path, content);
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(fd, 0) << path;
    EXPECT_EQ(fsync(fd), 0) << path;
    close(fd);
}

std::string repeated(const std::string& marker, std::size_t bytes)
{
    std::string content;
    while (content.size() < bytes)
        content += marker + "\n";
    return content;
}

class SrmResidue : public ::testing::TestWithParam<std::tuple<std::string, std::string>> {};

TEST_P(SrmResidue, MarkerIsNowhereInTheRawImageAfterErasure)
{
    const auto& [fileSystem, options] = GetParam();
    LoopVolume volume;
    std::string mountPoint;
    if (const std::string problem = volume.formatAndMount(fileSystem, "residue", mountPoint); !problem.empty())
        GTEST_SKIP() << "SKIPPED " << fileSystem << ": " << problem;

    const std::string marker = uniqueMarker();
    const std::string secret = mountPoint + "/secret";
    ASSERT_EQ(mkdir(secret.c_str(), 0755), 0);
    ASSERT_EQ(mkdir((secret + "/deeper").c_str(), 0755), 0);
    writeSynced(secret + "/plan.txt", repeated(marker, 300'000));
    writeSynced(secret + "/deeper/notes.txt", repeated(marker, 5'000));

    // Control: the marker really reached the device, so its absence later means something.
    ASSERT_TRUE(volume.unmountAll());
    ASSERT_GT(volume.countInImage(marker), 0) << "the marker never reached the image";
    ASSERT_EQ(volume.mount(fileSystem, "residue"), mountPoint);

    const ProcessResult run = runSrm({options, secret});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(run.err.empty()) << run.err;
    EXPECT_FALSE(exists(secret));

    ASSERT_TRUE(volume.unmountAll());
    EXPECT_EQ(volume.countInImage(marker), 0)
        << "the marker survived " << options << " on " << fileSystem;
}

// Whether the process has the file open, read from /proc.
bool hasOpen(pid_t pid, const std::string& path)
{
    const std::string folder = "/proc/" + std::to_string(pid) + "/fd";
    for (int fd = 0; fd < 64; ++fd) {
        char target[4096];
        const ssize_t length = readlink((folder + "/" + std::to_string(fd)).c_str(), target, sizeof target);
        if (length > 0 && std::string(target, static_cast<std::size_t>(length)) == path)
            return true;
    }
    return false;
}

// Data appended while the passes run would be freed unwritten when the file is
// emptied at the end, so a file that grew is overwritten again up to its new size.
TEST(SrmGrowingFile, DataAppendedDuringThePassesIsOverwrittenToo)
{
    LoopVolume volume;
    std::string mountPoint;
    if (const std::string problem = volume.formatAndMount("ext4", "growing", mountPoint); !problem.empty())
        GTEST_SKIP() << "SKIPPED: " << problem;
    const std::string file = mountPoint + "/growing.bin";
    writeSynced(file, std::string(24 << 20, 'g'));
    const std::string marker = uniqueMarker();

    const pid_t srm = spawnQuietly({std::string(std::getenv("VELMORA_BIN_DIR")) + "/srm", "-mvz", "--", file});
    ASSERT_GT(srm, 0);
    for (int waited = 0; waited < 2000 && !hasOpen(srm, file); ++waited)
        usleep(1000);
    ASSERT_TRUE(hasOpen(srm, file)) << "srm never opened the file";
    const int appender = open(file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    ASSERT_GE(appender, 0);
    const std::string appended = repeated(marker, 1 << 20);
    EXPECT_EQ(write(appender, appended.data(), appended.size()), static_cast<ssize_t>(appended.size()));
    EXPECT_EQ(fsync(appender), 0);
    close(appender);
    bool timedOut = false;
    EXPECT_EQ(waitForChild(srm, 300, timedOut), 0);
    EXPECT_FALSE(exists(file));

    ASSERT_TRUE(volume.unmountAll());
    EXPECT_EQ(volume.countInImage(marker), 0) << "the appended data survived";
}

INSTANTIATE_TEST_SUITE_P(LoopImages, SrmResidue,
                         ::testing::Combine(::testing::Values("vfat", "exfat", "ext4"),
                                            ::testing::Values("-fsvrz", "-fEvrz", "-fmvrz")),
                         [](const auto& info) {
                             std::string options = std::get<1>(info.param).substr(1);
                             return std::get<0>(info.param) + "_" + options;
                         });

} // namespace
} // namespace velmora::test
