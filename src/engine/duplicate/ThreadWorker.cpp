#include "engine/duplicate/ThreadWorker.h"


namespace velmora {

ThreadWorker::ThreadWorker(QObject* target, Work work, const QVariant& object, DidEnd didEnd)
    : m_target(target), m_work(std::move(work)), m_object(object), m_didEnd(std::move(didEnd)) {
    connect(this, &QThread::finished, this, &QObject::deleteLater);
}

ThreadWorker* ThreadWorker::workOn(QObject* target, Work work, const QVariant& object, DidEnd didEnd) {
    auto* worker = new ThreadWorker(target, std::move(work), object, std::move(didEnd));
    worker->start();
    return worker;
}

void ThreadWorker::run() {
    const QVariant result = m_work(m_object, this);
    // A call posted to an object is discarded with the object, so an end
    // call never reaches a target that has been destroyed meanwhile.
    QMetaObject::invokeMethod(m_target, [didEnd = m_didEnd, result] { didEnd(result); }, Qt::QueuedConnection);
}

void ThreadWorker::performOnTargetThread(const std::function<void()>& call) {
    QMetaObject::invokeMethod(m_target, call, Qt::QueuedConnection);
}

}  // namespace velmora
