#include "engine/erase/PublicUtilities.h"

#include "engine/volumes/SizeTextParsing.h"

namespace velmora {

QString PublicUtilities::convertVolSpace(qint64 space) {
    const double value = float(space);
    if (space >= 0 && space < 1000) return QString::asprintf("%.0f byte", value);
    if (space >= 0 && space < 1000000) return QString::asprintf("%0.2f KB", value / 1000.0);
    if (space >= 0 && space < 1000000000) return QString::asprintf("%0.2f MB", value / 1000000.0);
    if (space < 1000000000000) return QString::asprintf("%0.2f GB", value / 1000000000.0);
    return QString::asprintf("%0.2f GB", value / 1000000000000.0);
}

quint64 PublicUtilities::volSpaceFromString(const QString& text) {
    if (text.isEmpty()) return 0;
    const float number = leadingFloatValue(text.left(text.size() - 2));
    float bytes = 0;
    if (text.endsWith("KB")) bytes = number > 0 ? number * 1000.0f : 0;
    else if (text.endsWith("MB")) bytes = number * 1000000.0f;
    else if (text.endsWith("GB")) bytes = number * 1000000000.0f;
    else if (text.endsWith("TB")) bytes = number * kSinglePrecisionTera;
    return byteCountOf(bytes);
}

bool PublicUtilities::isMoreThan2GB(quint64 bytes) { return bytes / 1000000 > 200; }

QString PublicUtilities::fileSystemTypeForInt(int type, bool isDmg) {
    if (isDmg) return "Disk Image";
    switch (type) {
    case 0: return "FAT12";
    case 1: return "FAT16";
    case 2: return "FAT32";
    case 3: return "NTFS";
    case 4: return "EXT2";
    case 5: return "EXT3";
    case 6: return "RAW";
    case 7: return "EXFAT";
    case 8: return "HFS+";
    case 9: return "Unknown";
    default: return "Disk";
    }
}

}  // namespace velmora
