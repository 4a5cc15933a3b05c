#include "gui/app/AppDelegate.h"

#include "engine/erase/EraserLevel.h"
#include "engine/platform/NotificationCenter.h"
#include "engine/update/HttpGet.h"
#include "engine/update/UpdateCheck.h"
#include "gui/app/MainWindowController.h"
#include "gui/app/SingleInstance.h"
#include "gui/app/UpdateViewController.h"

#include <QAction>
#include <QApplication>
#include <QFontDatabase>
#include <QProxyStyle>
#include <QScreen>
#include <QtConcurrent>

namespace velmora {
namespace {

// Tool tips appear after 0.3 s everywhere in the application.
class ToolTipDelayStyle : public QProxyStyle {
public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override {
        if (hint == SH_ToolTip_WakeUpDelay) return 300;
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
};

}  // namespace

AppDelegate::AppDelegate(QObject* parent) : QObject(parent) {}

AppDelegate::~AppDelegate() { delete m_mainWindowController; }

void AppDelegate::awakeFromNib() {
    EraserLevel::writeDefaultIfUnset();
    writRegularFont();
}

MainWindowController* AppDelegate::mainWindowController() const { return m_mainWindowController; }

// The interface uses one family in three weights: the regular one becomes the
// application font, and the widget kit derives the light and bold ones from it.
void AppDelegate::writRegularFont() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPointSize(12);
    QApplication::setFont(font);
}

bool AppDelegate::checkAppDuplicateAndBringToFrontWithBundle(const QString& bundleIdentifier) {
    m_singleInstance = new SingleInstance(bundleIdentifier, this);
    return m_singleInstance->checkAppDuplicateAndBringToFront();
}

bool AppDelegate::applicationDidFinishLaunching() {
    if (checkAppDuplicateAndBringToFrontWithBundle(kBundleIdentifier)) return false;
    QApplication::setStyle(new ToolTipDelayStyle);

    connect(NotificationCenter::defaultCenter(), &NotificationCenter::posted, this, [this](const QString& name) {
        if (name == "appWillTerminate") applicationWillTerminate();
    });
    connect(qApp, &QCoreApplication::aboutToQuit, this, &AppDelegate::applicationWillTerminate);

    m_mainWindowController = new MainWindowController;
    connect(m_singleInstance, &SingleInstance::activationRequested, m_mainWindowController, [this] {
        m_mainWindowController->showNormal();
        m_mainWindowController->raise();
        m_mainWindowController->activateWindow();
    });
    const QRect screen = m_mainWindowController->screen()->availableGeometry();
    m_mainWindowController->move(screen.center() - m_mainWindowController->rect().center());
    m_mainWindowController->show();
    m_mainWindowController->raise();
    m_mainWindowController->activateWindow();

    if (UpdateCheck::hasUpdateAddress())
        connect(m_mainWindowController->addMenuAction("Check for Updates…"), &QAction::triggered, this,
                &AppDelegate::checkUpdateAction);
    startUpdateCheck();
    return true;
}

void AppDelegate::startUpdateCheck() {
    if (!UpdateCheck::checksAtLaunch()) return;
    connect(&m_updateCheck, &QFutureWatcher<QVariantMap>::finished, this, [this] {
        if (!m_updateCheck.result().isEmpty()) checkUpdateAction();
    });
    m_updateCheck.setFuture(QtConcurrent::run(&AppDelegate::toCheckUpdate));
}

QVariantMap AppDelegate::toCheckUpdate() { return UpdateCheck::newerReleaseAtLaunch(); }

void AppDelegate::checkUpdateAction() {
    if (!m_mainWindowController) return;
    if (m_updateViewController) m_updateViewController->closeWindow();
    m_updateViewController = UpdateViewController::showOn(m_mainWindowController);
}

void AppDelegate::applicationWillTerminate() {
    if (m_terminated) return;
    m_terminated = true;
    // A check still waiting for the network must not hold the process at exit.
    abandonHttpGets();
    if (m_mainWindowController) m_mainWindowController->removeFolderInWipeVolumes();
    disconnect(NotificationCenter::defaultCenter(), nullptr, this, nullptr);
    if (m_mainWindowController) m_mainWindowController->hide();
}

}  // namespace velmora
