#include "gui/app/MainWindowController.h"

#include "engine/platform/NotificationCenter.h"
#include "gui/copy/DiskCopyViewController.h"
#include "gui/duplicate/SameFileDeleteViewController.h"
#include "gui/erase/FileEraserViewController.h"
#include "gui/inter/InternetViewController.h"
#include "gui/uninstall/UninstallViewController.h"
#include "gui/volumes/RepairDiskViewController.h"
#include "gui/volumes/WipeDiskViewController.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/MAAttachedWindow.h"
#include "gui/widgets/PanelContent.h"
#include "gui/widgets/SidebarButton.h"
#include "gui/widgets/Style.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QGraphicsDropShadowEffect>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPalette>
#include <QPainter>
#include <QPainterPath>
#include <QParallelAnimationGroup>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QSvgRenderer>
#include <QTimer>
#include <QVBoxLayout>
#include <QWindow>

namespace velmora {
namespace {

struct SidebarEntry {
    const char* title;
    const char* icon;
};
constexpr SidebarEntry kEntries[] = {
    {"Erase Files", "ic_ashredder"},     {"Erase Hard Drive", "ic_wipe_hdd"}, {"Erase Free Space", "ic_wipe_free"},
    {"Disk Format", "ic_format"},         {"Disk Tool", "ic_manage"},          {"Uninstaller", "ic_uninstall"},
    {"Internet Cleaner", "ic_internet"}, {"Duplicate Finder", "ic_duplicate"},
};

constexpr int kAnimationMs = 500;

// Pages are sent only the hooks they implement, so a page without volumes
// (or a page not built yet) simply ignores them.
void sendIfResponds(QObject* page, const char* method, QGenericArgument argument = QGenericArgument()) {
    const QByteArray signature = argument.name() ? QByteArray(method) + "(int)" : QByteArray(method) + "()";
    if (page->metaObject()->indexOfMethod(signature) >= 0) QMetaObject::invokeMethod(page, method, argument);
}

QPushButton* windowButton(const QColor& colour, const QString& name, QWidget* parent) {
    auto* button = new QPushButton(parent);
    button->setFixedSize(12, 12);
    button->setToolTip(name);
    button->setAccessibleName(name);
    button->setCursor(Qt::PointingHandCursor);
    button->setFocusPolicy(Qt::TabFocus);
    button->setStyleSheet(QString("QPushButton { background: %1; border-radius: 6px; border: none; }"
                                  "QPushButton:hover { border: 1px solid rgba(255,255,255,150); }"
                                  "QPushButton:focus { border: 2px solid %2; }")
                              .arg(colour.name(), Style::kAccent.name()));
    return button;
}

// A thin strip along an edge or a corner of the frameless window that resizes it:
// through the window system where it can, else by following the mouse.
class EdgeGrip : public QWidget {
public:
    EdgeGrip(Qt::Edges edges, QWidget* window) : QWidget(window), m_edges(edges) {
        const bool horizontal = edges == Qt::LeftEdge || edges == Qt::RightEdge;
        const bool vertical = edges == Qt::TopEdge || edges == Qt::BottomEdge;
        const bool falling = edges == (Qt::TopEdge | Qt::LeftEdge) || edges == (Qt::BottomEdge | Qt::RightEdge);
        setCursor(horizontal ? Qt::SizeHorCursor
                  : vertical ? Qt::SizeVerCursor
                  : falling  ? Qt::SizeFDiagCursor
                             : Qt::SizeBDiagCursor);
    }
    Qt::Edges edges() const { return m_edges; }

protected:
    void mousePressEvent(QMouseEvent* event) override {
        m_pressed = event->globalPosition().toPoint();
        m_startGeometry = window()->geometry();
        m_manual = !window()->windowHandle() || !window()->windowHandle()->startSystemResize(m_edges);
    }
    void mouseMoveEvent(QMouseEvent* event) override {
        if (!m_manual || !(event->buttons() & Qt::LeftButton)) return;
        const QPoint delta = event->globalPosition().toPoint() - m_pressed;
        QRect frame = m_startGeometry;
        const QSize minimum = window()->minimumSize();
        if (m_edges & Qt::LeftEdge) frame.setLeft(qMin(frame.left() + delta.x(), frame.right() - minimum.width()));
        if (m_edges & Qt::RightEdge) frame.setRight(frame.right() + delta.x());
        if (m_edges & Qt::TopEdge) frame.setTop(qMin(frame.top() + delta.y(), frame.bottom() - minimum.height()));
        if (m_edges & Qt::BottomEdge) frame.setBottom(frame.bottom() + delta.y());
        window()->setGeometry(frame);
    }

private:
    Qt::Edges m_edges;
    QPoint m_pressed;
    QRect m_startGeometry;
    bool m_manual = false;
};

constexpr int kGripThickness = 5;
// Ctrl+Q on every desktop (some key schemes have no standard Quit key).
const QKeySequence kQuitKeys(Qt::CTRL | Qt::Key_Q);

}  // namespace

MainWindowController::MainWindowController(QWidget* parent)
    : QWidget(parent),
      m_sidebar(new QWidget(this)),
      m_pageArea(new QWidget(this)),
      m_applicationMenu(new QMenu(this)),
      m_menuButton(new ImageToggle("ic_menu", m_sidebar, 24)) {
    setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
    setAttribute(Qt::WA_TranslucentBackground);
    refreshTitle();
    connect(NotificationCenter::defaultCenter(), &NotificationCenter::posted, this, [this](const QString& name) {
        if (name == "CHANGE_PROJECT_VERSION") refreshTitle();
    });

    addWindowButtons();
    m_menuButton->setToolTip("Menu");
    m_menuButton->setAccessibleName("Menu");
    m_menuButton->hide();
    connect(m_menuButton, &ImageToggle::clicked, this, [this] {
        m_applicationMenu->popup(m_menuButton->mapToGlobal(QPoint(0, m_menuButton->height())));
    });

    m_nameLabel = Style::label("Velmora\nData Eraser", 15, false, true);
    m_nameLabel->setParent(m_sidebar);

    // The sidebar first, so that Tab goes from the window buttons through the sidebar
    // into the page.
    addTypeButton();
    addPages();
    addDiskCopyView();
    addShortcuts();
    setTabOrder(m_maximizeButton, m_menuButton);
    setTabOrder(m_menuButton, m_allTypeButArr.first());
    for (Qt::Edges edges : {Qt::Edges(Qt::LeftEdge), Qt::Edges(Qt::RightEdge), Qt::Edges(Qt::TopEdge),
                            Qt::Edges(Qt::BottomEdge), Qt::TopEdge | Qt::LeftEdge, Qt::TopEdge | Qt::RightEdge,
                            Qt::BottomEdge | Qt::LeftEdge, Qt::BottomEdge | Qt::RightEdge})
        m_edgeGrips.append(new EdgeGrip(edges, this));
    qApp->installEventFilter(this);

    setMinimumSize(sidebarWidth() + kPageWidth, kPageHeight);
    resize(minimumSize());
    layoutShell();
    // The window starts with the keyboard on the page area itself, so no control shows a
    // ring (and Space acts on nothing) before the user presses Tab.
    m_pageArea->setFocus(Qt::OtherFocusReason);
}

void MainWindowController::addWindowButtons() {
    const QColor red(0xE0, 0x56, 0x5B);
    m_closeButton = windowButton(red, "Close", m_sidebar);
    m_closeButton->move(18, 16);
    connect(m_closeButton, &QPushButton::clicked, this, &MainWindowController::requestQuit);
    // A window without a parent is outside the blocked window's family, and a tool tip
    // stays over the window; the stand-in takes no focus.
    m_closeStandIn = std::make_unique<QWidget>(nullptr, Qt::ToolTip | Qt::FramelessWindowHint);
    m_closeStandIn->setObjectName("closeStandIn");
    m_closeStandIn->setAttribute(Qt::WA_ShowWithoutActivating);
    m_closeStandIn->setAutoFillBackground(true);
    QPalette background = m_closeStandIn->palette();
    background.setColor(QPalette::Window, Style::kSidebar);
    m_closeStandIn->setPalette(background);
    auto* standInButton = windowButton(red, "Close", m_closeStandIn.get());
    standInButton->setFocusPolicy(Qt::NoFocus);
    m_closeStandIn->setFixedSize(standInButton->size());
    connect(standInButton, &QPushButton::clicked, this, &MainWindowController::requestQuit);
    auto* minimise = windowButton(QColor(0xE8, 0xA9, 0x3A), "Minimize", m_sidebar);
    minimise->move(38, 16);
    connect(minimise, &QPushButton::clicked, this, &QWidget::showMinimized);
    m_maximizeButton = windowButton(QColor(0x4F, 0xB8, 0x5A), "Maximize", m_sidebar);
    m_maximizeButton->move(58, 16);
    connect(m_maximizeButton, &QPushButton::clicked, this, &MainWindowController::toggleMaximized);
}

void MainWindowController::addShortcuts() {
    // Quit is taken by the event filter, so that it also works while a panel is open.
    auto* help = new QAction("Velmora Data Eraser Help", this);
    help->setShortcut(QKeySequence::HelpContents);
    help->setShortcutContext(Qt::WindowShortcut);
    connect(help, &QAction::triggered, this, &MainWindowController::showHelp);
    addAction(help);
    m_applicationMenu->addAction(help);
    auto* quit = m_applicationMenu->addAction("Quit", this, &MainWindowController::requestQuit);
    quit->setShortcut(kQuitKeys);
    m_menuButton->show();
}

void MainWindowController::showHelp() {
    auto* panel = new MAAttachedWindow(this, {500, 330});
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setObjectName("helpPanel");
    QVBoxLayout* layout = PanelContent::addMessage(
        panel, "ic_help", "Velmora Data Eraser Help",
        "Choose a tool in the sidebar. Nothing is erased, formatted or removed before you confirm, and every "
        "confirmation has Cancel as its default button.\n\n"
        "Keyboard: Tab moves between controls, Space or Enter uses the one with the ring, Escape cancels a panel. "
        "Ctrl+O adds files on the Erase Files page, Delete removes the selected rows from a list, Ctrl+Q quits "
        "(a running job is stopped first when you agree).");
    auto* ok = ImageSetButton::primary("OK", panel);
    PanelContent::addButtons(layout, {ok});
    connect(ok, &QPushButton::clicked, panel, &QDialog::accept);
    panel->setCancelButton(ok);
    panel->open();
}

void MainWindowController::refreshTitle() { setWindowTitle("Velmora Data Eraser"); }

void MainWindowController::addPages() {
    // In the order of the sidebar's slots; pages with two modes serve two entries.
    m_allBaseViewArr = {new FileEraserViewController(this, m_pageArea), new WipeDiskViewController(this, m_pageArea),
                        new RepairDiskViewController(this, m_pageArea), new UninstallViewController(this, m_pageArea),
                        new InternetViewController(this, m_pageArea), new SameFileDeleteViewController(this, m_pageArea)};
    for (QWidget* page : std::as_const(m_allBaseViewArr)) page->setVisible(page == m_allBaseViewArr.first());
}

void MainWindowController::addTypeButton() {
    for (int tag = 0; tag < 8; ++tag) {
        const QString icon = kEntries[tag].icon;
        SidebarButton* button = createTypeButton(kEntries[tag].title, icon, icon + "_sel", tag, QRect());
        button->setSelected(tag == m_indexSelectView);
        m_allTypeButArr.append(button);
    }
}

int MainWindowController::sidebarWidth() const {
    // Wide enough for the longest entry in its selected (bold) face.
    int width = kSidebarWidth;
    for (const SidebarButton* button : m_allTypeButArr) width = qMax(width, button->sizeHint().width());
    return width;
}

void MainWindowController::layoutShell() {
    const int sideWidth = sidebarWidth();
    m_sidebar->setGeometry(0, 0, sideWidth, height());
    m_menuButton->move(sideWidth - 38, 10);
    m_nameLabel->setGeometry(24, 50, sideWidth - 30, 48);
    int y = 120;
    for (SidebarButton* button : std::as_const(m_allTypeButArr)) {
        button->setGeometry(0, y, sideWidth, 48);
        y += 54;
    }

    // A slide under way ends where it was going; the pages then take the new size.
    if (m_slide) m_slide->setCurrentTime(m_slide->totalDuration());
    m_pageArea->setGeometry(sideWidth, 0, width() - sideWidth, height());
    const QSize pageSize = m_pageArea->size();
    for (QWidget* page : std::as_const(m_allBaseViewArr)) {
        page->resize(pageSize);
        if (page->isVisible()) page->move(0, 0);
    }
    if (m_diskCopyView) {
        m_diskCopyView->resize(pageSize);
        if (!m_diskCopyView->isVisible()) m_diskCopyView->move(0, pageSize.height());
    }

    for (QWidget* widget : std::as_const(m_edgeGrips)) {
        auto* grip = static_cast<EdgeGrip*>(widget);
        const Qt::Edges edges = grip->edges();
        const int left = edges & Qt::LeftEdge ? 0 : edges & Qt::RightEdge ? width() - kGripThickness : kGripThickness;
        const int top = edges & Qt::TopEdge ? 0 : edges & Qt::BottomEdge ? height() - kGripThickness : kGripThickness;
        const int right = edges & (Qt::LeftEdge | Qt::RightEdge) ? left + kGripThickness : width() - kGripThickness;
        const int bottom = edges & (Qt::TopEdge | Qt::BottomEdge) ? top + kGripThickness : height() - kGripThickness;
        grip->setGeometry(QRect(QPoint(left, top), QPoint(right - 1, bottom - 1)));
        grip->setVisible(!isMaximized() && !isFullScreen());
        grip->raise();
    }
}

void MainWindowController::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    layoutShell();
}

