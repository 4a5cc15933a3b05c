#pragma once

#include <QFutureWatcher>
#include <QObject>
#include <QPointer>
#include <QVariantMap>

namespace velmora {

class MainWindowController;
class SingleInstance;
class UpdateViewController;

// The application object's delegate: start-up (default level, fonts, single
// instance, main window, update check) and the tidy-up at exit.
class AppDelegate : public QObject {
    Q_OBJECT
public:
    static constexpr const char* kBundleIdentifier = "app.velmora.dataeraser";

    explicit AppDelegate(QObject* parent = nullptr);
    ~AppDelegate() override;

    void awakeFromNib();
    // False when another instance was brought forward and this one must exit (status 0).
    bool applicationDidFinishLaunching();
    void applicationWillTerminate();
    bool checkAppDuplicateAndBringToFrontWithBundle(const QString& bundleIdentifier);
    MainWindowController* mainWindowController() const;

    // The launch-time update check, run off the main thread: the remote update list
    // when it offers a newer build and the network answers, else an empty map.
    static QVariantMap toCheckUpdate();
    // Shows the update panel on the main window (main thread); an earlier one is closed.
    void checkUpdateAction();

private:
    void writRegularFont();
    void startUpdateCheck();

    SingleInstance* m_singleInstance = nullptr;
    QPointer<MainWindowController> m_mainWindowController;
    QPointer<UpdateViewController> m_updateViewController;
    QFutureWatcher<QVariantMap> m_updateCheck;
    bool m_terminated = false;
};

}  // namespace velmora
