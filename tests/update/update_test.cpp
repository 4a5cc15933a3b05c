#include "support/Screenshot.h"
#include "support/TempDataDir.h"
#include "engine/platform/PropertyList.h"
#include "engine/platform/SteadyWiperBase.h"
#include "engine/update/HttpGet.h"
#include "engine/update/UpdateCheck.h"
#include "gui/app/AppDelegate.h"
#include "gui/app/UpdateViewController.h"
#include "gui/erase/SetEraserLevelVC.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/MAAttachedWindow.h"
#include "gui/widgets/Style.h"
#include "support/LocalHttpServer.h"

#include <QApplication>
#include <QDesktopServices>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <plist/plist.h>

using namespace velmora;
using velmora::test::LocalHttpServer;

namespace {

// The update list as a property list, XML or binary.
QByteArray updateList(const QVariantMap& entries, bool binary = false) {
    const QByteArray xml = propertyListToXml(entries);
    if (!binary) return xml;
    plist_t root = nullptr;
    plist_from_xml(xml.constData(), uint32_t(xml.size()), &root);
    char* bytes = nullptr;
    uint32_t length = 0;
    plist_to_bin(root, &bytes, &length);
    QByteArray result(bytes, qsizetype(length));
    free(bytes);
    plist_free(root);
    return result;
}

void setLink(const QString& key, const QString& value) {
    QVariantMap settings = SteadyWiperBase::read();
    QVariantMap link = settings.value("Link").toMap();
    link.insert(key, value);
    settings.insert("Link", link);
    QVERIFY(SteadyWiperBase::write(settings));
}

class UrlCatcher : public QObject {
    Q_OBJECT
public slots:
    void open(const QUrl& url) { opened.append(url); }

public:
    QList<QUrl> opened;
};

}  // namespace

class UpdateTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { Style::apply(*qApp); }

    void init() {
        m_data = std::make_unique<TempDataDir>();
        m_server = std::make_unique<LocalHttpServer>();
        m_server->serve("/", "ok");
        qputenv("VELMORA_INI_URL", m_server->url("/list.plist").toUtf8());
        qputenv("VELMORA_PROBE_URL", m_server->url("/").toUtf8());
        m_local = UpdateCheck::localVersionCheck();
        QVERIFY(m_local > 0);
        m_mainWindow.resize(1004, 600);
        m_mainWindow.show();
    }

    void cleanup() {
        qunsetenv("VELMORA_INI_URL");
        qunsetenv("VELMORA_PROBE_URL");
        qunsetenv("VELMORA_NO_UPDATE_CHECK");
        m_server.reset();
        m_data.reset();
    }

    // A newer build in binary form: the launch check offers it, and the panel shows the
    // checking view, then the headline and the notes with the required heights.
    void newerListShowsHeadlineAndNotes() {
        const QString longNote = QString("Faster erasing of large folders on external drives. ").repeated(6);
        m_server->serve("/list.plist", updateList({{"VersionCheck", QString::number(m_local + 1)},
                                                   {"Version", "2.0"},
                                                   {"1", longNote},
                                                   {"2", "Shows <b>markup</b> as text"},
                                                   {"3", "Fewer prompts"}},
                                                  true));
        const QVariantMap offered = AppDelegate::toCheckUpdate();
        QCOMPARE(offered.value("Version").toString(), QString("2.0"));
        QCOMPARE(m_server->requestCount("/"), 1);  // the probe follows a newer list

        UpdateViewController* panel = UpdateViewController::showOn(&m_mainWindow);
        QVERIFY(panel->checkProgressView()->isVisible());
        saveScreenshot(panel->superDelegate(), "update_checking");
        QTRY_VERIFY_WITH_TIMEOUT(panel->haveUpdateView()->isVisible(), 10000);
        QVERIFY(!panel->checkProgressView()->isVisible() && !panel->noUpdateView()->isVisible() &&
                !panel->noNetworkView()->isVisible());
        QCOMPARE(panel->headlineLabel()->text(), QString("Velmora Data Eraser 2.0 has been released."));
        QCOMPARE(panel->whatsNewLabel()->text(), QString("What's new:"));
        QCOMPARE(m_server->requestCount("/list.plist"), 2);

        const QList<QLabel*> labels = panel->noteLabels();
        QCOMPARE(labels.size(), 3);
        QCOMPARE(labels.at(0)->text(), "1." + longNote);
        QCOMPARE(labels.at(1)->text(), QString("2.Shows <b>markup</b> as text"));
        QCOMPARE(labels.at(1)->textFormat(), Qt::PlainText);
        QCOMPARE(labels.at(2)->text(), QString("3.Fewer prompts"));
        int y = 0;
        for (QLabel* label : labels) {
            QCOMPARE(label->y(), y);
            QCOMPARE(label->width(), UpdateViewController::kNotesWidth);
            QVERIFY(label->height() >= UpdateViewController::kLabelMinHeight);
            y += label->height();
        }
        QVERIFY(labels.at(0)->height() > UpdateViewController::kNoteMinHeight);  // the long note needs more
        QWidget* document = panel->changeValueScrollView()->widget();
        QCOMPARE(document->width(), UpdateViewController::kNotesWidth);
        int notesHeight = 0;
        for (QLabel* label : labels) notesHeight += std::max(label->height(), UpdateViewController::kNoteMinHeight);
        QCOMPARE(document->height(), std::max(notesHeight, UpdateViewController::kNotesMinHeight));
        QCOMPARE(panel->changeValueScrollView()->verticalScrollBar()->value(), 0);
        saveScreenshot(panel->superDelegate(), "update_available");

        UrlCatcher catcher;
        QDesktopServices::setUrlHandler("https", &catcher, "open");
        QPointer<MAAttachedWindow> window = panel->superDelegate();
        panel->buttons().last()->click();  // "Install Now"
        QDesktopServices::unsetUrlHandler("https");
        QCOMPARE(catcher.opened, QList<QUrl>{QUrl(SteadyWiperBase::read().value("Link").toMap().value("UpdateURL").toString())});
        QTRY_VERIFY(!window);

        // "Skip This Version" stores nothing: the next launch offers the same build.
        panel = UpdateViewController::showOn(&m_mainWindow);
        QTRY_VERIFY_WITH_TIMEOUT(panel->haveUpdateView()->isVisible(), 10000);
        QCOMPARE(panel->buttons().at(3)->text(), QString("Skip This Version"));
        panel->buttons().at(3)->click();
        QCOMPARE(AppDelegate::toCheckUpdate().value("VersionCheck"), offered.value("VersionCheck"));
    }

    void equalBuildShowsNothingAtLaunchAndNoUpdateInThePanel() {
        m_server->serve("/list.plist", updateList({{"VersionCheck", QString::number(m_local)}, {"Version", "1.0"}, {"1", "x"}}));
        QVERIFY(AppDelegate::toCheckUpdate().isEmpty());
        QCOMPARE(m_server->requestCount("/"), 0);  // no probe for an old list

        UpdateViewController* panel = UpdateViewController::showOn(&m_mainWindow);
        QTRY_VERIFY_WITH_TIMEOUT(panel->noUpdateView()->isVisible(), 10000);
        QVERIFY(!panel->haveUpdateView()->isVisible() && !panel->checkProgressView()->isVisible());
        saveScreenshot(panel->superDelegate(), "update_none");
        QPointer<MAAttachedWindow> window = panel->superDelegate();
        QTest::keyClick(window, Qt::Key_Escape);
        QTRY_VERIFY(!window);
    }

    // Only "VersionCheck" and "Version": no labels, a notes area of the least height.
    // Notes under "1", "2" and "4": three labels, the third "3.(null)", note 4 never shown.
    void notesAreCountedNotLookedUp_data() {
        QTest::addColumn<QVariantMap>("notes");
        QTest::addColumn<QStringList>("lines");
        QTest::newRow("none") << QVariantMap() << QStringList();
        QTest::newRow("gap") << QVariantMap{{"1", "One"}, {"2", "Two"}, {"4", "Four"}}
                             << QStringList{"1.One", "2.Two", "3.(null)"};
    }
    void notesAreCountedNotLookedUp() {
        QFETCH(QVariantMap, notes);
        QFETCH(QStringList, lines);
        QVariantMap remote = notes;
        remote.insert("VersionCheck", m_local + 1);
        remote.insert("Version", "3.1");
        auto* window = new MAAttachedWindow(&m_mainWindow);
        auto* panel = new UpdateViewController(window);
        panel->whatIsNewVersionDiff(remote);
        QStringList shown;
        for (QLabel* label : panel->noteLabels()) shown.append(label->text());
        QCOMPARE(shown, lines);
        QCOMPARE(panel->changeValueScrollView()->widget()->height(), UpdateViewController::kNotesMinHeight);
        QVERIFY(panel->haveUpdateView()->isVisibleTo(window));
        delete window;
    }

    void unreachableServerShowsNothingAtLaunchAndNoNetworkInThePanel() {
        qputenv("VELMORA_INI_URL", test::unreachableUrl("/list.plist").toUtf8());
        qputenv("VELMORA_PROBE_URL", test::unreachableUrl("/").toUtf8());
        QVERIFY(AppDelegate::toCheckUpdate().isEmpty());

        UpdateViewController* panel = UpdateViewController::showOn(&m_mainWindow);
        QTRY_VERIFY_WITH_TIMEOUT(panel->noNetworkView()->isVisible(), 10000);
        QVERIFY(!panel->noUpdateView()->isVisible() && !panel->haveUpdateView()->isVisible());
        saveScreenshot(panel->superDelegate(), "update_no_network");
        panel->closeWindow();
    }

    // A build without an update address opens no connection, offers no menu entry and
    // no check box; the environment and the check box turn the launch check off.
    void emptyIniUrlConnectsNowhere() {
        qunsetenv("VELMORA_INI_URL");
        setLink("IniURL", "");
        m_server->serve("/list.plist", updateList({{"VersionCheck", m_local + 1}, {"Version", "9"}}));
        QVERIFY(AppDelegate::toCheckUpdate().isEmpty());
        QVERIFY(!UpdateCheck::hasUpdateAddress());
        SetEraserLevelVC levelPanel;
        QVERIFY(!levelPanel.updateCheckBox());
        QTest::qWait(200);
        QCOMPARE(m_server->requestCount(), 0);
    }

    void launchCheckCanBeTurnedOff() {
        QVERIFY(UpdateCheck::checksAtLaunch());
        qputenv("VELMORA_NO_UPDATE_CHECK", "1");
        QVERIFY(!UpdateCheck::checksAtLaunch());
        qunsetenv("VELMORA_NO_UPDATE_CHECK");

        SetEraserLevelVC panel;
        panel.setEraserLevelSelect();
        QVERIFY(panel.updateCheckBox());
        QCOMPARE(panel.updateCheckBox()->imageName(), QString("checkbox_yes"));
        QTest::mouseClick(panel.updateCheckBox(), Qt::LeftButton);
        QCOMPARE(panel.updateCheckBox()->imageName(), QString("checkbox_no"));
        panel.cancelButtonAction();
        QVERIFY(UpdateCheck::checksAtLaunch());
        panel.saveButtonAction();
        QVERIFY(!UpdateCheck::checksAtLaunch());
        SetEraserLevelVC reopened;
        reopened.setEraserLevelSelect();
        QCOMPARE(reopened.updateCheckBox()->imageName(), QString("checkbox_no"));
    }

    // Anything that is not a dictionary read from a 2xx answer counts as no update.
    void unreadableListIsNoUpdate_data() {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("status");
        QTest::newRow("not a plist") << QByteArray("<plist><dict><key>VersionCheck</key>") << 200;
        QTest::newRow("an array") << QByteArray("<plist version=\"1.0\"><array><string>999999</string></array></plist>")
                                  << 200;
        QTest::newRow("error page") << updateList({{"VersionCheck", "999999"}}) << 404;
    }
    void unreadableListIsNoUpdate() {
        QFETCH(QByteArray, body);
        QFETCH(int, status);
        m_server->serve("/list.plist", body, status);
        QVERIFY(AppDelegate::toCheckUpdate().isEmpty());
        QVERIFY(!UpdateCheck::fetchUpdateList().fetched);
    }

    void listIsFetchedOverHttpsOrFromThisMachineOnly() {
        QVERIFY(isFetchableAddress(QUrl("https://updates.example.org/list.plist")));
        QVERIFY(isFetchableAddress(QUrl("http://127.0.0.1:8080/list.plist")));
        QVERIFY(isFetchableAddress(QUrl("http://[::1]/list.plist")));
        QVERIFY(!isFetchableAddress(QUrl("http://updates.example.org/list.plist")));
        QVERIFY(!isFetchableAddress(QUrl("file:///etc/passwd")));
        QVERIFY(!isFetchableAddress(QUrl("ftp://127.0.0.1/list.plist")));

        m_server->redirect("/old.plist", m_server->url("/list.plist"));
        m_server->serve("/list.plist", updateList({{"VersionCheck", m_local + 1}, {"Version", "2.1"}}));
        qputenv("VELMORA_INI_URL", m_server->url("/old.plist").toUtf8());
        QCOMPARE(UpdateCheck::fetchUpdateList().dictionary.value("Version").toString(), QString("2.1"));
    }

    // An upgrade takes the new build number and addresses over into the user's copy.
    void userCopyOfAnotherBuildTakesTheBuildEntriesOver() {
        QVariantMap settings = SteadyWiperBase::read();
        settings.insert("VersionCheck", QString::number(m_local - 1));
        settings.insert("Link", QVariantMap{{"IniURL", "https://old.example.org/list.plist"}});
        settings.insert("USERNAME", "carol");
        QVERIFY(writePropertyListAtomically(SteadyWiperBase::path(), settings));
        QCOMPARE(UpdateCheck::localVersionCheck(), m_local);
        QVERIFY(SteadyWiperBase::read().value("Link").toMap().value("IniURL").toString() != "https://old.example.org/list.plist");
        QCOMPARE(SteadyWiperBase::stringValue("USERNAME"), QString("carol"));
    }

    void cliReportsTheNewVersionOrFails() {
        m_server->serve("/list.plist", updateList({{"VersionCheck", m_local + 5}, {"Version", "2.0"}, {"1", "Faster"}, {"2", "Safer"}}));
        QProcess cli;
        cli.start(qEnvironmentVariable("VELMORA_BIN_DIR") + "/velmora-cli", {"check-update", "--json"});
        QVERIFY(cli.waitForFinished(30000));
        QCOMPARE(cli.exitCode(), 0);
        const QJsonObject report = QJsonDocument::fromJson(cli.readAllStandardOutput()).object();
        QCOMPARE(report.value("localBuild").toInteger(), m_local);
        QCOMPARE(report.value("remoteBuild").toInteger(), m_local + 5);
        QCOMPARE(report.value("updateAvailable").toBool(), true);
        QCOMPARE(report.value("version").toString(), QString("2.0"));
        QCOMPARE(report.value("notes").toVariant().toStringList(), QStringList({"1.Faster", "2.Safer"}));

        qputenv("VELMORA_INI_URL", test::unreachableUrl("/list.plist").toUtf8());
        cli.start(qEnvironmentVariable("VELMORA_BIN_DIR") + "/velmora-cli", {"check-update"});
        QVERIFY(cli.waitForFinished(30000));
        QCOMPARE(cli.exitCode(), 1);
        QVERIFY(cli.readAllStandardError().contains("could not be read"));
    }

private:
    std::unique_ptr<TempDataDir> m_data;
    std::unique_ptr<LocalHttpServer> m_server;
    qint64 m_local = 0;
    QWidget m_mainWindow;
};

QTEST_MAIN(UpdateTest)
#include "update_test.moc"
