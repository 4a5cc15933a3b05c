#pragma once

#include "engine/erase/FileObj.h"

#include <QList>
#include <QObject>
#include <QString>

class QProcess;

namespace velmora {

// The file eraser's engine. Takes the erase list (EraseList::build) and erases one
// item at a time: a file with content, a link or a folder with everything in it by
// the secure-remove tool at the current erasure level, an empty file by unlinking it.
// An item counts as erased ("Success") only when the tool exited normally with status
// 0, or the direct removal succeeded, and the path is gone; otherwise it gets "Fail"
// with the reason. The next item starts when the tool's process ends. Runs on the
// thread that starts it, which needs an event loop.
class RemoveFileAndFolder : public QObject {
    Q_OBJECT

public:
    explicit RemoveFileAndFolder(QObject* parent = nullptr);
    ~RemoveFileAndFolder() override;

    // Starts a run over the list; a new run restarts the index and the results.
    void benginToTraskWithArr(const FileObjList& files);
    // Cancels: a running tool is terminated and its end finishes the run. Items not
    // started yet get no verdict.
    void isCancel();
    // How many items the current run touches: the records plus everything inside
    // the folders among them. Progress counts these; 0 until they are counted.
    int itemCount() const { return m_itemTotal; }
    // True from the start of a run until its items are counted (on a worker thread);
    // the first item starts after that.
    bool isCounting() const { return m_counting; }

    // The erasure level to run at: the stored one, values below 1 read as 1.
    static int getEraserTimes();
    // Whether the item can be opened for writing, giving its owner the write
    // permission when that is what stands in the way. Links are not followed. Only
    // a failed permission change answers false.
    static bool checkPermissions(const QString& path);

signals:
    // Progress in percent with the item about to be handled (or just removed inside
    // a folder) and the number of items done.
    void removeProgress(float progress, const QString& path, int index);
    // An item failed or was forecast to fail.
    void haveFailEraser();
    // The records handled, in order, each with "Success" or "Fail" (and its reason).
    void removeObjEnd(const velmora::FileObjList& results);

private:
    void startCountedRun(const QList<int>& counts);
    void runTaskWithPath();
    void doneErasing();
    void launchSecureRemove(FileObj& file);
    void readToolProgress();
    void toolEnded(bool exitedNormally, int exitCode);
    void removeEmptyFile(FileObj& file);
    void removeBundle(FileObj& file);
    void finishDirectStep(FileObj& file, const QString& failure);
    float progressFor(int itemsDone) const;

    FileObjList m_allFilesArr;
    FileObjList m_results;
    QProcess* m_task = nullptr;
    int m_index = 0;
    bool m_cancelled = false;
    bool m_counting = false;
    int m_runNumber = 0;       // a count that arrives for an earlier run is dropped
    QList<int> m_itemCounts;   // per record
    int m_itemTotal = 0;
    int m_itemsDone = 0;       // in the records before the current one
    int m_itemsInRecord = 0;   // reported removed by the tool in the current record
    QByteArray m_toolOutput;   // a progress line not yet complete
    bool m_recordIsLink = false;        // the current record was a symbolic link when its turn came
    bool m_toolRemovedALink = false;    // the tool reported the record's own path removed as a link
    QByteArray m_toolErrors;   // the start of what the tool said went wrong
};

}  // namespace velmora
