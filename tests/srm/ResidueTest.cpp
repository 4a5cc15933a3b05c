// The truth test: after the tool erased a folder on a real file system, its files'
// unique marker must be nowhere in the raw image.

#include "srm/ChildProcess.h"
#include "srm/LoopMount.h"
#include "srm/TestFiles.h"

#include <gtest/gtest.h>

#include <tuple>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::test {
namespace {

std::size_t occurrences(const std::string& haystack, const std::string& needle)
{
    std::size_t count = 0;
    for (std::size_t at = haystack.find(needle); at != std::string::npos; at = haystack.find(needle, at + 1))
        ++count;
    return count;
}

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
    TempDir work;
    LoopMount volume(work.path(), fileSystem);
    if (!volume.problem().empty())
        GTEST_SKIP() << "SKIPPED " << fileSystem << ": " << volume.problem();

    const std::string marker = uniqueMarker();
    const std::string secret = volume.mountPoint() + "/secret";
    ASSERT_EQ(mkdir(secret.c_str(), 0755), 0);
    ASSERT_EQ(mkdir((secret + "/deeper").c_str(), 0755), 0);
    writeSynced(secret + "/plan.txt", repeated(marker, 300'000));
    writeSynced(secret + "/deeper/notes.txt", repeated(marker, 5'000));

    // Control: the marker really reached the device, so its absence later means something.
    ASSERT_TRUE(volume.unmount()) << volume.problem();
    ASSERT_GT(occurrences(volume.imageContent(), marker), 0u) << "the marker never reached the image";
    ASSERT_TRUE(volume.mount()) << volume.problem();

    const ProcessResult run = runSrm({options, secret});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(run.err.empty()) << run.err;
    EXPECT_FALSE(exists(secret));

    ASSERT_TRUE(volume.unmount()) << volume.problem();
    EXPECT_EQ(occurrences(volume.imageContent(), marker), 0u)
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
