#pragma once

#include <QString>
#include <QtGlobal>

namespace velmora {

// 10^12 as single precision holds it: 999,999,995,904. Both size-text parsers
// multiply terabytes by this value.
constexpr float kSinglePrecisionTera = 1000000000000.0f;

// The number at the start of the text, as a float: leading blanks skipped,
// anything after the number ignored, 0 when there is none.
float leadingFloatValue(const QString& text);

// A parsed byte count as the parsers return it: negative and not-a-number give 0.
quint64 byteCountOf(double bytes);

}  // namespace velmora
