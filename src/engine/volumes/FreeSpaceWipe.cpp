#include "engine/volumes/FreeSpaceWipe.h"

#include "engine/erase/EraserLevel.h"
#include "engine/erase/PublicUtilities.h"
#include "engine/history/DoDataBase.h"
#include "engine/platform/LogCategories.h"
#include "engine/platform/StandardPaths.h"
#include "engine/volumes/Ext4Fill.h"
#include "engine/volumes/FillFileWriter.h"
#include "engine/volumes/FillFolder.h"
#include "engine/volumes/VolumeIdentity.h"
#include "engine/volumes/VolumeScanner.h"

#include <QLocale>
#include <QRandomGenerator>
#include <QtConcurrent>
#include <cstring>
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

QByteArray fillFileName(qint64 index) { return ".velmora_" + QByteArray::number(index); }

// The volume's mount point; on the macOS layout "/Volumes/NAME" lies under the
// volumes root (which tests redirect).
QString mountFolderOf(const VolumeObj& volume) {
    const QString& mountPoint = volume.volumeMountPoint;
    if (StandardPaths::layout() == StandardPaths::Layout::MacOS && mountPoint.startsWith("/Volumes/"))
        return StandardPaths::volumesRoot() + mountPoint.mid(int(strlen("/Volumes")));
    return mountPoint;
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
    qCInfo(lcVolumes, "no select type");
    return WipeStart::NoSelectType;
}

void FreeSpaceWipe::doFreeSpaceAction() {
    m_worker.waitForFinished();
    m_isCancelEraser = false;
    m_failed = false;
    m_errorString.clear();
    m_failureDetail.clear();
    m_iRoundTimes = 0;
    m_unreachableBytes = 0;
    const qint64 freeBytes = qMax<qint64>(0, selectVolumeObj.volumeFreeSizeNum);
    const qint64 fillCount = freeBytes / kFillUnit;
    const qint64 remainder = freeBytes - fillCount * kFillUnit;
    // With nothing free this is 100/0, infinite; no progress text uses it then.
    const float stepPercent = remainder >= 1 ? 100.0 / double(fillCount + 1) : 100.0 / double(fillCount);
    const int passes = getEraserTimes();
    m_runMountPoint = mountFolderOf(selectVolumeObj);
    m_runDevice = selectVolumeObj.deviceNumber;
    m_worker = QtConcurrent::run(&FreeSpaceWipe::runPasses, this, fillCount, remainder, passes, stepPercent,
                                 m_runMountPoint, m_runDevice);
}

// One pass after the other, each in a fill folder made fresh on the pinned
// volume and removed with the pass. Every pass the user chose runs; a cancel or
// a failed pass ends the run early, as failed. Whatever happens, the end view
// follows and no fill folder stays behind.
void FreeSpaceWipe::runPasses(qint64 fillCount, qint64 remainder, int passes, float stepPercent, QString mountPoint,
                              quint64 device) {
    for (int k = 0; k < passes && !m_isCancelEraser; ++k) {
        ++m_iRoundTimes;
        m_times = 0;
        QString problem;
        if (!FillFolder::isVolumeRoot(mountPoint, device, &problem)) {
            qCWarning(lcVolumes, "Create finder fail: %s", qPrintable(problem));
            recordFailure(kFolderFailText, problem);
            break;
        }
        FillFolder folder(mountPoint, device);
        if (!folder.isOpen()) {
            qCWarning(lcVolumes, "Create finder fail: %s", qPrintable(folder.problem()));
            recordFailure(kFolderFailText, folder.problem());
            break;
        }
        setWipeScanPathStr(folder.path());
        const bool filled = roundOneWithRoundCount(fillCount, passes, stepPercent, folder) &&
                            writLostDataWithLoseCount(remainder, fillCount, folder) &&
                            fillUntilFull(folder, fillCount + 1);
        if (filled) {
            m_unreachableBytes = qMax(m_unreachableBytes.load(), folder.freeBytes());
            emit setRemoveProgress(
                QString::asprintf("Erased 100%% in %d of %d %s", k + 1, passes, passes < 2 ? "pass" : "passes"), 100.0f);
        }
        if (!folder.remove()) recordFailure("The fill could not be removed from the volume: " + folder.problem() + ".");
        if (!filled || m_failed) break;
    }
    scheduleEnd();
}

