#pragma once

#include "engine/copy/Controller.h"
#include "engine/copy/CopyResult.h"
#include "engine/copy/DoCopyFiles.h"
#include "engine/copy/FileNode.h"
#include "engine/volumes/VolumeObj.h"

#include <QDateTime>
#include <QObject>
#include <memory>
#include <optional>

namespace velmora {

// What the drive-copy page decides, without its widgets: the source and destination
// choice with its refusals, the space check, the copy mode, the dated destination folder
// and the copy run with its cancel. A page shows errorText and copyButtonEnabled after
// stateChanged, the confirmation on showConfirmation, and the end view on copyEnded.
// Volumes are records of the file-manager scan (volumePath is the mount path); a folder
// given as source or destination is a record with its path there.
class DiskCopyLogic : public QObject {
    Q_OBJECT

public:
    enum class CopyType { CopyAllFiles = 0, CopySomeFiles = 1 };
    static constexpr quint64 kUnknownSize = ~quint64(0);
    static const QString kSameDriveText;
    static const QString kInsideSourceText;
    static const QString kNoSpaceText;
    static const QString kNothingToCopyText;
    static const QString kStoppedText;
    static QStringList copyTypeTitles();  // "Copy All Files", "Copy Some Files"

    explicit DiskCopyLogic(QObject* parent = nullptr);

    // Chooses the source (asSource) or the destination; the space check follows.
    void doSelectDiskWithVolume(const VolumeObj& volume, bool asSource);
    // The space check: the copy button is enabled only when the needed size fits.
    void changeSelectCopyType();
    void setCopyType(CopyType type);
    // The items picked in "Copy Some Files" and their size (the picking tree's top level).
    void setPickedFiles(const FileNodeList& arr, quint64 selectedSize);

    // "Copy Now": with no list prepared, lists the whole source top level wholly ticked
    // first; then showConfirmation, or showError when there is nothing to copy.
    void cloneButtonAction();
    // After the confirmation: makes the dated folder and starts the copy. False with
    // errorText when no folder could be made or the fallback folder has too little room.
    bool beginToCopyFiles(const QDateTime& now, bool verifyAfterCopying);
    void cancelCopy();

    const std::optional<VolumeObj>& fromeVolume() const { return m_fromeVolume; }
    const std::optional<VolumeObj>& toVolume() const { return m_toVolume; }
    quint64 usedSize() const { return m_usedSize; }
    quint64 freeSize() const { return m_freeSize; }
    quint64 selectFilesSize() const { return m_selectFilesSize; }
    quint64 neededSize() const;
    CopyType copyType() const { return m_copyType; }
    const FileNodeList& copyArr() const { return m_copyArr; }
    bool copyButtonEnabled() const { return m_copyButtonEnabled; }
    bool destinationIconDisabled() const { return m_destinationIconDisabled; }
    const QString& errorText() const { return m_errorText; }
    const QString& copyFolder() const { return m_copyFolder; }
    bool copyFolderOnDesktop() const { return m_copyFolderOnDesktop; }
    DoCopyFiles* doCopy() const { return m_doCopy.get(); }
    Controller& controller() { return m_controller; }

signals:
    void stateChanged();
    void showConfirmation();
    void showError(const QString& text);
    void topCopyProgress(float percent);
    void topCopyFilePath(const QString& path);
    void copyEnded(const velmora::CopyResult& result);

private:
    void setError(const QString& text);
    void doCopyAction();
    void copyFileError();
    bool destinationInsideSource(const VolumeObj& source, const VolumeObj& destination) const;

    std::optional<VolumeObj> m_fromeVolume;
    std::optional<VolumeObj> m_toVolume;
    quint64 m_usedSize = kUnknownSize;
    quint64 m_freeSize = kUnknownSize;
    quint64 m_selectFilesSize = kUnknownSize;
    FileNodeList m_copyArr;
    bool m_copyArrPrepared = false;
    CopyType m_copyType = CopyType::CopyAllFiles;
    bool m_copyButtonEnabled = false;
    bool m_destinationIconDisabled = false;
    QString m_errorText;
    QString m_copyFolder;
    bool m_copyFolderOnDesktop = false;
    bool m_stoppedByUser = false;
    Controller m_controller;
    std::unique_ptr<DoCopyFiles> m_doCopy;
};

}  // namespace velmora
