#include "gui/duplicate/DuplicateSizeText.h"

namespace velmora {

QString duplicateSizeText(quint64 bytes) {
    if (bytes < 1000) return QString::asprintf("%.0f byte", double(bytes));
    static const char* const kUnits[] = {"KB", "MB", "GB", "TB"};
    double value = double(bytes) / 1000.0;
    int unit = 0;
    // 999,999 bytes would read "1000.00 KB" once rounded: it is "1.00 MB".
    while (unit < 3 && value >= 999.995) {
        value /= 1000.0;
        ++unit;
    }
    return QString::asprintf("%.2f %s", value, kUnits[unit]);
}

}  // namespace velmora