void MainWindowController::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange) return;
    const QString name = isMaximized() ? "Restore" : "Maximize";
    m_maximizeButton->setToolTip(name);
    m_maximizeButton->setAccessibleName(name);
    layoutShell();
}

void MainWindowController::toggleMaximized() {
    if (isMaximized())
        showNormal();
    else
        showMaximized();
}

SidebarButton* MainWindowController::createTypeButton(const QString& name, const QString& iconImage,
                                                      const QString& selIconImage, int tag, const QRect& frame) {
    auto* button = new SidebarButton(name, iconImage, selIconImage, tag, m_sidebar);
    button->setGeometry(frame);
    connect(button, &SidebarButton::clickedWithTag, this, &MainWindowController::mouseClickAction);
    return button;
}

int MainWindowController::slotForTag(int tag) {
    static constexpr int kSlots[] = {0, 1, 1, 2, 2, 3, 4, 5};
    return (tag >= 0 && tag < 8) ? kSlots[tag] : 0;
}

void MainWindowController::mouseClickAction(int tag) {
    if (tag == m_indexSelectView) return;
    for (SidebarButton* button : std::as_const(m_allTypeButArr)) button->setSelected(button->tag() == tag);

    const int previous = m_indexSelectView;
    QWidget* page = m_allBaseViewArr.at(slotForTag(tag));
    if (tag == 1 || tag == 2) {
        if (previous != 1 && previous != 2) sendIfResponds(page, "getallVolumes");
        sendIfResponds(page, "changeFormatOrFreeSpaceView", Q_ARG(int, tag));
        if (previous == 3 - tag) {
            m_indexSelectView = tag;
            return;
        }
    } else if (tag == 3 || tag == 4) {
        sendIfResponds(page, "getallVolumes");
        sendIfResponds(page, "setIsFormatOrRename", Q_ARG(int, tag == 3 ? 1 : 0));
        if (previous == 7 - tag) {
            m_indexSelectView = tag;
            return;
        }
    }
    slideToSlot(slotForTag(previous), slotForTag(tag));
    m_indexSelectView = tag;
}

