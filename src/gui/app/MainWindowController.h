#pragma once

#include <QList>
#include <QPointer>
#include <QSet>
#include <QWidget>
#include <memory>

class QAction;
class QLabel;
class QMenu;
class QParallelAnimationGroup;
class QPushButton;

namespace velmora {

class DiskCopyViewController;
class ImageToggle;
class SidebarButton;

// The main window: the sidebar of eight tools and the six page slots. Tags
// 1/2 share the disk-wipe page and 3/4 the disk page; switching between the
// two modes of one page changes its mode in place, any other switch slides
// the pages vertically. While a page runs a job the sidebar is locked.
//
// The window can be resized and maximised; its minimum is the sidebar beside a page
// of kPageWidth x kPageHeight. The sidebar and the page area grow with the window,
// and every page is given the page area's whole rect: a page lays itself out from
// its own rect (layouts, or resizeEvent), never from the constants above, which
// are only the size a page starts with.
//
// Quitting (red button, Ctrl+Q, the window manager's close) while the sidebar is
// locked by a job asks first; on "Stop and Quit" every page's `stopJob()` slot ends
// the page's job the way its own Stop button does (or, for work that must not be cut
// off, lets it end), and the application quits once the page unlocks the sidebar.
class MainWindowController : public QWidget {
    Q_OBJECT
public:
    static constexpr int kPageWidth = 784;
    static constexpr int kPageHeight = 600;
    static constexpr int kSidebarWidth = 220;

    explicit MainWindowController(QWidget* parent = nullptr);

    static int slotForTag(int tag);
    void mouseClickAction(int tag);
    // A page locks the sidebar while its job runs and unlocks it at the end; with jobs
    // of two pages at once (a drive copy over a search) it stays locked until both end.
    void canChangeType(bool canChange, const QObject* page = nullptr);
    void removeFolderInWipeVolumes();
    // Adds an entry to the application menu, which the sidebar's menu button opens;
    // the button shows once the menu has an entry.
    QAction* addMenuAction(const QString& text);
    QMenu* applicationMenu() const { return m_applicationMenu; }
    // The drive-copy page, in its own container over the pages; no sidebar entry leads
    // to it: the menu's Tools > Copy Drive… and the disk page's "Copy Drive" open it.
    void addDiskCopyView();
    void showDiskCopyView();
    DiskCopyViewController* diskCopyView() const { return m_diskCopyView; }
    ImageToggle* menuButton() const { return m_menuButton; }
    // The red button, Ctrl+Q and the menu's Quit: asks first during a job, else closes
    // the window (and the panels open over it).
    void requestQuit();
    // A panel with the keyboard shortcuts and how the tools are used (F1, the menu).
    void showHelp();
    QWidget* pageArea() const { return m_pageArea; }
    QWidget* sidebar() const { return m_sidebar; }
    // True while a page runs a job (the sidebar is locked).
    bool isJobRunning() const { return m_jobRunning; }
    // The question asked when the window is closed during a job, while it is open.
    QWidget* quitQuestion() const { return m_quitQuestion; }
    // While a modal panel blocks the window, the window system drops clicks on the window,
    // the red button's among them: a small unblocked window with the same button stands
    // over it then (shown only while the application is active).
    QWidget* closeStandIn() const { return m_closeStandIn.get(); }
    QPushButton* closeButton() const { return m_closeButton; }

    int indexSelectView() const { return m_indexSelectView; }
    const QList<SidebarButton*>& allTypeButArr() const { return m_allTypeButArr; }
    const QList<QWidget*>& allBaseViewArr() const { return m_allBaseViewArr; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void addPages();
    void addTypeButton();
    SidebarButton* createTypeButton(const QString& name, const QString& iconImage, const QString& selIconImage,
                                    int tag, const QRect& frame);
    void slideToSlot(int oldSlot, int newSlot);
    void refreshTitle();
    void addWindowButtons();
    void addShortcuts();
    void layoutShell();
    int sidebarWidth() const;
    Qt::Edges resizeEdgesAt(const QPoint& position) const;
    void toggleMaximized();
    void askToStopJobAndQuit();
    void quitNow();
    void closePanels();
    void updateCloseStandIn();
    void hidePageUnderDiskCopyView();

    QWidget* m_sidebar;
    QWidget* m_pageArea;
    QMenu* m_applicationMenu;
    ImageToggle* m_menuButton;
    QPushButton* m_maximizeButton = nullptr;
    QPushButton* m_closeButton = nullptr;
    std::unique_ptr<QWidget> m_closeStandIn;
    QLabel* m_nameLabel = nullptr;
    QPointer<QWidget> m_quitQuestion;
    QPointer<QParallelAnimationGroup> m_slide;
    bool m_jobRunning = false;
    QSet<const QObject*> m_jobPages;  // the pages whose job runs
    bool m_quitWhenJobEnds = false;
    bool m_quitting = false;
    DiskCopyViewController* m_diskCopyView = nullptr;
    QList<SidebarButton*> m_allTypeButArr;
    QList<QWidget*> m_allBaseViewArr;
    QList<QWidget*> m_edgeGrips;  // the resize strips along the frameless window's edges
    int m_indexSelectView = 0;
    QPoint m_dragOffset;
};

}  // namespace velmora
