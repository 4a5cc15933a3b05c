#pragma once

#include <QObject>
#include <QStringList>

class QProcess;

namespace velmora {

class DoRemoveObj;
class FreeSpaceWipe;

// The whole-drive erase: stage 1 reformats the selected volume through the disk
// utility ("reformat DEVICE", which keeps name and format; an NTFS volume is
// erased as FAT32 named "NEW" instead), stage 2 removes what the fresh volume
// still holds and runs the free-space fill on it. The run's state, progress and
// end live in the FreeSpaceWipe given, which must have selectEraserType 2 and
// the volume in selectVolumeObj. Lives on the user-interface thread.
class WholeDriveErase : public QObject {
    Q_OBJECT

public:
    explicit WholeDriveErase(FreeSpaceWipe* wipe, QObject* parent = nullptr);
    ~WholeDriveErase() override;  // stops a disk utility still running

    // Starts a confirmed run: elapsed time, isBegin, and stage 1.
    void makeSureToWipeSelectVolume();

    // Runs the disk utility as a child with these arguments (through pkexec on
    // Linux when not root), reading its output.
    void doTrWithArr(const QStringList& arguments);
    void doThing();        // the child's standard output
    void doThingError();   // the child's standard error
    void stop();           // the child ended: stage 2
    void removeObjEnd();   // the leftovers are removed: the fill
    void stopDo();         // stops and forgets a running child

signals:
    // The run cannot go on and no end view will follow: the disk utility did not
    // start, or the volume was not found again after the reformat.
    void runStalled(const QString& reason);

private:
    void eraseNtfsAsFat32();
    // Queries the volume by name, takes its free space and folder, and starts the fill.
    void startFillOfVolumeNamed(const QString& volumeName);
    // The volume's folder after the reformat, found by its name; empty when gone.
    QString folderOfVolumeNamed(const QString& volumeName) const;
    void rescanVolumes();

    FreeSpaceWipe* const m_wipe;
    QProcess* m_task = nullptr;
    DoRemoveObj* m_remover = nullptr;
    bool m_isPartitionEraser = false;
};

}  // namespace velmora