void MainWindowController::slideToSlot(int oldSlot, int newSlot) {
    if (m_slide) m_slide->setCurrentTime(m_slide->totalDuration());
    QWidget* oldView = m_allBaseViewArr.at(oldSlot);
    QWidget* newView = m_allBaseViewArr.at(newSlot);
    const int travel = m_pageArea->height();
    newView->setGeometry(QRect(QPoint(0, travel), m_pageArea->size()));
    newView->show();
    newView->raise();

    m_slide = new QParallelAnimationGroup(this);
    auto* moveIn = new QPropertyAnimation(newView, "pos");
    moveIn->setDuration(kAnimationMs);
    moveIn->setEndValue(QPoint(0, 0));
    auto* moveOut = new QPropertyAnimation(oldView, "pos");
    moveOut->setDuration(kAnimationMs);
    moveOut->setEndValue(QPoint(0, -travel));
    m_slide->addAnimation(moveIn);
    m_slide->addAnimation(moveOut);
    connect(m_slide, &QParallelAnimationGroup::finished, oldView, [this, oldView] {
        // A quick second click may already have brought this view back.
        if (m_allBaseViewArr.at(slotForTag(m_indexSelectView)) != oldView) oldView->hide();
    });
    m_slide->start(QAbstractAnimation::DeleteWhenStopped);
}

