// Property lists come from files on disk and from the disk utility's output.
#include "FuzzCheck.h"
#include "engine/platform/PropertyList.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const QVariant value = velmora::propertyListFromData(bytes);
    if (!value.isValid()) return 0;
    // Whatever was read can be written, and what is written reads back and writes again
    // to the same text: settings files survive being saved and loaded.
    const QByteArray written = velmora::propertyListToXml(value);
    const QVariant reread = velmora::propertyListFromData(written);
    fuzzCheck(reread.isValid(), "a written property list reads back");
    fuzzCheck(velmora::propertyListToXml(reread) == written, "writing what was read back gives the same text");
    return 0;
}
