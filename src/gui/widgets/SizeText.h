#pragma once

#include <QString>
#include <QtGlobal>

namespace velmora {

// The size of an item as the list shows it, in decimal units (1 KB = 1,000
// bytes): "999 byte", "1.00 KB", "12.35 MB", ... The count is taken in single
// precision first, as the list always has.
QString byteToSizeWithByte(quint64 byte);

}  // namespace velmora
