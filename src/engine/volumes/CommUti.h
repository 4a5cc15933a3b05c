#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

namespace velmora {

// The common utilities' size texts (decimal units). They differ from the
// PublicUtilities family on purpose: small sizes are shown in KB, and the parser
// expects a space before the unit.
class CommUti {
public:
    // "%0.2f KB" below 10^6 (0 included), then MB and GB; from 10^12 the value is
    // divided by 10^12 and still called "GB". Computed in single precision.
    static QString convertVolSpace(qint64 space);
    // The text without its last three characters (a space and the unit), read as a
    // number, times the unit; 0 for a zero number or an unknown unit.
    static quint64 volSpaceFromString(const QString& text);
    // "%.0f byte" below 1,000, then KB, MB, GB and TB with two decimals;
    // longlongDiskSize computes in double precision, longlongConvertVolSpace in single.
    static QString longlongDiskSize(qint64 size);
    static QString longlongConvertVolSpace(qint64 size);

    // The uninstaller's search roots for the current layout, in their fixed order (user
    // domain first). Folders that do not exist are listed too; walking them finds nothing.
    static QStringList applicationPaths();
    static QStringList widgetPaths();
    static QStringList pluginPaths();
    static QStringList preferencePanePaths();
    // Whether a process of ours runs from an application bundle with this identifier.
    static bool isBelongRunningApp(const QString& bundleID);
    // Bytes of a file, or of all files below a folder (links not followed, other
    // file systems included); 0 for what cannot be read.
    static qint64 sizeOfFileRef(const QString& path);
};

}  // namespace velmora
