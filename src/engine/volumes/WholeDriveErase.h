#pragma once

#include "engine/volumes/ShellRunners.h"

#include <QObject>
#include <QStringList>
#include <optional>

class QProcess;

namespace velmora {

class DoRemoveObj;
class FreeSpaceWipe;
struct ResolvedVolume;

// The whole-drive erase: stage 1 reformats the selected volume through the disk
// utility ("reformat DEVICE", which keeps name and format; an NTFS volume is
// erased as FAT32 named "NEW" instead), stage 2 removes what the fresh volume
// still holds and runs the free-space fill on it. The run's state, progress and
// end live in the FreeSpaceWipe given, which must have selectEraserType 2 and
// the volume in selectVolumeObj. Lives on the user-interface thread.
//
// The volume is pinned by device node and UUID when the run starts; the reformat
// targets that device node, and the fresh file system is found again on the same
// device node only. A reformat that fails, is refused or leaves the volume
// unmounted, and a volume that no longer resolves, end the run as failed before
// any file is touched.
class WholeDriveErase : public QObject {
    Q_OBJECT

public:
    explicit WholeDriveErase(FreeSpaceWipe* wipe, QObject* parent = nullptr);
    ~WholeDriveErase() override;  // stops a disk utility still running

    // Starts a confirmed run: elapsed time, isBegin, the pinned volume, and stage 1.
    void makeSureToWipeSelectVolume();

    // Runs the disk utility as a child with these arguments (through pkexec on
    // Linux when not root), reading its output.
    void doTrWithArr(const QStringList& arguments);
    void doThing();        // the child's standard output
    void doThingError();   // the child's standard error
    void stop(int exitCode, bool exitedNormally);  // the child ended: stage 2 when it succeeded
    void removeObjEnd();   // the leftovers are removed: the fill
    void stopDo();         // stops and forgets a running child

signals:
    // The reformat is done and the fresh volume found: what it still holds is
    // removed, then its free space is filled (the fill reports through the wipe).
    void stageTwoBegan();

private:
    void eraseNtfsAsFat32();
    // Stage 2 on the fresh file system of the pinned device node.
    void beginStageTwo();
    // Re-resolves the reformatted volume and starts the fill on it.
    void startFillOfReformattedVolume();
    std::optional<ResolvedVolume> reformattedVolume(bool firstLookAfterReformat);
    // Ends the run as failed with the reason; queued, so callers return first.
    void fail(const QString& reason);
    void rescanVolumes();

    FreeSpaceWipe* const m_wipe;
    QProcess* m_task = nullptr;
    CommandLine m_command;
    QString m_errorOutput;
    DoRemoveObj* m_remover = nullptr;
    QStringList m_leftovers;
    bool m_isPartitionEraser = false;
};

}  // namespace velmora
