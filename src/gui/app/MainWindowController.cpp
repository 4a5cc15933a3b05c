#include "gui/app/MainWindowController.h"

#include "engine/platform/NotificationCenter.h"
#include "gui/app/PlaceholderPage.h"
#include "gui/copy/DiskCopyViewController.h"
#include "gui/duplicate/SameFileDeleteViewController.h"
#include "gui/erase/FileEraserViewController.h"
#include "gui/inter/InternetViewController.h"
#include "gui/uninstall/UninstallViewController.h"
#include "gui/volumes/RepairDiskViewController.h"
#include "gui/volumes/WipeDiskViewController.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/SidebarButton.h"
#include "gui/widgets/Style.h"

#include <QApplication>
#include <QGraphicsDropShadowEffect>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QParallelAnimationGroup>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QSvgRenderer>

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

QPushButton* windowButton(const QColor& colour, const QString& tip, QWidget* parent) {
    auto* button = new QPushButton(parent);
    button->setFixedSize(12, 12);
    button->setToolTip(tip);
    button->setCursor(Qt::PointingHandCursor);
    button->setStyleSheet(QString("QPushButton { background: %1; border-radius: 6px; border: none; }"
                                  "QPushButton:hover { border: 1px solid rgba(255,255,255,150); }")
                              .arg(colour.name()));
    return button;
}

}  // namespace

MainWindowController::MainWindowController(QWidget* parent)
    : QWidget(parent),
      m_sidebar(new QWidget(this)),
      m_pageArea(new QWidget(this)),
      m_applicationMenu(new QMenu(this)),
      m_menuButton(new ImageToggle("ic_menu", m_sidebar, 24)) {
    setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
    setAttribute(Qt::WA_TranslucentBackground);
    setFixedSize(kSidebarWidth + kPageWidth, kPageHeight);
    refreshTitle();
    connect(NotificationCenter::defaultCenter(), &NotificationCenter::posted, this, [this](const QString& name) {
        if (name == "CHANGE_PROJECT_VERSION") refreshTitle();
    });

    m_sidebar->setGeometry(0, 0, kSidebarWidth, kPageHeight);
    m_pageArea->setGeometry(kSidebarWidth, 0, kPageWidth, kPageHeight);

    auto* close = windowButton(QColor(0xE0, 0x56, 0x5B), "Close", m_sidebar);
    close->move(18, 16);
    connect(close, &QPushButton::clicked, this, [] { QApplication::quit(); });
    auto* minimise = windowButton(QColor(0xE8, 0xA9, 0x3A), "Minimize", m_sidebar);
    minimise->move(38, 16);
    connect(minimise, &QPushButton::clicked, this, &QWidget::showMinimized);

    m_menuButton->setToolTip("Menu");
    m_menuButton->move(kSidebarWidth - 38, 10);
    m_menuButton->hide();
    connect(m_menuButton, &ImageToggle::clicked, this, [this] {
        m_applicationMenu->popup(m_menuButton->mapToGlobal(QPoint(0, m_menuButton->height())));
    });

    QLabel* name = Style::label("Velmora\nData Eraser", 15, false, true);
    name->setParent(m_sidebar);
    name->setGeometry(24, 50, kSidebarWidth - 30, 48);

    addPages();
    addTypeButton();
    addDiskCopyView();
}

void MainWindowController::refreshTitle() { setWindowTitle("Velmora Data Eraser"); }

void MainWindowController::addPages() {
    const QList<QStringList> titles = {{"Erase Files"},
                                       {"Erase Hard Drive", "Erase Free Space"},
                                       {"Disk Format", "Disk Tool"},
                                       {"Uninstaller"},
                                       {"Internet Cleaner"},
                                       {"Duplicate Finder"}};
    for (const QStringList& pageTitles : titles) {
        QWidget* page = m_allBaseViewArr.isEmpty()
                            ? static_cast<QWidget*>(new FileEraserViewController(this, m_pageArea))
                        : m_allBaseViewArr.size() == 1
                            ? static_cast<QWidget*>(new WipeDiskViewController(this, m_pageArea))
                        : m_allBaseViewArr.size() == 2
                            ? static_cast<QWidget*>(new RepairDiskViewController(this, m_pageArea))
                        : m_allBaseViewArr.size() == 3
                            ? static_cast<QWidget*>(new UninstallViewController(this, m_pageArea))
                        : m_allBaseViewArr.size() == 4
                            ? static_cast<QWidget*>(new InternetViewController(this, m_pageArea))
                        : m_allBaseViewArr.size() == 5
                            ? static_cast<QWidget*>(new SameFileDeleteViewController(this, m_pageArea))
                            : new PlaceholderPage(pageTitles, m_pageArea);
        page->setGeometry(0, 0, kPageWidth, kPageHeight);
        page->setVisible(m_allBaseViewArr.isEmpty());
        m_allBaseViewArr.append(page);
    }
}

void MainWindowController::addTypeButton() {
    int y = 120;
    for (int tag = 0; tag < 8; ++tag) {
        const QString icon = kEntries[tag].icon;
        SidebarButton* button = createTypeButton(kEntries[tag].title, icon, icon + "_sel", tag,
                                                 QRect(0, y, kSidebarWidth, 48));
        button->setSelected(tag == m_indexSelectView);
        m_allTypeButArr.append(button);
        y += 54;
    }
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
    QWidget* oldView = m_allBaseViewArr.at(oldSlot);
    QWidget* newView = m_allBaseViewArr.at(newSlot);
    const QRect frame = oldView->geometry();
    newView->setGeometry(frame.translated(0, kPageHeight - frame.y()));
    newView->show();
    newView->raise();

    auto* group = new QParallelAnimationGroup(this);
    auto* moveIn = new QPropertyAnimation(newView, "pos");
    moveIn->setDuration(kAnimationMs);
    moveIn->setEndValue(frame.topLeft());
    auto* moveOut = new QPropertyAnimation(oldView, "pos");
    moveOut->setDuration(kAnimationMs);
    moveOut->setEndValue(QPoint(frame.x(), -kPageHeight));
    group->addAnimation(moveIn);
    group->addAnimation(moveOut);
    connect(group, &QParallelAnimationGroup::finished, oldView, [this, oldView] {
        // A quick second click may already have brought this view back.
        if (m_allBaseViewArr.at(slotForTag(m_indexSelectView)) != oldView) oldView->hide();
    });
    group->start(QAbstractAnimation::DeleteWhenStopped);
}

void MainWindowController::canChangeType(bool canChange) {
    for (SidebarButton* button : std::as_const(m_allTypeButArr)) button->setButtonEnden(canChange);
}

void MainWindowController::removeFolderInWipeVolumes() {
    sendIfResponds(m_allBaseViewArr.at(1), "endAppRemoveFolder");
}

void MainWindowController::addDiskCopyView() {
    m_diskCopyView = new DiskCopyViewController(this, m_pageArea);
    m_diskCopyView->setGeometry(0, kPageHeight, kPageWidth, kPageHeight);
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
    shape.addRoundedRect(QRectF(rect()), 8, 8);
    painter.setClipPath(shape);
    painter.fillRect(rect(), Style::kWindow);
    painter.fillRect(QRect(0, 0, kSidebarWidth, height()), Style::kSidebar);
}

void MainWindowController::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) m_dragOffset = event->globalPosition().toPoint() - frameGeometry().topLeft();
}

void MainWindowController::mouseMoveEvent(QMouseEvent* event) {
    // The window is frameless: it moves by its background.
    if (event->buttons() & Qt::LeftButton) move(event->globalPosition().toPoint() - m_dragOffset);
}

}  // namespace velmora
