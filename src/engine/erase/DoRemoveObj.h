#pragma once

#include <QObject>
#include <QStringList>

class QProcess;

namespace velmora {

// Erases a plain list of paths with the secure-remove tool at the single-pass
// options, one at a time (the disk wipes clear the files they left behind).
// No verdicts, progress or cancel. Runs on the thread that starts it, which
// needs an event loop.
class DoRemoveObj : public QObject {
    Q_OBJECT

public:
    explicit DoRemoveObj(QObject* parent = nullptr);
    ~DoRemoveObj() override;

    // Keeps the list and starts at once; an empty list ends at once.
    void initWithArr(const QStringList& paths);

signals:
    void removeObjEnd();

private:
    void runTaskWithPath();
    void doneErasing();

    QStringList m_allFilesArr;
    QProcess* m_task = nullptr;
    int m_index = 0;
};

}  // namespace velmora
