#include "engine/volumes/WholeDriveErase.h"

#include "engine/erase/DoRemoveObj.h"
#include "engine/platform/StandardPaths.h"
#include "engine/volumes/DiskInfo.h"
#include "engine/volumes/DiskUtilLine.h"
#include "engine/volumes/FreeSpaceWipe.h"
#include "engine/volumes/MountedVolumes.h"
#include "engine/volumes/ShellRunners.h"
#include "engine/volumes/VolumeScanner.h"

#include <QDateTime>
#include <QDir>
#include <QFutureWatcher>
#include <QProcess>
#include <QtConcurrent>

namespace velmora {

WholeDriveErase::WholeDriveErase(FreeSpaceWipe* wipe, QObject* parent) : QObject(parent), m_wipe(wipe) {}

WholeDriveErase::~WholeDriveErase() { stopDo(); }

void WholeDriveErase::makeSureToWipeSelectVolume() {
    m_wipe->setEraserTime();
    m_wipe->setIsBegin(true);
    const VolumeObj& volume = m_wipe->selectVolumeObj;
    if (volume.volumeType.contains("ntfs") || volume.volumeType.contains("NTFS"))
        eraseNtfsAsFat32();
    else
        doTrWithArr({"reformat", QString("%1").arg(volume.volumePath)});
}

void WholeDriveErase::doTrWithArr(const QStringList& arguments) {
    if (m_task) stopDo();
    const DiskUtilCall call = diskUtilCall(arguments);
    m_task = new QProcess(this);
    m_task->setProgram(call.program);
    m_task->setArguments(call.arguments);
    m_isPartitionEraser = true;
    connect(m_task, &QProcess::readyReadStandardOutput, this, &WholeDriveErase::doThing);
    connect(m_task, &QProcess::readyReadStandardError, this, &WholeDriveErase::doThingError);
    connect(m_task, &QProcess::finished, this, &WholeDriveErase::stop);
    connect(m_task, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart) return;
        qWarning("This is do reformat volumes");
        const QString program = m_task->program();
        m_task->disconnect(this);
        m_task->deleteLater();
        m_task = nullptr;
        emit runStalled(QString("the disk utility %1 could not be started").arg(program));
    });
    m_task->start();
}

// The output is only logged; the reformat's outcome shows in the fill that follows.
void WholeDriveErase::doThing() {
    qInfo("1-doThing-----");
    if (!m_task) return;
    const QString text = QString::fromUtf8(m_task->readAllStandardOutput());
    if (text.isEmpty()) return;
    qInfo("-doThing-----%s", qPrintable(text));
    if (text.trimmed() == "Mounting disk") rescanVolumes();
}

void WholeDriveErase::doThingError() {
    if (!m_task) return;
    const QString text = QString::fromUtf8(m_task->readAllStandardError());
    if (!text.isEmpty()) qInfo("------%s", qPrintable(text));
}

void WholeDriveErase::stop() {
    if (m_task) {
        m_task->disconnect(this);
        m_task->deleteLater();
        m_task = nullptr;
    }
    if (!m_isPartitionEraser) return;
    const QDateTime started = QDateTime::currentDateTime();
    const QString volumeName = m_wipe->selectVolumeObj.volumeName;
    const QString folder = folderOfVolumeNamed(volumeName);
    if (folder.isEmpty()) {
        // Measured within this call, so it never fires; kept as the erase always had it.
        if (started.secsTo(QDateTime::currentDateTime()) > 60) rescanVolumes();
        emit runStalled(QString("the volume \"%1\" is not there after the reformat").arg(volumeName));
        return;
    }
    QStringList leftovers;
    for (const QString& entry : QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot))
        leftovers.append(folder + "/" + entry);
    m_wipe->resetRounds();
    if (leftovers.isEmpty()) {
        rescanVolumes();
        startFillOfVolumeNamed(volumeName);
        return;
    }
    delete m_remover;
    m_remover = new DoRemoveObj(this);
    connect(m_remover, &DoRemoveObj::removeObjEnd, this, &WholeDriveErase::removeObjEnd);
    m_remover->initWithArr(leftovers);
    rescanVolumes();
}

void WholeDriveErase::removeObjEnd() { startFillOfVolumeNamed(m_wipe->selectVolumeObj.volumeName); }

void WholeDriveErase::stopDo() {
    if (!m_task) return;
    m_task->disconnect(this);
    m_task->kill();
    m_task->waitForFinished(3000);
    delete m_task;
    m_task = nullptr;
}

// Stage 1 for NTFS, which the system can read but not write: erased as FAT32
// under the fixed name "NEW", then filled.
void WholeDriveErase::eraseNtfsAsFat32() {
    const QByteArray deviceNode = m_wipe->selectVolumeObj.volRootDir.toUtf8();
    auto* watcher = new QFutureWatcher<void>(this);
    connect(watcher, &QFutureWatcher<void>::finished, this, [this, watcher] {
        watcher->deleteLater();
        startFillOfVolumeNamed("NEW");
    });
    watcher->setFuture(QtConcurrent::run([deviceNode] {
        const QByteArray line = diskUtilLine(128, "diskutil eraseVolume \"MS-DOS FAT32\" NEW \"%s\"", deviceNode.constData());
        const QString outputPath = eraserDiskCommand(asAdministrator(line).constData());
        qInfo(" rename : %s ", qPrintable(outputPath));
        qInfo("format volume : %s", qPrintable(outputPath));
    }));
}

void WholeDriveErase::startFillOfVolumeNamed(const QString& volumeName) {
    const QVariantMap info = getDisjInfo(volumeName.toUtf8().constData(), DiskInfoScreen::WipeDisk);
    VolumeObj& volume = m_wipe->selectVolumeObj;
    volume.volumeFreeSizeNum = info.value("FreeSpace").toLongLong();
    // On Linux the fill goes to the mount point, which the reformat may have moved.
    if (info.contains("MountPoint")) volume.volumeMountPoint = info.value("MountPoint").toString();
    m_wipe->doFreeSpaceAction();
}

QString WholeDriveErase::folderOfVolumeNamed(const QString& volumeName) const {
    if (StandardPaths::layout() == StandardPaths::Layout::MacOS) {
        for (const QString& entry : volumesRootEntries())
            if (entry == volumeName) return StandardPaths::volumesRoot() + "/" + entry;
        return {};
    }
    const QVariantMap info = getDisjInfo(volumeName.toUtf8().constData(), DiskInfoScreen::WipeDisk);
    if (info.value("VolumeName").toString() != volumeName) return {};
    return info.value("MountPoint").toString();
}

void WholeDriveErase::rescanVolumes() {
    if (VolumeScanner* scanner = m_wipe->volumeScanner()) scanner->getallVolumes();
}

}  // namespace velmora
