#pragma once

#include "engine/volumes/VolumeObj.h"

#include <QFuture>
#include <QObject>
#include <QTimer>
#include <atomic>

namespace velmora {

class FillFolder;
class VolumeScanner;

// The free-space wipe: fills the free space of one volume (as measured before the
// run) with files of zeros in a hidden folder on it, then one more file until the
// volume reports it is full, removes the folder, and does so once per pass of the
// erasure level; then records the run in the history. Every pass runs; a pass
// whose folder cannot be made on the pinned volume, a write error other than the
// volume being full, and a cancel end the run as failed. It is also the second
// stage of the whole-drive erase (WholeDriveErase).
//
// The object lives on the user-interface thread; the fill runs on one worker of
// the background queue, and every signal arrives on the object's thread. The run
// state is shared with the worker without locks: flags are atomic, and texts the
// worker changes are handed to the object's thread.
class FreeSpaceWipe : public QObject {
    Q_OBJECT

public:
    // Where "Erase Now" leads for the selected volume and tool.
    enum class WipeStart {
        DoFreeAction,         // free-space wipe: confirm, then doFreeSpaceAction
        ShowNTFSWindow,       // free-space wipe of an NTFS volume: notice only
        DoEraserPartiltion,   // whole-drive erase: confirm, then WholeDriveErase
        ShowSystemEraser,     // whole-drive erase of the startup volume: notice only
        NoSelectType,
    };

    static constexpr qint64 kFillUnit = 128000000;  // free space is counted in units of this
    static constexpr int kBlock = 4000;             // bytes written at a time
    static constexpr int kBlockAppends = 32001;     // blocks after the header of a fill file

    explicit FreeSpaceWipe(QObject* parent = nullptr);
    ~FreeSpaceWipe() override;  // cancels a fill under way and waits for it

    VolumeObj selectVolumeObj;  // the volume of the run (name, type, mount point, device number, free bytes)
    int selectEraserType = 1;   // 1 free-space wipe, 2 whole-drive erase

    // The list rescanned at the end of every run; none by default.
    void setVolumeScanner(VolumeScanner* scanner) { m_volumeScanner = scanner; }
    VolumeScanner* volumeScanner() const { return m_volumeScanner; }

    WipeStart wipeButtonAction() const;
    // Plans the run from selectVolumeObj.volumeFreeSizeNum and starts the worker.
    void doFreeSpaceAction();
    // Both only set the cancel flag; the worker notices it before each fill file,
    // before each block of the remainder file and at the start of each pass.
    void cancelWipeSpaceButtonAction() { m_isCancelEraser = true; }
    void cancelWipeDiskButtonAction() { m_isCancelEraser = true; }
    // At application exit: stops a fill and removes the latest fill folder
    // (descriptor-relative, never through a link).
    void endAppRemoveFolder();
    // The pass count: the stored erasure level, at least 1.
    static int getEraserTimes();
    // "<mount point>/.Velmora" (on the macOS layout, "/Volumes/..." lies under the
    // volumes root). Empty when the volume has no mount point.
    QString fillFolderPath() const;

    // Elapsed time of a run, counted by a one-second timer from setEraserTime.
    void setEraserTime();
    void stopEraserTimer();
    QString eraserTimeText() const { return m_eraserTimeText; }
    static QString elapsedTimeText(qint64 seconds);  // "%.0f:MM:SS"; 0 gives "00:00:00"

    // The steps of a pass, as the worker runs them. Each returns false when the
    // run must stop: the cancel flag, or a failure already recorded in errorString.
    // Running out of space is not a failure: the volume is full, which is the goal.
    bool roundOneWithRoundCount(qint64 fillCount, int passes, float stepPercent, const FillFolder& folder);
    bool createDydFile(const FillFolder& folder, int index);
    bool writLostDataWithLoseCount(qint64 remainder, qint64 fillCount, const FillFolder& folder);
    // The file ".velmora_<index>", written until the volume reports it is full and
    // flushed, so no free unit is left unwritten. On ext4, run as root, it also takes
    // the clusters kept in reserve, and the journal is written out after it (Ext4Fill).
    bool fillUntilFull(const FillFolder& folder, qint64 index);
    // End of a run, on the object's thread: the failure or success view, the
    // history record, the history flag and a rescan.
    void showComplite();
    void showEndEraser();
    // Ends a run that cannot go on as failed: the reason becomes the failure text
    // and the history records "Failed".
    void failRun(const QString& reason);
    // Pins the confirmed free-space wipe's volume by its device and UUID, so the fill
    // checks it is still that file system; when that fails, the run ends as failed.
    bool pinSelectedVolume();

    bool isCancelEraser() const { return m_isCancelEraser; }
    int iRoundTimes() const { return m_iRoundTimes; }
    bool isBegin() const { return m_isBegin; }
    void setIsBegin(bool isBegin) { m_isBegin = isBegin; }
    // Clears iRoundTimes (the whole-drive erase does so before its fill).
    void resetRounds();
    QString errorString() const { return m_errorString; }
    // What exactly went wrong, where the failure text is a general one (the fill
    // folder: it is a link, or it is not ours); empty otherwise.
    QString failureDetail() const { return m_failureDetail; }
    // Free bytes the volume still counted once it reported full (most of any
    // pass): space kept in reserve by the file system that the fill could not
    // reach. Told in the end text and by the CLI when not 0.
    qint64 unreachableBytes() const { return m_unreachableBytes; }
    static QString unreachableText(qint64 bytes);
    QString wipeScanPathStr() const { return m_wipeScanPathStr; }

signals:
    // Status text and percentage for the progress view (which shows at least 2%).
    void setRemoveProgress(const QString& statusText, float percent);
    // The progress view closes; eraserEnded follows 2.0 seconds later.
    void closeWindow();
    // The end view: success text or the failure text; cancelled shows the cancel note.
    void eraserEnded(bool succeeded, const QString& endText, bool cancelled);

private:
    void runPasses(qint64 fillCount, qint64 remainder, int passes, float stepPercent, QString mountPoint,
                   quint64 device);
    // Ends the run from the worker: the progress view closes, the end view follows.
    void scheduleEnd();
    // Records the first failure of the run (from the worker); the later ones are logged only.
    void recordFailure(const QString& text, const QString& detail = {});
    // Records a failed write of a fill file; always false.
    bool failWrite(const QByteArray& file, int error);
    void setWipeScanPathStr(const QString& folder);

    VolumeScanner* m_volumeScanner = nullptr;
    std::atomic<bool> m_isCancelEraser{false};
    std::atomic<bool> m_failed{false};
    std::atomic<bool> m_isBegin{false};
    std::atomic<int> m_iRoundTimes{0};
    std::atomic<int> m_times{0};
    QString m_errorString;
    QString m_failureDetail;
    QString m_wipeScanPathStr;
    QString m_runMountPoint;   // the volume of the latest run, for the removal at exit
    quint64 m_runDevice = 0;
    std::atomic<qint64> m_unreachableBytes{0};
    QFuture<void> m_worker;
    QTimer m_eraserTimer;
    qint64 m_eraserTimeR = 0;
    QString m_eraserTimeText;
};

}  // namespace velmora
