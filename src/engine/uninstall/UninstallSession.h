#pragma once

#include "engine/uninstall/AMAppItem.h"

#include <QObject>
#include <QStringList>
#include <atomic>
#include <memory>

namespace velmora {

class AsMDeleteExecutor;

// The confirmation tree and the removal of one uninstall request: one group per
// application (element 0 the application, then its related files), the ticked records in
// the order they were ticked, and the removal with its bookkeeping. Files and folders go
// through the batch deleter (ordinary delete, privileged fallback); Flatpak and Snap
// applications through their manager. Live on the GUI (or CLI) thread.
class UninstallSession : public QObject {
    Q_OBJECT

public:
    enum class TickState { No, Election, Yes };  // checkbox_no, checkbox_election, checkbox_yes

    explicit UninstallSession(QList<AMAppItemList> allRelaltedFiles, QObject* parent = nullptr);
    ~UninstallSession() override;  // waits for a running removal

    const QList<AMAppItemList>& allRelaltedFiles() const { return m_allRelaltedFiles; }
    const AMAppItemList& selectDeletePath() const { return m_selectDeletePath; }

    // Ticks, in group and list order, every record that is to be pre-ticked (possible
    // matches and entries another application also matches stay unticked; with
    // includePossible the possible matches that no other application claims are ticked too).
    void tickPreTicked(bool includePossible = false);
    bool isTicked(const AMAppItemPtr& item) const;
    TickState groupState(int group) const;
    // A click on a group's box (row < 0) ticks its missing records or, when all are
    // ticked, unticks all; on a file row (row >= 0) it toggles that record.
    void selectRemoveLanguage(int group, int row = -1);
    bool canUninstall() const { return !m_selectDeletePath.isEmpty(); }
    // Sum of the group's sizes (size texts read back as bytes), as convertVolSpace text.
    QString groupSizeText(int group) const;

    // The running applications among the groups ("Quit it first"), by display name.
    QStringList runningApplications() const;
    // The same for groups not yet in a session (reads the processes once; any thread).
    static QStringList runningApplicationsOf(const QList<AMAppItemList>& groups);

    // Starts removing the ticked records (nothing when none is ticked); returns at once.
    void doRemove();
    bool isRemoving() const { return m_removing; }
    int deleteCount() const { return m_deleteCount; }
    int allSelectCount() const { return m_allSelectCount; }
    qint64 totalSize() const { return m_totalSize; }
    bool isFail() const { return m_isFail; }
    // The records that could not be removed, each with its reason.
    const QList<QPair<AMAppItemPtr, QString>>& failures() const { return m_failures; }

    // The end message (with its doubled unit) for a size text.
    static QString endMessage(const QString& sizeText);
    // What the end view says: the end message when everything was removed, else how many
    // items were not removed (never "successfully" then).
    QString closingMessage() const;
    // Whole-number percent with the division first: 0 until the last record, then 100.
    static int percentDone(int deleteCount, int allSelectCount);

    // Empties the ticked list and the groups (after "OK").
    void uninstallEnd();

signals:
    void recordRemoved(const velmora::AMAppItemPtr& item);
    void recordFailed(const velmora::AMAppItemPtr& item, const QString& reason);
    void changeProgressValue(int percent, const QString& path);
    void changeLabel(const QString& message);  // closingMessage(), sent once, just before the bar reaches 100
    void removalFinished();

private:
    void recordDone(const QString& path, bool removed, const QString& reason);
    void removeWithManagers(const AMAppItemList& managed);
    void managerDone(const AMAppItemPtr& item, bool removed, const QString& reason);
    void reportProgress(const QString& path);

    QList<AMAppItemList> m_allRelaltedFiles;
    AMAppItemList m_selectDeletePath;
    AMAppItemList m_selectedRelatedFiles;
    std::unique_ptr<AsMDeleteExecutor> m_deleteExecutor;
    int m_deleteCount = 0;
    int m_allSelectCount = 0;
    qint64 m_totalSize = 0;
    bool m_isFail = false;
    bool m_removing = false;
    QList<QPair<AMAppItemPtr, QString>> m_failures;
    AMAppItemList m_finished;  // records already counted in this removal
    std::atomic<int> m_managerJobs{0};
};

}  // namespace velmora