void FreeSpaceWipe::scheduleEnd() {
    QMetaObject::invokeMethod(this, [this] {
        if (selectEraserType == 1 || selectEraserType == 2) emit closeWindow();
        QTimer::singleShot(2000, this, &FreeSpaceWipe::showComplite);
    });
}

// Writes fill files 1 to fillCount - 1: one unit short of the free space; the
// remainder file and the file that fills the volume up follow.
bool FreeSpaceWipe::roundOneWithRoundCount(qint64 fillCount, int passes, float stepPercent, const FillFolder& folder) {
    m_times = 0;
    for (qint64 i = 1; i <= fillCount - 1; ++i) {
        const int times = ++m_times;
        if (m_isCancelEraser) return false;
        const float percent = float(times) * stepPercent;
        const int round = qBound(1, m_iRoundTimes.load(), passes);
        m_iRoundTimes = round;
        emit setRemoveProgress(QString::asprintf("Erased %.2f%% in %d of %d %s", percent < 100 ? double(percent) : 99.0,
                                                 round, passes, passes > 1 ? "passes" : "pass"),
                               percent);
        if (!createDydFile(folder, int(i))) return false;
    }
    return true;
}

// 4,000 zero bytes, an 8-byte header (one random byte, seven zeros), then 32,001
// blocks of 4,000 zero bytes: 128,008,008 bytes, or less when the volume fills up.
bool FreeSpaceWipe::createDydFile(const FillFolder& folder, int index) {
    const QByteArray name = fillFileName(index);
    const int created = createFileWithContents(folder.descriptor(), name, QByteArray(kBlock, '\0'));
    qCInfo(lcVolumes, created == 0 ? "C Suss" : "C Fail");
    if (created != 0) return isVolumeFull(created, folder.descriptor()) || failWrite(name, created);
    FillFileWriter handle(folder.descriptor(), name);
    if (!handle.isOpen()) return failWrite(name, handle.error());
    const char header[8] = {char(QRandomGenerator::global()->generate() & 0xFF)};
    for (int i = 0; i < kBlockAppends; ++i) {
        bool written = handle.seekToEndOfFile();
        if (written && i == 0) written = handle.writeData(header, sizeof header);
        if (!written || !handle.writeData(zeroBlock(), kBlock)) break;
    }
    if (handle.close()) return true;
    qCInfo(lcVolumes, "This is a error");
    return isVolumeFull(handle.error(), folder.descriptor()) || failWrite(name, handle.error());
}

// The file ".velmora_<fillCount>" of `remainder` bytes: zero blocks and then "0"
// characters, or, below one block, the "(null)000..." text cut to length.
bool FreeSpaceWipe::writLostDataWithLoseCount(qint64 remainder, qint64 fillCount, const FillFolder& folder) {
    if (m_isCancelEraser) return false;
    if (remainder < 1) return true;
    const int folderFd = folder.descriptor();
    const QByteArray name = fillFileName(fillCount);
    const bool belowOneBlock = remainder < kBlock;
    const QByteArray text = belowOneBlock ? nullPrefixedZeros(remainder) : QByteArray(kBlock, '\0');
    if (const int created = createFileWithContents(folderFd, name, text))
        return isVolumeFull(created, folderFd) || failWrite(name, created);
    FillFileWriter handle(folderFd, name);
    if (!handle.isOpen()) {
        qCWarning(lcVolumes, "file open fail");
        recordFailure(belowOneBlock ? "You don\u2019t have the 'read' and 'write' permissions for the files."
                             : "You don't have the 'read' and 'write' permissions for the files.");
        return false;
    }
    if (belowOneBlock) {
        handle.truncateFileAtOffset();
        handle.writeData(text.constData(), text.size());
    } else {
        const qint64 blocks = remainder / kBlock;
        const qint64 rest = remainder - blocks * kBlock;
        bool written = true;
        for (qint64 block = 0; block < blocks && written; ++block) {
            if (m_isCancelEraser) return false;
            written = handle.truncateFileAtOffset() && handle.writeData(zeroBlock(), kBlock);
        }
        if (written && rest != 0) {
            const QByteArray digits(rest, '0');
            handle.truncateFileAtOffset();
            handle.writeData(digits.constData(), digits.size());
        }
    }
    if (handle.close()) return true;
    qCInfo(lcVolumes, "NO FACE");
    return isVolumeFull(handle.error(), folderFd) || failWrite(name, handle.error());
}

