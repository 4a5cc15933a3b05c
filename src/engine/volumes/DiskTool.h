#pragma once

#include "engine/volumes/VolumeObj.h"

#include <QFutureWatcher>
#include <QObject>
#include <functional>

namespace velmora {

// The disk tool's actions on one volume: format, rename and eject, each through one
// disk-utility command (velmora-diskutil with administrator rights on Linux, the
// system's disk utility on macOS) run on the background queue. Every request ends
// with exactly one finished signal, on the thread that owns the tool, carrying the
// outcome read from the command (its exit status and the disk utility's error
// dictionary); a request refused before anything runs (the startup volume, a name
// the file system cannot take, a volume that is not mounted as listed any more,
// another action under way) ends the same way, queued, with the reason.
//
// The volume is pinned by device node and UUID (VolumeIdentity) right before the
// command runs, and the command targets that device node, never a name.
class DiskTool : public QObject {
    Q_OBJECT

public:
    enum class Action { Format, Rename, Eject };
    Q_ENUM(Action)

    explicit DiskTool(QObject* parent = nullptr);
    ~DiskTool() override;  // waits for an action under way

    bool isRunning() const { return m_running; }

    // Formats the volume by its current diskType (FormatCase): with the type text and
    // the name (nameForFormat) when it is neither APFS nor NTFS; in place for APFS;
    // as "MS-DOS FAT32" named "NEW" for NTFS. The name and type are not used in the
    // last two cases.
    void formatVolume(const VolumeObj& volume, const QString& name, const QString& typeText);
    // Renames the volume to nameForRename(diskType, name).
    void renameVolume(const VolumeObj& volume, const QString& name);
    // Ejects the disk that holds the volume (every volume on it is unmounted).
    void ejectVolume(const VolumeObj& volume);

signals:
    void started(velmora::DiskTool::Action action);
    // succeeded: the command did it. message: what happened, in a sentence, with the
    // disk utility's message on failure. volumeName: the name the volume holds
    // afterwards (the new name after a rename or format; the old one on failure).
    void finished(velmora::DiskTool::Action action, bool succeeded, const QString& message, const QString& volumeName);

private:
    struct Outcome {
        bool succeeded = false;
        QString message;
        QString volumeName;
    };
    void run(Action action, const QString& volumeName, const std::function<Outcome()>& work);
    void refuse(Action action, const QString& message, const QString& volumeName);

    QFutureWatcher<Outcome> m_watcher;
    Action m_action = Action::Format;
    bool m_running = false;
};

}  // namespace velmora
