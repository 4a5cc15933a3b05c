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

    // Size texts in decimal units (PublicUtilitiesSizes.cpp). Values pass through
    // single precision; from 10^12 bytes the text still says "GB".
    static QString convertVolSpace(qint64 space);
    // The text without its last two characters, read as a number, times the
    // unit its suffix names ("KB", "MB", "GB", "TB"); 0 for anything else.
    static quint64 volSpaceFromString(const QString& text);
    // True from 201,000,000 bytes: the threshold is 200 MB whatever the name says.
    static bool isMoreThan2GB(quint64 bytes);
    static QString fileSystemTypeForInt(int type, bool isDmg);

    // One request to the "ProbeURL" address, cached data ignored, time-out 5.0 s
    // (PublicUtilitiesNetwork.cpp): true when a server answered.
    static bool isCanBeUseNetWork();
};

}  // namespace velmora
