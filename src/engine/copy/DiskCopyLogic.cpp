#include "engine/copy/DiskCopyLogic.h"

#include "engine/copy/CloneFolder.h"
#include "engine/platform/LogCategories.h"
#include "engine/platform/NativePath.h"

#include <QDebug>
#include <algorithm>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace velmora {

const QString DiskCopyLogic::kSameDriveText =
    QString::fromUtf8("You can\u2019t select the source drive as the destination drive, just select another drive.");
const QString DiskCopyLogic::kInsideSourceText =
    "The destination lies inside the source, so the copy would copy itself: select a destination outside it.";
const QString DiskCopyLogic::kNoSpaceText =
    "Insufficient disk space on this destination drive, please select another drive.";
const QString DiskCopyLogic::kNothingToCopyText = "There is nothing to copy: select the files to copy first.";
const QString DiskCopyLogic::kStoppedText = "You have stopped the copying process.";

QStringList DiskCopyLogic::copyTypeTitles() { return {"Copy All Files", "Copy Some Files"}; }

DiskCopyLogic::DiskCopyLogic(QObject* parent) : QObject(parent) {}

void DiskCopyLogic::setError(const QString& text) {
    m_errorText = text;
    if (!text.isEmpty()) emit showError(text);
}

void DiskCopyLogic::doSelectDiskWithVolume(const VolumeObj& volume, bool asSource) {
    m_errorText.clear();
    if (asSource) {
        m_fromeVolume = volume;
        m_selectFilesSize = kUnknownSize;
        m_copyArr.clear();
        m_copyArrPrepared = false;
        m_copyType = CopyType::CopyAllFiles;
        // A file system that reports no size (some FUSE drivers) leaves the size unknown.
        m_usedSize = volume.volumeTotalSizeNum > 0
                         ? quint64(qMax<qint64>(0, volume.volumeTotalSizeNum - volume.volumeFreeSizeNum))
                         : kUnknownSize;
        if (m_toVolume && (m_toVolume->volumePath == volume.volumePath || destinationInsideSource(volume, *m_toVolume))) {
            const bool same = m_toVolume->volumePath == volume.volumePath;
            m_fromeVolume.reset();
            m_usedSize = kUnknownSize;
            m_copyButtonEnabled = false;
            setError(same ? kSameDriveText : kInsideSourceText);
            emit stateChanged();
            return;
        }
    } else {
        m_toVolume = volume;
        if (m_fromeVolume && (m_fromeVolume->volumePath == volume.volumePath || destinationInsideSource(*m_fromeVolume, volume))) {
            const bool same = m_fromeVolume->volumePath == volume.volumePath;
            m_toVolume.reset();
            m_freeSize = kUnknownSize;
            m_copyButtonEnabled = false;
            setError(same ? kSameDriveText : kInsideSourceText);
            emit stateChanged();
            return;
        }
        m_freeSize = volume.volumeTotalSizeNum > 0 ? quint64(qMax<qint64>(0, volume.volumeFreeSizeNum)) : kUnknownSize;
    }
    changeSelectCopyType();
}

bool DiskCopyLogic::destinationInsideSource(const VolumeObj& source, const VolumeObj& destination) const {
    // Only a destination on the source's own file system can be reached by its walk.
    struct stat from {};
    struct stat to {};
    if (stat(nativePath(source.volumePath).constData(), &from) != 0 ||
        stat(nativePath(destination.volumePath).constData(), &to) != 0 || from.st_dev != to.st_dev)
        return false;
    if (from.st_ino == to.st_ino) return true;
    QString prefix = source.volumePath;
    if (!prefix.endsWith('/')) prefix += '/';
    return destination.volumePath.startsWith(prefix);
}

quint64 DiskCopyLogic::neededSize() const {
    return m_selectFilesSize != kUnknownSize ? m_selectFilesSize : m_usedSize;
}

void DiskCopyLogic::changeSelectCopyType() {
    if (m_usedSize != kUnknownSize && m_freeSize != kUnknownSize) {
        if (neededSize() > m_freeSize) {
            m_copyButtonEnabled = false;
            m_destinationIconDisabled = true;
            setError(kNoSpaceText);
        } else {
            m_errorText.clear();
            m_copyButtonEnabled = true;
            m_destinationIconDisabled = false;
        }
    } else {
        // Without both sizes there is nothing to weigh: a copy that runs out of room fails
        // item by item and says so.
        m_copyButtonEnabled = m_fromeVolume && m_toVolume;
    }
    emit stateChanged();
}

