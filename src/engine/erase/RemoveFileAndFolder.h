#pragma once

#include "engine/erase/FileObj.h"

#include <QObject>
#include <QString>

class QProcess;

namespace velmora {

// The file eraser's engine. Takes an ordered list of records, children before the
// folders that hold them, and erases one item at a time: a file with content is
// overwritten and unlinked by the secure-remove tool at the current erasure level,
// an empty file is unlinked, an emptied folder removed. The next item starts when
// the tool's process ends. Runs on the thread that starts it, which needs an event
// loop.
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

    // The erasure level to run at: the stored one, values below 1 read as 1.
    static int getEraserTimes();
    // Whether the item can be opened for writing, making it owner-writable when
    // that is what stands in the way. Only a failed mode change answers false.
    static bool checkPermissions(const QString& path);

signals:
    // Progress in percent before the item at index starts.
    void removeProgress(float progress, const QString& path, int index);
    // An item was forecast to fail.
    void haveFailEraser();
    // The records handled, in completion order, each with "Success" or "Fail".
    void removeObjEnd(const velmora::FileObjList& results);

private:
    void runTaskWithPath();
    void doneErasing();
    void launchSecureRemove(FileObj& file);
    void removeDirectly(FileObj& file);
    void removeFolder(FileObj& file, bool isEmpty);
    void finishAfterDirectStep();

    FileObjList m_allFilesArr;
    FileObjList m_results;
    QProcess* m_task = nullptr;
    int m_index = 0;
    bool m_cancelled = false;
};

}  // namespace velmora