void MainWindowController::canChangeType(bool canChange, const QObject* page) {
    if (canChange) m_jobPages.remove(page);
    else m_jobPages.insert(page);
    m_jobRunning = !m_jobPages.isEmpty();
    for (SidebarButton* button : std::as_const(m_allTypeButArr)) button->setButtonEnden(!m_jobRunning);
    if (!m_jobRunning && m_quitWhenJobEnds) {
        // The page has taken the job's end (history, result); now quit.
        m_quitWhenJobEnds = false;
        QTimer::singleShot(0, this, &MainWindowController::quitNow);
    }
}

void MainWindowController::requestQuit() {
    if (m_jobRunning && !m_quitting)
        askToStopJobAndQuit();
    else
        quitNow();
}

void MainWindowController::quitNow() {
    m_quitting = true;
    // The panels go first: the window system ignores a close of a window a modal panel blocks.
    closePanels();
    close();
}

// The panels of the pages are windows of their own; they go with the window.
void MainWindowController::closePanels() {
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window != this && window->isVisible() && qobject_cast<QDialog*>(window)) window->close();
}

void MainWindowController::closeEvent(QCloseEvent* event) {
    if (!m_jobRunning || m_quitting) {
        closePanels();
        event->accept();
        return;
    }
    event->ignore();
    askToStopJobAndQuit();
}