bool FreeSpaceWipe::fillUntilFull(const FillFolder& folder, qint64 index) {
    if (m_isCancelEraser) return false;
    const int folderFd = folder.descriptor();
    const QByteArray name = fillFileName(index);
    if (const int created = createFileWithContents(folderFd, name, {}))
        return isVolumeFull(created, folderFd) || failWrite(name, created);
    FillFileWriter handle(folderFd, name);
    if (!handle.isOpen()) return failWrite(name, handle.error());
    // Until the file is flushed, ext4 (as root) lets it take the clusters it keeps in reserve.
    const Ext4ReserveRelease reserveReleased(folderFd);
    const bool full = handle.writeZerosUntilFull(m_isCancelEraser);
    // A driver that caches writes may report the full volume only when flushing.
    const bool flushed = handle.close() || isVolumeFull(handle.error(), folderFd);
    if (m_isCancelEraser) return false;
    if (!checkpointExt4Journal(folderFd))
        qCWarning(lcVolumes,
                  "the journal could not be written out; blocks it held may keep old data: %s", std::strerror(errno));
    return (full && flushed) || failWrite(name, handle.error());
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
    QString endText = !succeeded ? m_errorString : selectEraserType == 1 ? kFreeSpaceDoneText : kDriveDoneText;
    if (succeeded && m_unreachableBytes > 0) endText += "\n" + unreachableText(m_unreachableBytes);
    emit eraserEnded(succeeded, endText, m_isCancelEraser);
    if (m_volumeScanner) m_volumeScanner->getallVolumes();
}

bool FreeSpaceWipe::pinSelectedVolume() {
    QString identityError;
    if (pinVolume(selectVolumeObj, &identityError)) return true;
    failRun(QString("Nothing was wiped: %1.").arg(identityError));
    return false;
}

void FreeSpaceWipe::failRun(const QString& reason) {
    m_errorString = reason;
    m_failureDetail.clear();
    showEndEraser();
}

QString FreeSpaceWipe::unreachableText(qint64 bytes) {
    QString text = QString("%1 bytes of free space could not be overwritten: the file system keeps them in reserve.")
                       .arg(QLocale(QLocale::English).toString(bytes));
    if (::geteuid() != 0)
        text += " The part it keeps for the administrator is reached only by a wipe with administrator rights.";
    return text;
}

// The worker removes its fill folder on the way out; this also removes one that
// a failed removal left, when it is still the wipe's own.
void FreeSpaceWipe::endAppRemoveFolder() {
    m_isCancelEraser = true;
    m_worker.waitForFinished();
    QString problem;
    if (!m_runMountPoint.isEmpty() && !FillFolder::removeLeftover(m_runMountPoint, m_runDevice, &problem))
        qCInfo(lcVolumes, "fill folder left: %s", qPrintable(problem));
}

int FreeSpaceWipe::getEraserTimes() { return EraserLevel::clamped(); }

QString FreeSpaceWipe::fillFolderPath() const {
    const QString mountPoint = mountFolderOf(selectVolumeObj);
    return mountPoint.isEmpty() ? QString() : mountPoint + "/" + FillFolder::kName;
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

void FreeSpaceWipe::resetRounds() { m_iRoundTimes = 0; }

void FreeSpaceWipe::recordFailure(const QString& text, const QString& detail) {
    if (m_failed.exchange(true)) {
        qCInfo(lcVolumes, "%s", qPrintable(text));
        return;
    }
    QMetaObject::invokeMethod(this, [this, text, detail] {
        m_errorString = text;
        m_failureDetail = detail;
    });
}

bool FreeSpaceWipe::failWrite(const QByteArray& file, int error) {
    recordFailure(QString("The free space could not be overwritten: writing %1 failed (%2).")
                      .arg(QString::fromLatin1(file), QString::fromLocal8Bit(std::strerror(error))));
    return false;
}

void FreeSpaceWipe::setWipeScanPathStr(const QString& folder) {
    QMetaObject::invokeMethod(this, [this, folder] { m_wipeScanPathStr = folder; });
}

}  // namespace velmora
