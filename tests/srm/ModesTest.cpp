// The bytes each pass leaves on disk, read back through the tool's stop-after-pass hook.

#include "support/ChildProcess.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <regex>
#include <set>
#include <string_view>
#include <unordered_set>

#include <sys/stat.h>

namespace velmora::test {
namespace {

using Bytes = std::vector<std::uint8_t>;
const Bytes kRandom{}; // an empty pattern stands for a random pass

constexpr int kStoppedByHook = 3;

std::vector<Bytes> thirtyFivePasses()
{
    std::vector<Bytes> passes(4, kRandom);
    passes.push_back({0x55});
    passes.push_back({0xAA});
    passes.push_back({0x92, 0x49, 0x24});
    passes.push_back({0x49, 0x24, 0x92});
    passes.push_back({0x24, 0x92, 0x49});
    for (const int byte : {0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF})
        passes.push_back({static_cast<std::uint8_t>(byte)});
    passes.push_back({0x92, 0x49, 0x24});
    passes.push_back({0x49, 0x24, 0x92});
    passes.push_back({0x24, 0x92, 0x49});
    passes.push_back({0x6D, 0xB6, 0xDB});
    passes.push_back({0xB6, 0xDB, 0x6D});
    passes.push_back({0xDB, 0x6D, 0xB6});
    passes.insert(passes.end(), 4, kRandom);
    return passes;
}

struct Scheme {
    std::string options;
    std::vector<Bytes> passes;
};

std::vector<Scheme> schemes()
{
    std::vector<Scheme> all{
        {"-fsvrz", {kRandom, {0x00}}},
        {"-fEvrz", {kRandom, kRandom, {0x44, 0x6F, 0x45}, {0x00}}},
        {"-fmvrz", {{0xF6}, {0x00}, {0xFF}, kRandom, {0x00}, {0xFF}, kRandom, {0x00}}},
        {"-fvrz", thirtyFivePasses()},
    };
    all.back().passes.push_back({0x00});
    return all;
}

std::uint64_t blockSizeOf(const std::string& path)
{
    struct stat status {};
    stat(path.c_str(), &status);
    return static_cast<std::uint64_t>(status.st_blksize);
}

// Every byte, the rounded-up tail included, follows the pattern from offset 0.
void expectPattern(const std::string& content, const Bytes& pattern, const std::string& where)
{
    for (std::size_t i = 0; i < content.size(); ++i) {
        if (static_cast<std::uint8_t>(content[i]) != pattern[i % pattern.size()]) {
            ADD_FAILURE() << where << ": byte " << i << " of " << content.size() << " is "
                          << int(static_cast<std::uint8_t>(content[i])) << ", not "
                          << int(pattern[i % pattern.size()]);
            return;
        }
    }
}

void expectRandom(const std::string& content, const std::string& original, const std::string& where)
{
    std::set<char> values(content.begin(), content.end());
    EXPECT_EQ(values.size(), 256u) << where << ": a random pass should show every byte value";
    std::size_t unchanged = 0;
    for (std::size_t i = 0; i < original.size(); ++i)
        unchanged += content[i] == original[i];
    EXPECT_LT(unchanged, original.size() / 50) << where << ": the old content is still there";
}

TEST(SrmModes, EachPassWritesItsBytesOverTheWholeRoundedUpFile)
{
    TempDir dir;
    const std::string file = dir / "victim.dat";
    const std::string original = randomBytes(10'000); // neither a multiple of 3 nor of a block
    for (const Scheme& scheme : schemes()) {
        for (std::size_t pass = 1; pass <= scheme.passes.size(); ++pass) {
            writeFile(file, original);
            const std::string where = scheme.options + " pass " + std::to_string(pass);
            const ProcessResult run =
                runSrm({scheme.options, file}, {.environment = {"VELMORA_SRM_STOP_AFTER_PASS=" + std::to_string(pass)}});
            ASSERT_EQ(run.status, kStoppedByHook) << where << "\n" << run.err;

            const std::string content = readFile(file);
            const std::uint64_t block = blockSizeOf(file);
            ASSERT_GE(content.size(), original.size()) << where;
            EXPECT_EQ(content.size() % block, 0u) << where << ": the last block's slack is not covered";
            EXPECT_LT(content.size(), original.size() + block) << where;
            const Bytes& expected = scheme.passes[pass - 1];
            if (expected.empty())
                expectRandom(content, original, where);
            else
                expectPattern(content, expected, where);
        }
    }
}

// Larger than the tool's buffers, and no multiple of 3, so buffer boundaries fall
// at every phase of the three-byte patterns.
TEST(SrmModes, PatternsStayInPhaseAndRandomDataNeverRepeatsAcrossBuffers)
{
    TempDir dir;
    const std::string file = dir / "large.bin";
    const std::size_t size = (40 << 20) + 1001;

    for (const int pass : {7, 8}) { // 92 49 24, then 49 24 92
        writeFile(file, std::string(size, 'x'));
        const ProcessResult run = runSrm({"-fvrz", file}, {.environment = {"VELMORA_SRM_STOP_AFTER_PASS=" + std::to_string(pass)}});
        ASSERT_EQ(run.status, kStoppedByHook) << run.err;
        expectPattern(readFile(file), thirtyFivePasses()[pass - 1], "pass " + std::to_string(pass));
    }

    writeFile(file, std::string(size, 'x'));
    const ProcessResult run = runSrm({"-fsvrz", file}, {.environment = {"VELMORA_SRM_STOP_AFTER_PASS=1"}});
    ASSERT_EQ(run.status, kStoppedByHook) << run.err;
    const std::string content = readFile(file);
    std::unordered_set<std::string_view> blocks;
    for (std::size_t offset = 0; offset + 512 <= content.size(); offset += 512)
        EXPECT_TRUE(blocks.insert(std::string_view(content).substr(offset, 512)).second)
            << "512-byte block at " << offset << " repeats an earlier one";
}

int passCountReported(const std::string& output)
{
    std::smatch match;
    if (!std::regex_search(output, match, std::regex(R"(pass 1/(\d+) )")))
        return 0;
    return std::stoi(match[1]);
}

TEST(SrmModes, OptionLettersCombineAndTheLastModeWins)
{
    TempDir dir;
    const std::vector<std::pair<std::vector<std::string>, int>> cases{
        {{"-fsv"}, 1}, {{"-fsvz"}, 2}, {{"-fEv"}, 3}, {{"-fmv"}, 7}, {{"-fv"}, 35}, {{"-fvz"}, 36},
        {{"-fmsv"}, 1}, {{"-fsEv"}, 3}, {{"-Esmv"}, 7}, {{"-f", "-s", "-v", "-z"}, 2},
    };
    for (const auto& [options, passes] : cases) {
        const std::string file = dir / "small.txt";
        writeFile(file, "secret");
        std::vector<std::string> arguments = options;
        arguments.push_back(file);
        const ProcessResult run = runSrm(arguments);
        EXPECT_EQ(run.status, 0) << options[0] << "\n" << run.err;
        EXPECT_EQ(passCountReported(run.out), passes) << options[0] << "\n" << run.out;
        EXPECT_FALSE(exists(file)) << options[0];
    }
}

} // namespace
} // namespace velmora::test
