#include "engine/erase/DoRemoveObj.h"

#include "engine/erase/EraserLevel.h"
#include "engine/erase/SecureRemoveTask.h"
#include "engine/erase/TreeRemoval.h"
#include "engine/platform/NativePath.h"

#include <QProcess>

namespace velmora {

DoRemoveObj::DoRemoveObj(QObject* parent) : QObject(parent) {}

DoRemoveObj::~DoRemoveObj() {
    if (m_task) {
        m_task->disconnect(this);
        delete m_task;
    }
}

void DoRemoveObj::initWithArr(const QStringList& paths) {
    m_allFilesArr = paths;
    m_index = 0;
    if (paths.isEmpty()) {
        QMetaObject::invokeMethod(this, &DoRemoveObj::removeObjEnd, Qt::QueuedConnection);
        return;
    }
    runTaskWithPath();
}

void DoRemoveObj::runTaskWithPath() {
    // The tool follows no link on the way to the path, so its folder is resolved here, once.
    const QString path = pathFromNative(TreeRemoval::withResolvedFolder(nativePath(m_allFilesArr.at(m_index))));
    m_task = startSecureRemoveTask(this, EraserLevel::optionString(1, false), path, [this](bool, int) { doneErasing(); });
}

void DoRemoveObj::doneErasing() {
    ++m_index;
    m_task->disconnect(this);
    m_task->deleteLater();
    m_task = nullptr;
    if (m_index < m_allFilesArr.size())
        runTaskWithPath();
    else
        emit removeObjEnd();
}

}  // namespace velmora
