#include "srm/PassScheme.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace velmora {

std::string Pass::describe() const
{
    if (random)
        return "random";
    std::string text;
    for (std::uint8_t byte : pattern) {
        char hex[8];
        std::snprintf(hex, sizeof hex, "%s0x%02X", text.empty() ? "" : " ", byte);
        text += hex;
    }
    return text;
}

namespace {

std::vector<Pass> thirtyFivePasses()
{
    std::vector<Pass> passes;
    for (int i = 0; i < 4; ++i)
        passes.push_back(Pass::randomData());
    passes.push_back(Pass::bytes({0x55}));
    passes.push_back(Pass::bytes({0xAA}));
    passes.push_back(Pass::bytes({0x92, 0x49, 0x24}));
    passes.push_back(Pass::bytes({0x49, 0x24, 0x92}));
    passes.push_back(Pass::bytes({0x24, 0x92, 0x49}));
    for (int value = 0x00; value <= 0xFF; value += 0x11)
        passes.push_back(Pass::bytes({static_cast<std::uint8_t>(value)}));
    passes.push_back(Pass::bytes({0x92, 0x49, 0x24}));
    passes.push_back(Pass::bytes({0x49, 0x24, 0x92}));
    passes.push_back(Pass::bytes({0x24, 0x92, 0x49}));
    passes.push_back(Pass::bytes({0x6D, 0xB6, 0xDB}));
    passes.push_back(Pass::bytes({0xB6, 0xDB, 0x6D}));
    passes.push_back(Pass::bytes({0xDB, 0x6D, 0xB6}));
    for (int i = 0; i < 4; ++i)
        passes.push_back(Pass::randomData());
    return passes;
}

} // namespace

std::vector<Pass> passesFor(PassMode mode, bool zeroPass)
{
    std::vector<Pass> passes;
    switch (mode) {
    case PassMode::Single:
        passes = {Pass::randomData()};
        break;
    case PassMode::ThreePass:
        passes = {Pass::randomData(), Pass::randomData(), Pass::bytes({0x44, 0x6F, 0x45})};
        break;
    case PassMode::SevenPass:
        passes = {Pass::bytes({0xF6}), Pass::bytes({0x00}), Pass::bytes({0xFF}), Pass::randomData(),
                  Pass::bytes({0x00}), Pass::bytes({0xFF}), Pass::randomData()};
        break;
    case PassMode::ThirtyFivePass:
        passes = thirtyFivePasses();
        break;
    }
    if (zeroPass)
        passes.push_back(Pass::bytes({0x00}));
    return passes;
}

void fillPattern(const Pass& pass, std::uint64_t fileOffset, std::uint8_t* out, std::size_t length)
{
    const std::size_t period = pass.pattern.size();
    if (period == 1) {
        std::memset(out, pass.pattern[0], length);
        return;
    }
    // Seed one period in phase with the offset, then double the filled prefix; the
    // prefix stays a whole number of periods, so every copy lands in phase.
    const std::size_t phase = fileOffset % period;
    std::size_t filled = 0;
    for (; filled < period && filled < length; ++filled)
        out[filled] = pass.pattern[(phase + filled) % period];
    while (filled < length) {
        const std::size_t chunk = std::min(filled, length - filled);
        std::memcpy(out + filled, out, chunk);
        filled += chunk;
    }
}

} // namespace velmora
