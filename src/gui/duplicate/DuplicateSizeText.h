#pragma once

#include <QString>
#include <QtGlobal>

namespace velmora {

// A byte count in decimal units (1 KB = 1,000 bytes): "999 byte" below
// 1,000, then two decimals in KB, MB, GB and TB.
QString duplicateSizeText(quint64 bytes);

}  // namespace velmora