void MainWindowController::askToStopJobAndQuit() {
    if (m_quitQuestion) return;
    auto* panel = new MAAttachedWindow(this, {460, 210});
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setObjectName("quitQuestion");
    QVBoxLayout* layout = PanelContent::addMessage(
        panel, "ic_warning", "A job is still running",
        "Stop it and quit? Items the job has not reached yet are left as they are.");
    auto* cancel = ImageSetButton::secondary("Cancel", panel);
    auto* stop = ImageSetButton::primary("Stop and Quit", panel);
    stop->setMinimumWidth(130);
    PanelContent::addButtons(layout, {cancel, stop});
    panel->setCancelButton(cancel);
    connect(cancel, &QPushButton::clicked, panel, &QDialog::reject);
    connect(stop, &QPushButton::clicked, this, [this, panel] {
        panel->accept();
        if (!m_jobRunning) {
            quitNow();
            return;
        }
        // Every page is asked, not only the one shown: the drive-copy page may be open over
        // the page whose job runs. A page without a job ignores the request.
        m_quitWhenJobEnds = true;
        QList<QWidget*> pages = m_allBaseViewArr;
        pages.append(m_diskCopyView);
        for (QWidget* page : std::as_const(pages)) sendIfResponds(page, "stopJob");
    });
    m_quitQuestion = panel;
    panel->open();
}

