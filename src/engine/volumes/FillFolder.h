#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

namespace velmora {

// The hidden folder ".Velmora" on a volume that one pass of the free-space fill
// writes into, held open by descriptor so the fill cannot be redirected: the
// mount point is opened without following a link and must lie on the pinned
// device, the folder is made fresh (mode 0700) and opened without following a
// link, and every fill file is created, written and removed relative to it.
//
// A ".Velmora" that is already there is removed first only when it is ours,
// left by a run that was killed: a real folder (never a link) on the device,
// owned by the user running the wipe, holding nothing but regular single-link
// files named ".velmora_<digits>". Anything else there is left alone and the
// folder is not made.
class FillFolder {
public:
    static constexpr char kName[] = ".Velmora";

    FillFolder(const QString& mountPoint, quint64 device);
    ~FillFolder();  // removes the folder when remove() was not called
    FillFolder(const FillFolder&) = delete;
    FillFolder& operator=(const FillFolder&) = delete;

    bool isOpen() const { return m_folderFd >= 0; }
    // Why the folder could not be made or removed; empty when it could.
    const QString& problem() const { return m_problem; }
    int descriptor() const { return m_folderFd; }
    QString path() const { return m_path; }

    // Bytes the volume still counts as free (statvfs f_bfree): after the fill
    // reported the volume full, the bytes it could not reach.
    qint64 freeBytes() const;
    // Removes the fill files and the folder, relative to the descriptors, and
    // flushes the volume; false (with the problem) when something stayed.
    bool remove();

    // Removes a fill folder that a killed run left on the volume; true when
    // none is left. A link, or a folder that is not ours, stays (false, with
    // the reason in problem).
    static bool removeLeftover(const QString& mountPoint, quint64 device, QString* problem);
    // Whether the mount point is the root of the mounted file system on the device
    // (its ".." lies on another one, or is itself, as for "/"): a plain folder
    // would have the fill write up the whole file system it lies on.
    static bool isVolumeRoot(const QString& mountPoint, quint64 device, QString* problem);
    // ".velmora_<digits>": the names of fill files.
    static bool isFillFileName(const QByteArray& name);

private:
    int m_mountFd = -1;
    int m_folderFd = -1;
    QString m_path;
    QString m_problem;
};

}  // namespace velmora
