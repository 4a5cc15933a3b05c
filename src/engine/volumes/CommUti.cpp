#include "engine/volumes/CommUti.h"

#include "engine/volumes/SizeTextParsing.h"

namespace velmora {
namespace {

// The byte/KB/MB/GB/TB ladder of longlongDiskSize and longlongConvertVolSpace;
// only the precision of the value differs between the two.
QString decimalSizeText(qint64 size, double value) {
    if (size < 1000) return QString::asprintf("%.0f byte", value);
    if (size < 1000000) return QString::asprintf("%0.2f KB", value / 1000.0);
    if (size < 1000000000) return QString::asprintf("%0.2f MB", value / 1000000.0);
    if (size < 1000000000000) return QString::asprintf("%0.2f GB", value / 1000000000.0);
    return QString::asprintf("%0.2f TB", value / 1000000000000.0);
}

}  // namespace

QString CommUti::convertVolSpace(qint64 space) {
    const float value = float(space);
    if (space >= 0 && space < 1000000) return QString::asprintf("%0.2f KB", double(value / 1000.0f));
    if (space >= 0 && space < 1000000000) return QString::asprintf("%0.2f MB", double(value / 1000000.0f));
    if (space < 1000000000000) return QString::asprintf("%0.2f GB", double(value / 1000000000.0f));
    return QString::asprintf("%0.2f GB", double(value / 1000000000000.0f));
}

quint64 CommUti::volSpaceFromString(const QString& text) {
    if (text.isEmpty()) return 0;
    const double number = leadingFloatValue(text.left(text.size() - 3));
    if (number == 0) return 0;
    double bytes = 0;
    if (text.endsWith("KB")) bytes = number > 0 ? number * 1000.0 : 0;
    else if (text.endsWith("MB")) bytes = number * 1000000.0;
    else if (text.endsWith("GB")) bytes = number * 1000000000.0;
    else if (text.endsWith("TB")) bytes = number * double(kSinglePrecisionTera);
    return byteCountOf(bytes);
}

QString CommUti::longlongDiskSize(qint64 size) { return decimalSizeText(size, double(size)); }

QString CommUti::longlongConvertVolSpace(qint64 size) { return decimalSizeText(size, float(size)); }

}  // namespace velmora