void MainWindowController::updateCloseStandIn() {
    QWidget* blocking = QApplication::activeModalWidget();
    QWidget* owner = blocking && blocking->parentWidget() ? blocking->parentWidget()->window() : nullptr;
    while (owner && owner != this && owner->parentWidget()) owner = owner->parentWidget()->window();
    const bool blocked = owner == this && isVisible() && !isMinimized() && !m_quitting &&
                         QGuiApplication::applicationState() == Qt::ApplicationActive;
    if (!blocked) {
        m_closeStandIn->hide();
        return;
    }
    m_closeStandIn->move(m_closeButton->mapToGlobal(QPoint(0, 0)));
    m_closeStandIn->show();
}

// The tool page under the drive-copy page is hidden while the copy page covers it, so
// that Tab never stops on a control the user cannot see.
void MainWindowController::hidePageUnderDiskCopyView() {
    QWidget* page = m_allBaseViewArr.at(slotForTag(m_indexSelectView));
    const bool covered = m_diskCopyView->isVisible() && m_diskCopyView->y() == 0;
    if (page->isVisible() == covered) page->setVisible(!covered);
}

bool MainWindowController::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (watched == m_diskCopyView && (type == QEvent::Move || type == QEvent::Show || type == QEvent::Hide))
        hidePageUnderDiskCopyView();
    // A modal panel shown or hidden, the window moved: the close stand-in follows.
    if (type == QEvent::Show || type == QEvent::Hide || type == QEvent::Move || type == QEvent::Resize ||
        type == QEvent::ApplicationStateChange) {
        auto* widget = qobject_cast<QWidget*>(watched);
        if ((widget && widget->isWindow() && widget != m_closeStandIn.get()) || type == QEvent::ApplicationStateChange)
            QTimer::singleShot(0, this, &MainWindowController::updateCloseStandIn);
    }

    // Ctrl+Q reaches the window also while one of its modal panels has the keyboard.
    if (event->type() == QEvent::KeyPress &&
        QKeySequence(static_cast<QKeyEvent*>(event)->keyCombination()) == kQuitKeys) {
        auto* widget = qobject_cast<QWidget*>(watched);
        QWidget* window = widget ? widget->window() : nullptr;
        while (window && window != this && window->parentWidget()) window = window->parentWidget()->window();
        if (window == this) {
            QTimer::singleShot(0, this, &MainWindowController::requestQuit);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void MainWindowController::removeFolderInWipeVolumes() {
    sendIfResponds(m_allBaseViewArr.at(1), "endAppRemoveFolder");
}

void MainWindowController::addDiskCopyView() {
    m_diskCopyView = new DiskCopyViewController(this, m_pageArea);
    m_diskCopyView->hide();
    QMenu* tools = m_applicationMenu->addMenu("Tools");
    connect(tools->addAction("Copy Drive…"), &QAction::triggered, this, &MainWindowController::showDiskCopyView);
    m_menuButton->show();
}

void MainWindowController::showDiskCopyView() { m_diskCopyView->showPage(); }

QAction* MainWindowController::addMenuAction(const QString& text) {
    m_menuButton->show();
    return m_applicationMenu->addAction(text);
}

void MainWindowController::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath shape;
    shape.addRoundedRect(QRectF(rect()), isMaximized() ? 0 : 8, isMaximized() ? 0 : 8);
    painter.setClipPath(shape);
    painter.fillRect(rect(), Style::kWindow);
    painter.fillRect(m_sidebar->geometry(), Style::kSidebar);
}

void MainWindowController::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) m_dragOffset = event->globalPosition().toPoint() - frameGeometry().topLeft();
}

void MainWindowController::mouseMoveEvent(QMouseEvent* event) {
    // The window is frameless: it moves by its background.
    if ((event->buttons() & Qt::LeftButton) && !isMaximized()) move(event->globalPosition().toPoint() - m_dragOffset);
}

void MainWindowController::mouseDoubleClickEvent(QMouseEvent* event) {
    // As on a title bar: a double click on the background maximises or restores.
    if (event->button() == Qt::LeftButton) toggleMaximized();
}

}  // namespace velmora
