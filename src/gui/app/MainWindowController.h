#pragma once

#include <QList>
#include <QWidget>

class QAction;
class QMenu;

namespace velmora {

class DiskCopyViewController;
class ImageToggle;
class SidebarButton;

// The main window: the sidebar of eight tools and the six page slots. Tags
// 1/2 share the disk-wipe page and 3/4 the disk page; switching between the
// two modes of one page changes its mode in place, any other switch slides
// the pages vertically. While a page runs a job the sidebar is locked.
class MainWindowController : public QWidget {
    Q_OBJECT
public:
    static constexpr int kPageWidth = 784;
    static constexpr int kPageHeight = 600;
    static constexpr int kSidebarWidth = 220;

    explicit MainWindowController(QWidget* parent = nullptr);

    static int slotForTag(int tag);
    void mouseClickAction(int tag);
    void canChangeType(bool canChange);
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

    int indexSelectView() const { return m_indexSelectView; }
    const QList<SidebarButton*>& allTypeButArr() const { return m_allTypeButArr; }
    const QList<QWidget*>& allBaseViewArr() const { return m_allBaseViewArr; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    void addPages();
    void addTypeButton();
    SidebarButton* createTypeButton(const QString& name, const QString& iconImage, const QString& selIconImage,
                                    int tag, const QRect& frame);
    void slideToSlot(int oldSlot, int newSlot);
    void refreshTitle();

    QWidget* m_sidebar;
    QWidget* m_pageArea;
    QMenu* m_applicationMenu;
    ImageToggle* m_menuButton;
    DiskCopyViewController* m_diskCopyView = nullptr;
    QList<SidebarButton*> m_allTypeButArr;
    QList<QWidget*> m_allBaseViewArr;
    int m_indexSelectView = 0;
    QPoint m_dragOffset;
};

}  // namespace velmora