void DiskCopyLogic::setCopyType(CopyType type) {
    m_copyType = type;
    if (type == CopyType::CopyAllFiles) {
        m_selectFilesSize = kUnknownSize;
        m_copyArr.clear();
        m_copyArrPrepared = false;
    }
    changeSelectCopyType();
}

void DiskCopyLogic::setPickedFiles(const FileNodeList& arr, quint64 selectedSize) {
    m_copyArr = arr;
    m_copyArrPrepared = true;
    m_selectFilesSize = selectedSize;
    changeSelectCopyType();
}

void DiskCopyLogic::cloneButtonAction() {
    if (m_copyArrPrepared || !m_fromeVolume) {
        doCopyAction();
        return;
    }
    // "Copy All Files": the whole source top level, every node wholly ticked.
    auto connection = std::make_shared<QMetaObject::Connection>();
    *connection = connect(&m_controller, &Controller::endScan, this, [this, connection] {
        disconnect(*connection);
        m_copyArr = m_controller.rootArr();
        m_copyArrPrepared = true;
        doCopyAction();
    });
    m_controller.eumeAllRootFileNodeWithRootArr(m_fromeVolume->volumePath, true, false);
}

void DiskCopyLogic::doCopyAction() {
    const bool anything = std::any_of(m_copyArr.begin(), m_copyArr.end(), [](const FileNodePtr& node) {
        return node->state == FileNode::Ticked || node->state == FileNode::PartlyTicked;
    });
    if (anything)
        emit showConfirmation();
    else
        setError(kNothingToCopyText);
}

bool DiskCopyLogic::beginToCopyFiles(const QDateTime& now, bool verifyAfterCopying) {
    if (!m_fromeVolume || !m_toVolume) return false;
    CloneFolder folder;
    QString error;
    if (!folder.create(m_toVolume->volumePath, now, &error)) {
        setError(error);
        return false;
    }
    if (folder.onDesktop()) {
        // The fallback folder lies on another volume, whose room was not checked yet.
        struct statvfs room {};
        if (fstatvfs(folder.fd(), &room) == 0 && neededSize() != kUnknownSize &&
            quint64(room.f_bavail) * room.f_frsize < neededSize()) {
            rmdir(nativePath(folder.path()).constData());
            setError(kNoSpaceText);
            return false;
        }
    }
    m_copyFolder = folder.path();
    m_copyFolderOnDesktop = folder.onDesktop();
    m_stoppedByUser = false;
    qCInfo(lcCopy).noquote() << "toVolume.volumePath----" + displayPath(m_toVolume->volumePath);

    m_doCopy = std::make_unique<DoCopyFiles>();
    if (!m_doCopy->setSourceRoot(m_fromeVolume->volumePath, &error)) {
        setError("The source cannot be opened: " + error);
        return false;
    }
    m_doCopy->setVerifyAfterCopying(verifyAfterCopying);
    connect(m_doCopy.get(), &DoCopyFiles::topCopyProgress, this, &DiskCopyLogic::topCopyProgress);
    connect(m_doCopy.get(), &DoCopyFiles::topCopyFilePath, this, &DiskCopyLogic::topCopyFilePath);
    connect(m_doCopy.get(), &DoCopyFiles::copyFileError, this, &DiskCopyLogic::copyFileError);
    connect(m_doCopy.get(), &DoCopyFiles::copyEnded, this, [this] {
        if (m_stoppedByUser) m_errorText = kStoppedText;
        emit copyEnded(m_doCopy->result());
    });
    m_doCopy->doCopyFilesWithArr(m_copyArr, folder.takeFd(), m_copyFolder);
    return true;
}

void DiskCopyLogic::cancelCopy() {
    if (!m_doCopy) return;
    m_doCopy->setIsCancel(true);
    m_stoppedByUser = true;
    m_errorText = kStoppedText;
    emit stateChanged();
}

void DiskCopyLogic::copyFileError() {
    m_errorText = "The destination folder is gone: the copy was stopped.";
    emit stateChanged();
}

}  // namespace velmora
