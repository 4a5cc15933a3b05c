#include "engine/volumes/WholeDriveErase.h"

#include "engine/erase/DoRemoveObj.h"
#include "engine/platform/LogCategories.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/PathStatus.h"
#include "engine/volumes/DiskUtilLine.h"
#include "engine/volumes/FreeSpaceWipe.h"
#include "engine/volumes/VolumeIdentity.h"
#include "engine/volumes/VolumeScanner.h"
#include "srm/NoFollowPath.h"

#include <QFutureWatcher>
#include <QProcess>
#include <QtConcurrent>
#include <fcntl.h>
#include <unistd.h>

namespace velmora {
namespace {

// The entries of the folder, each name kept as its bytes.
QStringList entriesOf(const QString& folder) {
    QStringList paths;
    const int fd = openLongPath(nativePath(folder), O_RDONLY | O_DIRECTORY);
    if (fd < 0) return paths;
    int error = 0;
    for (const std::string& name : folderEntries(fd, error))
        paths.append(folder + "/" + pathFromNative(QByteArray::fromStdString(name)));
    close(fd);
    return paths;
}

}  // namespace

WholeDriveErase::WholeDriveErase(FreeSpaceWipe* wipe, QObject* parent) : QObject(parent), m_wipe(wipe) {}

WholeDriveErase::~WholeDriveErase() { stopDo(); }

void WholeDriveErase::makeSureToWipeSelectVolume() {
    m_wipe->setEraserTime();
    m_wipe->setIsBegin(true);
    m_leftovers.clear();
    VolumeObj& volume = m_wipe->selectVolumeObj;
    QString error;
    if (!pinVolume(volume, &error)) {
        fail(QString("Nothing was erased: %1.").arg(error));
        return;
    }
    if (volume.volumeType.contains("ntfs") || volume.volumeType.contains("NTFS"))
        eraseNtfsAsFat32();
    else
        doTrWithArr({"reformat", volume.volRootDir});
}

void WholeDriveErase::doTrWithArr(const QStringList& arguments) {
    if (m_task) stopDo();
    m_command = asAdministrator(diskUtilLine(arguments));
    m_errorOutput.clear();
    m_task = new QProcess(this);
    m_task->setProgram(m_command.program);
    m_task->setArguments(m_command.arguments);
    m_task->setStandardInputFile(QProcess::nullDevice());
    m_isPartitionEraser = true;
    connect(m_task, &QProcess::readyReadStandardOutput, this, &WholeDriveErase::doThing);
    connect(m_task, &QProcess::readyReadStandardError, this, &WholeDriveErase::doThingError);
    connect(m_task, &QProcess::finished, this, [this](int exitCode, QProcess::ExitStatus status) {
        stop(exitCode, status == QProcess::NormalExit);
    });
    connect(m_task, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart) return;
        qCWarning(lcVolumes, "This is do reformat volumes");
        const QString reason = m_task->errorString();
        m_task->disconnect(this);
        m_task->deleteLater();
        m_task = nullptr;
        m_isPartitionEraser = false;
        fail(QString("Nothing was erased: the disk utility %1 could not be started (%2).").arg(m_command.program, reason));
    });
    m_task->start();
}

// The output is logged; the reformat's outcome is its exit status.
void WholeDriveErase::doThing() {
    qCInfo(lcVolumes, "1-doThing-----");
    if (!m_task) return;
    const QString text = QString::fromUtf8(m_task->readAllStandardOutput());
    if (text.isEmpty()) return;
    qCInfo(lcVolumes, "-doThing-----%s", qPrintable(text));
    if (text.trimmed() == "Mounting disk") rescanVolumes();
}

void WholeDriveErase::doThingError() {
    if (!m_task) return;
    const QString text = QString::fromUtf8(m_task->readAllStandardError());
    if (text.isEmpty()) return;
    qCInfo(lcVolumes, "------%s", qPrintable(text));
    m_errorOutput += text;
}

