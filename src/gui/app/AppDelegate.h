#pragma once

#include <QObject>
#include <QPointer>

namespace velmora {

class MainWindowController;
class SingleInstance;

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

    // The update check's entry point, run off the main thread; it does nothing yet.
    static void toCheckUpdate();

private:
    void writRegularFont();

    SingleInstance* m_singleInstance = nullptr;
    QPointer<MainWindowController> m_mainWindowController;
    bool m_terminated = false;
};

}  // namespace velmora
