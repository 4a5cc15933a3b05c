#include "gui/widgets/SizeText.h"

namespace velmora {

QString byteToSizeWithByte(quint64 byte) {
    const float value = float(byte);
    if (byte <= 999) return QString::asprintf("%.0f byte", double(value));
    if (byte <= 999'999) return QString::asprintf("%.2f KB", double(value / 1000.0f));
    if (byte <= 999'999'999) return QString::asprintf("%.2f MB", double(value / 1.0e6f));
    if ((byte >> 12) <= 244'140'624) return QString::asprintf("%.2f GB", double(value / 1.0e9f));
    return QString::asprintf("%.2f TB", double(value / 1.0e12f));
}

}  // namespace velmora
