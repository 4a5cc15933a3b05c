#pragma once

#include "engine/copy/UniqueFd.h"

#include <QDateTime>
#include <QString>

namespace velmora {

// The dated folder a drive copy goes into: "VLclone(yyyy-MM-dd HH:mm:ss)" on the
// destination, or in the user's desktop folder when the destination cannot hold it.
class CloneFolder {
public:
    static QString stamp(const QDateTime& time);
    // "%1/VLclone(%2)" with the destination's path; on the system root "/" exactly
    // "/VLclone(%2)" (below the redirected system root when there is one).
    static QString cloneFolderPath(const QString& volumePath, const QString& stamp);
    // The same name with "-" for ":", for file systems that refuse a colon in a name (FAT).
    static QString colonFreePath(const QString& path);
    static QString desktopFolderPath(const QString& stamp);

    // Makes the folder (with the folders above it) and opens it without following a link:
    // on the destination, else there without colons, else on the user's desktop. `path`
    // and `fd` tell where it was made; false with `error` when nowhere.
    bool create(const QString& volumePath, const QDateTime& time, QString* error);

    const QString& path() const { return m_path; }
    int fd() const { return m_fd.get(); }
    bool onDesktop() const { return m_onDesktop; }
    UniqueFd takeFd() { return std::move(m_fd); }

    // Makes one folder at a path with the folders above it and opens it (a link at the
    // last component is refused). The descriptor, or -1 with errno.
    static int makeAndOpen(const QString& path);

private:
    QString m_path;
    UniqueFd m_fd;
    bool m_onDesktop = false;
};

}  // namespace velmora
