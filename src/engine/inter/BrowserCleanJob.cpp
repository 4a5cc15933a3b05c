#include "engine/inter/BrowserCleanJob.h"

#include "engine/inter/BrowserDeletion.h"

#include <QFutureWatcher>
#include <QSet>
#include <QtConcurrent>

namespace velmora {
namespace {

using Task = BrowserDeletion::CategoryTask;

// The ticked categories of the browsers that are ticked or partly ticked, in catalogue order.
QList<Task> tasksOf(const BrowserArr& browserArr) {
    QList<Task> tasks;
    for (const BrowerObjPtr& browser : browserArr) {
        if (browser->isSelect == 0) continue;
        for (const BrowerObjPtr& category : browser->chrArr)
            if (category->isSelect == 1)
                tasks.append({browser->name, category->name, browser->rules, category->urlStr, category->size, category.get()});
    }
    return tasks;
}

using Progress = std::function<void(int, int, const QString&, const QString&)>;

// A stop is taken between categories: the one being cleaned is finished, the ones not
// reached are Skipped as stopped and keep their tick and size.
QList<CleanOutcome> run(const QList<Task>& tasks, const CleanOptions& options, const Progress& progress,
                        const std::atomic_bool* stop) {
    QList<CleanOutcome> outcomes;
    for (qsizetype i = 0; i < tasks.size(); ++i) {
        if (stop && *stop) {
            const Task& task = tasks[i];
            outcomes.append({task.browserName, task.categoryName, CleanOutcome::Status::Skipped,
                             BrowserCleanJob::kStoppedReason, task.size, task.category});
            continue;
        }
        if (progress) progress(int(i), int(tasks.size()), tasks[i].browserName, tasks[i].categoryName);
        outcomes.append(BrowserDeletion::deleteCategory(tasks[i], options));
    }
    return outcomes;
}

}  // namespace

BrowserCleanJob::BrowserCleanJob(QObject* parent) : QObject(parent) {}

BrowserCleanJob::~BrowserCleanJob() { m_run.waitForFinished(); }

void BrowserCleanJob::cleanBrowerFiles(const BrowserArr& browserArr, CleanOptions options) {
    if (m_run.isRunning()) return;
    // The destructor waits for the run, so the run may post to this object.
    const Progress progress = [this](int done, int total, const QString& browser, const QString& category) {
        QMetaObject::invokeMethod(this, [=, this] { emit this->progress(done, total, browser, category); }, Qt::QueuedConnection);
    };
    m_stop = false;
    m_run = QtConcurrent::run(run, tasksOf(browserArr), options, progress, &m_stop);
    auto* watcher = new QFutureWatcher<QList<CleanOutcome>>(this);
    connect(watcher, &QFutureWatcher<QList<CleanOutcome>>::finished, this, [this, watcher, browserArr] {
        watcher->deleteLater();
        const QList<CleanOutcome> outcomes = m_run.result();
        applyOutcomes(browserArr, outcomes);
        emit finished(outcomes);
    });
    watcher->setFuture(m_run);
}

QList<CleanOutcome> BrowserCleanJob::cleanNow(const BrowserArr& browserArr, CleanOptions options) {
    const QList<CleanOutcome> outcomes = run(tasksOf(browserArr), options, {}, nullptr);
    applyOutcomes(browserArr, outcomes);
    return outcomes;
}

void BrowserCleanJob::stop() { m_stop = true; }

void BrowserCleanJob::applyOutcomes(const BrowserArr& browserArr, const QList<CleanOutcome>& outcomes) {
    for (const CleanOutcome& outcome : outcomes) {
        if (outcome.reason == kStoppedReason) continue;
        outcome.category->isSelect = 0;
        outcome.category->size = outcome.sizeAfter;
    }
    // A browser keeps its tick while a category of it was not reached.
    QSet<const BrowerObj*> notReached;
    for (const CleanOutcome& outcome : outcomes)
        if (outcome.reason == kStoppedReason) notReached.insert(outcome.category);
    for (const BrowerObjPtr& browser : browserArr) {
        const bool untouched = std::any_of(browser->chrArr.cbegin(), browser->chrArr.cend(),
                                           [&](const BrowerObjPtr& category) { return notReached.contains(category.get()); });
        if (!untouched) browser->isSelect = 0;
    }
}

}  // namespace velmora
