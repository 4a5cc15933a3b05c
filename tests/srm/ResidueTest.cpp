// The truth test: after the tool erased a folder on a real file system, its files'
// unique marker must be nowhere in the raw image.

#include "support/ChildProcess.h"
#include "support/LoopVolume.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

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

INSTANTIATE_TEST_SUITE_P(LoopImages, SrmResidue,
                         ::testing::Combine(::testing::Values("vfat", "exfat", "ext4"),
                                            ::testing::Values("-fsvrz", "-fEvrz", "-fmvrz")),
                         [](const auto& info) {
                             std::string options = std::get<1>(info.param).substr(1);
                             return std::get<0>(info.param) + "_" + options;
                         });

} // namespace
} // namespace velmora::test
