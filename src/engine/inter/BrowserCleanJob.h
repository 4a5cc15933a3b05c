#pragma once

#include "engine/inter/BrowerObj.h"

#include <QFuture>
#include <QList>
#include <QObject>
#include <QString>
#include <atomic>

namespace velmora {

// What became of one ticked category.
struct CleanOutcome {
    enum class Status { Cleaned, Skipped, Failed };
    QString browserName;
    QString categoryName;
    Status status = Status::Failed;
    QString reason;      // why it failed or was skipped
    QString sizeAfter;   // the text shown afterwards
    BrowerObj* category = nullptr;
};

struct CleanOptions {
    // After cleaning, each database that was cleaned is checkpointed and rewritten
    // (secure_delete on), and the companions of removed databases go too.
    bool thorough = false;
};

// The clean run over the ticked categories of the ticked browsers, in catalogue order.
// The work runs in the background on copies of the paths; the entries are changed only
// on the owner's thread when it ends (categories unticked, sizes updated, browsers
// unticked), so a page may keep drawing them meanwhile.
class BrowserCleanJob : public QObject {
    Q_OBJECT

public:
    explicit BrowserCleanJob(QObject* parent = nullptr);
    ~BrowserCleanJob() override;  // waits for a run under way

    // Starts unless a run is under way; emits progress and then finished.
    void cleanBrowerFiles(const BrowserArr& browserArr, CleanOptions options = {});
    bool isRunning() const { return m_run.isRunning(); }
    // Ends the run after the category being cleaned; the rest are Skipped with kStoppedReason.
    void stop();
    static constexpr const char* kStoppedReason = "stopped before it was cleaned";

    // The whole run on the calling thread (the CLI), entries updated at the end.
    static QList<CleanOutcome> cleanNow(const BrowserArr& browserArr, CleanOptions options = {});
    // Applies the outcomes to the entries: each category unticked with its new text,
    // and every browser unticked (the run took all ticked ones); after a stop, what the
    // run did not reach keeps its tick.
    static void applyOutcomes(const BrowserArr& browserArr, const QList<CleanOutcome>& outcomes);

signals:
    void progress(int done, int total, const QString& browserName, const QString& categoryName);
    void finished(const QList<velmora::CleanOutcome>& outcomes);

private:
    QFuture<QList<CleanOutcome>> m_run;
    std::atomic_bool m_stop = false;
};

}  // namespace velmora
