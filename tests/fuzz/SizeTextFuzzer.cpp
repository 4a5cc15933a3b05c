// Size texts are read back from the volume table and from the disk utility's answers.
#include "FuzzCheck.h"
#include "engine/erase/PublicUtilities.h"
#include "engine/volumes/CommUti.h"
#include "engine/volumes/SizeTextParsing.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

// Within the two decimals the texts keep, and the single precision they pass through.
bool closeTo(quint64 parsed, qint64 size) { return std::fabs(double(parsed) - double(size)) <= double(size) * 0.01; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    fuzzCheck(std::isfinite(velmora::leadingFloatValue(text)), "the leading number is finite");
    velmora::PublicUtilities::volSpaceFromString(text);
    velmora::CommUti::volSpaceFromString(text);

    // Every size from 1,000 bytes up that is written as text reads back as about itself
    // (below that the texts say "byte" or round to 0; from 10^12 the first family says "GB").
    if (size < sizeof(qint64)) return 0;
    qint64 bytes = 0;
    std::memcpy(&bytes, data, sizeof bytes);
    if (bytes < 1000) return 0;
    fuzzCheck(closeTo(velmora::CommUti::volSpaceFromString(velmora::CommUti::longlongDiskSize(bytes)), bytes),
              "longlongDiskSize reads back");
    fuzzCheck(closeTo(velmora::CommUti::volSpaceFromString(velmora::CommUti::longlongConvertVolSpace(bytes)), bytes),
              "longlongConvertVolSpace reads back");
    if (bytes >= 1000000000000) return 0;
    fuzzCheck(closeTo(velmora::CommUti::volSpaceFromString(velmora::CommUti::convertVolSpace(bytes)), bytes),
              "CommUti::convertVolSpace reads back");
    fuzzCheck(closeTo(velmora::PublicUtilities::volSpaceFromString(velmora::PublicUtilities::convertVolSpace(bytes)),
                      bytes),
              "PublicUtilities::convertVolSpace reads back");
    return 0;
}
