#pragma once

#include <QString>

namespace velmora {

// Small shared helpers reached as class operations.
class PublicUtilities {
public:
    // Display name of the stored erasure level.
    static QString getEraserTimes();
    // History-present flags ("WipeFileHistory", "WipeVolumeHistory") in "SteadyWiperBase".
    static void writeUpDataHistoryStr(const QString& key, const QString& value);
    static QString getUpDataHistoryStr(const QString& key);
};

}  // namespace velmora
