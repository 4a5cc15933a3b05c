#include "engine/volumes/SizeTextParsing.h"

#include <QByteArray>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <locale.h>
#ifdef Q_OS_MACOS
#include <xlocale.h>
#endif

namespace velmora {

float leadingFloatValue(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    // Size texts always use a decimal point, whatever the user's locale says.
    locale_t cLocale = newlocale(LC_NUMERIC_MASK, "C", locale_t(0));
    const float value = strtof_l(bytes.constData(), nullptr, cLocale);
    freelocale(cLocale);
    return std::isfinite(value) ? value : 0.0f;
}

quint64 byteCountOf(double bytes) {
    if (!(bytes > 0)) return 0;
    if (bytes >= 18446744073709551616.0) return std::numeric_limits<quint64>::max();
    return quint64(bytes);
}

}  // namespace velmora