void WholeDriveErase::stop(int exitCode, bool exitedNormally) {
    if (m_task) {
        m_errorOutput += QString::fromUtf8(m_task->readAllStandardError());
        m_task->disconnect(this);
        m_task->deleteLater();
        m_task = nullptr;
    }
    if (!m_isPartitionEraser) return;
    m_isPartitionEraser = false;
    const QString& name = m_wipe->selectVolumeObj.volumeName;
    if (!exitedNormally || exitCode != 0) {
        const QString why = exitedNormally ? diskUtilFailure(m_command, exitCode, m_errorOutput.trimmed())
                                           : QString("the disk utility was killed");
        fail(QString("The volume \"%1\" could not be reformatted: %2.").arg(name, why));
        return;
    }
    beginStageTwo();
}

void WholeDriveErase::beginStageTwo() {
    const std::optional<ResolvedVolume> volume = reformattedVolume(true);
    if (!volume) return;
    emit stageTwoBegan();
    m_leftovers = entriesOf(volume->mountPoint);
    m_wipe->resetRounds();
    rescanVolumes();
    if (m_leftovers.isEmpty()) {
        startFillOfReformattedVolume();
        return;
    }
    delete m_remover;
    m_remover = new DoRemoveObj(this);
    connect(m_remover, &DoRemoveObj::removeObjEnd, this, &WholeDriveErase::removeObjEnd);
    m_remover->initWithArr(m_leftovers);
}

void WholeDriveErase::removeObjEnd() {
    QStringList remaining;
    for (const QString& path : m_leftovers)
        if (itemExists(path)) remaining.append(displayPath(path.mid(path.lastIndexOf('/') + 1)));
    if (!remaining.isEmpty()) {
        fail(QString("The volume \"%1\" was reformatted, but these entries could not be erased: %2.")
                 .arg(m_wipe->selectVolumeObj.volumeName, remaining.join(", ")));
        return;
    }
    startFillOfReformattedVolume();
}

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
    const CommandLine command =
        asAdministrator(diskUtilLine({"eraseVolume", "MS-DOS FAT32", "NEW", m_wipe->selectVolumeObj.volRootDir}));
    auto* watcher = new QFutureWatcher<CommandResult>(this);
    connect(watcher, &QFutureWatcher<CommandResult>::finished, this, [this, watcher, command] {
        const CommandResult result = watcher->result();
        watcher->deleteLater();
        qCInfo(lcVolumes, "format volume : %s", qPrintable(result.outputPath));
        if (!result.succeeded()) {
            const QString why = result.started && result.exitedNormally
                                    ? diskUtilFailure(command, result.exitCode, result.failure)
                                    : result.failure;
            fail(QString("The volume \"%1\" could not be erased as FAT32: %2.").arg(m_wipe->selectVolumeObj.volumeName, why));
            return;
        }
        beginStageTwo();
    });
    watcher->setFuture(QtConcurrent::run([command] { return eraserDiskCommand(command); }));
}

void WholeDriveErase::startFillOfReformattedVolume() {
    const std::optional<ResolvedVolume> volume = reformattedVolume(false);
    if (!volume) return;
    m_wipe->selectVolumeObj.volumeFreeSizeNum = volume->freeBytes;
    m_wipe->doFreeSpaceAction();
}

// The fresh file system on the pinned device node. The first time after the
// reformat it takes whatever UUID the device holds now; from then on the record
// pins that UUID and device number, so only the same file system is accepted.
std::optional<ResolvedVolume> WholeDriveErase::reformattedVolume(bool firstLookAfterReformat) {
    VolumeObj& pinned = m_wipe->selectVolumeObj;
    const VolumeIdentity identity = VolumeIdentity::of(pinned);
    QString error;
    const std::optional<ResolvedVolume> volume =
        firstLookAfterReformat ? identity.resolveReformatted(&error) : identity.resolve(&error);
    if (!volume) {
        fail(QString("The volume \"%1\" was reformatted, but it cannot be erased further: %2.").arg(pinned.volumeName, error));
        return std::nullopt;
    }
    applyResolvedVolume(*volume, pinned);
    return volume;
}

void WholeDriveErase::fail(const QString& reason) {
    qCWarning(lcVolumes, "%s", qPrintable(reason));
    QMetaObject::invokeMethod(this, [this, reason] { m_wipe->failRun(reason); }, Qt::QueuedConnection);
}

void WholeDriveErase::rescanVolumes() {
    if (VolumeScanner* scanner = m_wipe->volumeScanner()) scanner->getallVolumes();
}

}  // namespace velmora
