#include "engine/volumes/FreeSpaceWipe.h"

#include "engine/erase/EraserLevel.h"
#include "engine/erase/PublicUtilities.h"
#include "engine/history/DoDataBase.h"
#include "engine/platform/StandardPaths.h"
#include "engine/volumes/DiskInfo.h"
#include "engine/volumes/FillFileWriter.h"
#include "engine/volumes/MountedVolumes.h"
#include "engine/volumes/VolumeScanner.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QThread>
#include <QtConcurrent>
#include <fcntl.h>
#include <unistd.h>

namespace velmora {
namespace {

constexpr char kFolderFailText[] =
    "The hard drive is occupied or the hard drive is read-only. \n"
    "Close other programs or remove the read-only attribute to try again.";
constexpr char kCancelledText[] = "The operation was canceled by the user.";
constexpr char kFreeSpaceDoneText[] = "The deleted/lost data on the hard drive has been successfully erased.";
constexpr char kDriveDoneText[] = "All the data on the selected hard drive has been successfully erased.";

const char* zeroBlock() {
    static const char zeros[FreeSpaceWipe::kBlock] = {};
    return zeros;
}

QString fillFilePath(const QString& folder, qint64 index) { return QString("%1/.velmora_%2").arg(folder).arg(index); }

void removeFolder(const QString& folder) {
    if (!folder.isEmpty()) QDir(folder).removeRecursively();
}

// Flushes the volume that holds the folder, so the removed fill is on the device
// before the next pass writes the same space again.
void flushFileSystemOf(const QString& folder) {
#ifdef Q_OS_LINUX
    const int fd = ::open(QFile::encodeName(QFileInfo(folder).absolutePath()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        const bool flushed = ::syncfs(fd) == 0;
        ::close(fd);
        if (flushed) return;
    }
#endif
    ::sync();
}

// The short remainder file's text: formatting "%@0" over and over, starting from
// nothing, which renders as "(null)" the first time.
QByteArray nullPrefixedZeros(qint64 length) {
    return (QByteArray("(null)") + QByteArray(length, '0')).left(length);
}

}  // namespace

FreeSpaceWipe::FreeSpaceWipe(QObject* parent) : QObject(parent) {
    m_eraserTimer.setInterval(1000);
    connect(&m_eraserTimer, &QTimer::timeout, this, [this] { m_eraserTimeText = elapsedTimeText(++m_eraserTimeR); });
}

FreeSpaceWipe::~FreeSpaceWipe() {
    m_isCancelEraser = true;
    m_worker.waitForFinished();
}

FreeSpaceWipe::WipeStart FreeSpaceWipe::wipeButtonAction() const {
    if (selectEraserType == 1) {
        const QString& type = selectVolumeObj.volumeType;
        return type.contains("ntfs") || type.contains("NTFS") ? WipeStart::ShowNTFSWindow : WipeStart::DoFreeAction;
    }
    if (selectEraserType == 2)
        return selectVolumeObj.volumeMountPoint == "/" ? WipeStart::ShowSystemEraser : WipeStart::DoEraserPartiltion;
    qInfo("no select type");
    return WipeStart::NoSelectType;
}

void FreeSpaceWipe::doFreeSpaceAction() {
    m_worker.waitForFinished();
    m_isCancelEraser = false;
    m_errorString.clear();
    m_iRoundTimes = 0;
    const qint64 freeBytes = qMax<qint64>(0, selectVolumeObj.volumeFreeSizeNum);
    const qint64 fillCount = freeBytes / kFillUnit;
    const qint64 remainder = freeBytes - fillCount * kFillUnit;
    // With nothing free this is 100/0, infinite; nothing is written then anyway.
    const float stepPercent = remainder >= 1 ? 100.0 / double(fillCount + 1) : 100.0 / double(fillCount);
    const int passes = getEraserTimes();
    m_worker = QtConcurrent::run(&FreeSpaceWipe::runPasses, this, fillCount, remainder, passes, stepPercent,
                                 fillFolderPath(), m_wipeScanPathStr);
}

// One pass after the other. A pass is skipped while isRounding is still set from
// the one before: the fill loop clears it only when it reaches its last file, so
// a volume with less than two fill units free, or a cancelled fill, gets one pass
// only, and when the last pass is skipped no end view follows. This is how the
// wipe has always behaved.
void FreeSpaceWipe::runPasses(qint64 fillCount, qint64 remainder, int passes, float stepPercent, QString fillFolder,
                              QString lastFolder) {
    bool endScheduled = false;
    for (int k = 0; k < passes; ++k) {
        if (m_isRounding) continue;
        ++m_iRoundTimes;
        m_isRounding = true;
        m_times = 0;
        if (m_isCancelEraser) break;

        QString folder = fillFolder;
        if (folder.isEmpty() || !QDir().mkpath(folder)) {
            folder = StandardPaths::tempDir() + "/.Velmora";
            qInfo("1Create folder path: %s", qPrintable(folder));
            if (!QDir().mkpath(folder)) {
                qWarning("Create finder fail");
                setErrorString(kFolderFailText);
                folder.clear();
            }
        }
        if (!folder.isEmpty()) {
            lastFolder = folder;
            setWipeScanPathStr(folder);
            roundOneWithRoundCount(fillCount, passes, stepPercent, folder);
            writLostDataWithLoseCount(remainder, fillCount, folder);
        }

        emit setRemoveProgress(QString::asprintf("Erased 100%% in %d of %d %s", k + 1, passes, passes < 2 ? "pass" : "passes"),
                               100.0f);
        removeFolder(lastFolder);
        flushFileSystemOf(lastFolder);
        if (m_isCancelEraser || k + 1 == passes) {
            endScheduled = true;
            QMetaObject::invokeMethod(this, [this] {
                if (selectEraserType == 1 || selectEraserType == 2) emit closeWindow();
                QTimer::singleShot(2000, this, &FreeSpaceWipe::showComplite);
            });
        }
    }
    if (!endScheduled) QMetaObject::invokeMethod(this, &FreeSpaceWipe::runStalled);
}

// Writes fill files 1 to fillCount - 1: one unit short of the free space, as the
// wipe has always done; the remainder file follows.
void FreeSpaceWipe::roundOneWithRoundCount(qint64 fillCount, int passes, float stepPercent, const QString& folder) {
    m_times = 0;
    if (fillCount < 2) return;
    for (qint64 i = 1; i <= fillCount - 1; ++i) {
        if (i == fillCount - 1) m_isRounding = false;
        const int times = ++m_times;
        if (m_isCancelEraser) {
            removeFolder(folder);
            return;
        }
        const float percent = float(times) * stepPercent;
        const int round = qBound(1, m_iRoundTimes.load(), passes);
        m_iRoundTimes = round;
        emit setRemoveProgress(QString::asprintf("Erased %.2f%% in %d of %d %s", percent < 100 ? double(percent) : 99.0,
                                                 round, passes, passes > 1 ? "passes" : "pass"),
                               percent);
        createDydFile(folder, int(i));
    }
}

// 4,000 zero bytes, an 8-byte header (one random byte, seven zeros), then 32,001
// blocks of 4,000 zero bytes: 128,008,008 bytes, or less when the volume fills up.
void FreeSpaceWipe::createDydFile(const QString& folder, int index) {
    const QString path = fillFilePath(folder, index);
    if (createFileWithContents(path, QByteArray(kBlock, '\0'))) qInfo("C Suss");
    else qInfo("C Fail");
    FillFileWriter handle(path);
    if (!handle.isOpen()) return;
    const char header[8] = {char(QRandomGenerator::global()->generate() & 0xFF)};
    for (int i = 0; i < kBlockAppends; ++i) {
        bool written = handle.seekToEndOfFile();
        if (written && i == 0) written = handle.writeData(header, sizeof header);
        if (!written || !handle.writeData(zeroBlock(), kBlock)) {
            qInfo("This is a error");
            return;
        }
    }
    if (!handle.close()) qInfo("This is a error");
}

// The file ".velmora_<fillCount>" of `remainder` bytes: zero blocks and then "0"
// characters, or, below one block, the "(null)000..." text cut to length.
void FreeSpaceWipe::writLostDataWithLoseCount(qint64 remainder, qint64 fillCount, const QString& folder) {
    if (remainder < 1 || m_isCancelEraser) return;
    const QString path = fillFilePath(folder, fillCount);
    bool failed = false;
    if (remainder < kBlock) {
        const QByteArray text = nullPrefixedZeros(remainder);
        if (!createFileWithContents(path, text)) return;
        FillFileWriter handle(path);
        if (!handle.isOpen()) {
            qWarning("file open fail");
            setErrorString("You don\u2019t have the 'read' and 'write' permissions for the files.");
            return;
        }
        failed = !(handle.truncateFileAtOffset() && handle.writeData(text.constData(), text.size()) && handle.close());
    } else {
        const qint64 blocks = remainder / kBlock;
        const qint64 rest = remainder - blocks * kBlock;
        if (!createFileWithContents(path, QByteArray(kBlock, '\0'))) return;
        FillFileWriter handle(path);
        if (!handle.isOpen()) {
            qWarning("file open fail");
            setErrorString("You don't have the 'read' and 'write' permissions for the files.");
            return;
        }
        for (qint64 block = 0; block < blocks && !failed; ++block) {
            if (m_isCancelEraser) {
                removeFolder(folder);
                break;
            }
            failed = !(handle.truncateFileAtOffset() && handle.writeData(zeroBlock(), kBlock));
        }
        if (!failed && rest != 0) {
            const QByteArray digits(rest, '0');
            failed = !(handle.truncateFileAtOffset() && handle.writeData(digits.constData(), digits.size()));
        }
        failed = !handle.close() || failed;
    }
    if (failed) {
        // A full volume ends the remainder early, as expected: the run still counts as erased.
        qInfo("NO FACE");
        setErrorString({});
        removeFolder(folder);
        flushFileSystemOf(folder);
        QThread::sleep(2);
    }
}

void FreeSpaceWipe::showComplite() {
    if (m_isCancelEraser) m_errorString = kCancelledText;
    showEndEraser();
}

void FreeSpaceWipe::showEndEraser() {
    m_isBegin = false;
    stopEraserTimer();
    const bool succeeded = m_errorString.isEmpty();
    DoDataBase::returnDoDataBase()->writeWipeVolumesOrFree(selectVolumeObj.volumeName, succeeded ? "Erased" : "Failed",
                                                          selectEraserType == 1);
    PublicUtilities::writeUpDataHistoryStr(DoDataBase::kWipeVolumeHistory, "1");
    m_isRounding = false;
    const QString endText = !succeeded ? m_errorString : selectEraserType == 1 ? kFreeSpaceDoneText : kDriveDoneText;
    emit eraserEnded(succeeded, endText, m_isCancelEraser);
    if (m_volumeScanner) m_volumeScanner->getallVolumes();
}

void FreeSpaceWipe::failRun(const QString& reason) {
    m_errorString = reason;
    showEndEraser();
}

void FreeSpaceWipe::endAppRemoveFolder() {
    m_isCancelEraser = true;
    m_worker.waitForFinished();
    if (!m_wipeScanPathStr.isEmpty() && QFileInfo::exists(m_wipeScanPathStr)) removeFolder(m_wipeScanPathStr);
}

int FreeSpaceWipe::getEraserTimes() { return EraserLevel::clamped(); }

quint64 FreeSpaceWipe::checkVolumeFreeSizeWithVolumeName(const QString& volumeName) const {
    const QVariantMap info = getDisjInfo(volumeName.toUtf8().constData(), DiskInfoScreen::WipeDisk);
    if (info.isEmpty() || !info.contains("VolumeName")) return 1;
    const quint64 freeSpace = info.value("FreeSpace").toULongLong();
    qInfo("-----------:%llu", freeSpace);
    return freeSpace;
}

QString FreeSpaceWipe::fillFolderPath() const {
    const bool ntfs = selectVolumeObj.volumeType.toLower().contains("ntfs");
    const QString folder = volumeDirectory(ntfs ? QString("NEW") : selectVolumeObj.volumeName, selectVolumeObj.volumeMountPoint);
    return folder.isEmpty() ? QString() : folder + "/.Velmora";
}

void FreeSpaceWipe::setEraserTime() {
    m_eraserTimeR = 0;
    m_eraserTimeText = elapsedTimeText(++m_eraserTimeR);  // the timer's first firing is immediate
    m_eraserTimer.start();
}

void FreeSpaceWipe::stopEraserTimer() { m_eraserTimer.stop(); }

QString FreeSpaceWipe::elapsedTimeText(qint64 seconds) {
    if (seconds == 0) return "00:00:00";
    const auto twoDigits = [](qint64 value) {
        return QString::asprintf(value <= 9 ? "0%.0f" : "%.0f", double(value));
    };
    return QString::asprintf("%.0f:", double(seconds / 3600)) + twoDigits((seconds / 60) % 60) + ":" + twoDigits(seconds % 60);
}

void FreeSpaceWipe::resetRounds() {
    m_isRounding = false;
    m_iRoundTimes = 0;
}

void FreeSpaceWipe::setErrorString(const QString& text) {
    QMetaObject::invokeMethod(this, [this, text] { m_errorString = text; });
}

void FreeSpaceWipe::setWipeScanPathStr(const QString& folder) {
    QMetaObject::invokeMethod(this, [this, folder] { m_wipeScanPathStr = folder; });
}

}  // namespace velmora
