#pragma once

#include "gui/widgets/MAAttachedWindow.h"

#include <QList>
#include <QPointer>
#include <QVariantMap>
#include <QWidget>

class QLabel;
class QPushButton;
class QScrollArea;

namespace velmora {

// The update panel: while the list is fetched a second time it shows the checking view,
// then one of the no-network, no-update and update-available views. The update view
// names the new version and lists its numbered notes; "Install Now" opens the download
// page. Every button closes the panel; "Skip This Version" stores nothing.
class UpdateViewController : public QWidget {
    Q_OBJECT
public:
    static constexpr int kPanelWidth = 440;
    static constexpr int kNotesWidth = 374;
    static constexpr int kNotesMinHeight = 170;
    static constexpr int kNoteMinHeight = 30;
    static constexpr int kLabelMinHeight = 25;

    explicit UpdateViewController(MAAttachedWindow* superDelegate);
    // Opens a fresh panel on the main window and starts the second fetch.
    static UpdateViewController* showOn(QWidget* mainWindow);

    void whatIsNewVersionDiff(const QVariantMap& remote);
    void updateClickHereAction();
    void closeWindow();

    QWidget* checkProgressView() const { return m_checkProgressView; }
    QWidget* noNetworkView() const { return m_noNetworkView; }
    QWidget* noUpdateView() const { return m_noUpdateView; }
    QWidget* haveUpdateView() const { return m_haveUpdateView; }
    QLabel* headlineLabel() const { return m_headline; }
    QLabel* whatsNewLabel() const { return m_whatsNew; }
    QScrollArea* changeValueScrollView() const { return m_changeValueScrollView; }
    QList<QLabel*> noteLabels() const { return m_noteLabels; }
    QList<QPushButton*> buttons() const { return {m_proClose, m_noNetClose, m_noUpdateClose, m_haveClose, m_updateButton}; }
    MAAttachedWindow* superDelegate() const { return m_superDelegate; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct VersionChange {
        bool network = false;
        QVariantMap remote;
    };
    static VersionChange getVersionChange();  // worker thread
    void versionChangeArrived(const VersionChange& change);
    void createCheckProgressView();
    void createResultView(QWidget*& view, const QString& image, const QString& title, const QString& message,
                          QPushButton* button);
    void createHaveUpdateView();
    void showOnly(QWidget* view);
    void fillNotes(const QVariantMap& notes);

    QPointer<MAAttachedWindow> m_superDelegate;
    QWidget* m_checkProgressView = nullptr;
    QWidget* m_noNetworkView = nullptr;
    QWidget* m_noUpdateView = nullptr;
    QWidget* m_haveUpdateView = nullptr;
    QLabel* m_headline = nullptr;
    QLabel* m_whatsNew = nullptr;
    QScrollArea* m_changeValueScrollView = nullptr;
    QList<QLabel*> m_noteLabels;
    QPushButton* m_proClose;
    QPushButton* m_noNetClose;
    QPushButton* m_noUpdateClose;
    QPushButton* m_haveClose;
    QPushButton* m_updateButton;
};

}  // namespace velmora
