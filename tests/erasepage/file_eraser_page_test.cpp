#include "support/PanelScreenshot.h"
#include "support/PageTestSupport.h"
#include "engine/erase/EraserLevel.h"
#include "engine/erase/PublicUtilities.h"
#include "engine/history/DoDataBase.h"
#include "engine/platform/NativePath.h"
#include "gui/app/MainWindowController.h"
#include "gui/erase/AddFilesPanel.h"
#include "gui/erase/DragView.h"
#include "gui/erase/FileEraserFailViewController.h"
#include "gui/erase/FileEraserProgressViewController.h"
#include "gui/erase/FileEraserSortVC.h"
#include "gui/erase/FileEraserSuccessViewController.h"
#include "gui/erase/FileEraserTableModel.h"
#include "gui/erase/FileEraserViewController.h"
#include "gui/erase/MakeSureFileEraserViewControoler.h"
#include "gui/erase/ReadOnlyVolume.h"
#include "gui/erase/SetEraserLevelVC.h"
#include "gui/widgets/SizeText.h"
#include "gui/history/HistoryViewController.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/SidebarButton.h"
#include "gui/widgets/SlidePanel.h"
#include "gui/widgets/Style.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDropEvent>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTextDocumentFragment>
#include <QTreeWidget>
#include <QUrl>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace velmora;

namespace {

void writeFile(const QString& path, qint64 size) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QByteArray chunk(qMin<qint64>(size, 1 << 20), 'v');
    for (qint64 written = 0; written < size; written += chunk.size())
        QVERIFY(file.write(chunk.constData(), qMin<qint64>(chunk.size(), size - written)) > 0);
}

// Drags a "text/uri-list" onto a widget and drops it there, as the window system
// delivers it: the drop goes to the widget that accepted the drag.
void dropUriList(QWidget* target, const QByteArray& uriList) {
    QMimeData dragged;
    dragged.setData("text/uri-list", uriList);
    const QPoint inside(target->width() / 2, target->height() / 2);
    QDragEnterEvent enter(inside, Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(inside, Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &drop);
}

void dropFiles(QWidget* target, const QStringList& paths) {
    QByteArray uriList;
    for (const QString& path : paths) uriList += QUrl::fromLocalFile(path).toEncoded() + "\r\n";
    dropUriList(target, uriList);
}

QString plainText(const QLabel* label) { return QTextDocumentFragment::fromHtml(label->text()).toPlainText(); }

QStringList names(const FileObjList& records) {
    QStringList result;
    for (const FileObj& record : records) result.append(record.name);
    return result;
}

// Waits, event loop running, until the run's first progress shows; true when it did.
bool waitForFirstProgress(FileEraserViewController* page) {
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 10000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        FileEraserProgressViewController* progress = page->progressPanel();
        if (!progress) return false;
        if (!progress->roundText().isEmpty()) return true;
    }
    return false;
}

}  // namespace

class FileEraserPageTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        QVERIFY(m_data.isValid());
        qputenv("VELMORA_DATA_DIR", m_data.path().toUtf8());
        test::usePageFontAndStyle();
        EraserLevel::store(1);
    }

    void init() {
        m_scratch = std::make_unique<QTemporaryDir>();
        QVERIFY(m_scratch->isValid());
        // Every test starts without history.
        DoDataBase::returnDoDataBase()->deleteAllData();
        m_window = std::make_unique<MainWindowController>();
        m_window->show();
        m_page = qobject_cast<FileEraserViewController*>(m_window->allBaseViewArr().at(0));
        QVERIFY(m_page);
    }

    void cleanup() {
        m_window.reset();
        m_scratch.reset();
    }

    void sizeTexts_data() {
        QTest::addColumn<quint64>("bytes");
        QTest::addColumn<QString>("text");
        QTest::newRow("zero") << quint64(0) << "0 byte";
        QTest::newRow("999") << quint64(999) << "999 byte";
        QTest::newRow("1,000") << quint64(1000) << "1.00 KB";
        QTest::newRow("1.5 MB") << quint64(1'500'000) << "1.50 MB";
        QTest::newRow("1 GB") << quint64(1'000'000'000) << "1.00 GB";
        QTest::newRow("last GB count") << quint64(999'999'995'903) << "1000.00 GB";
        QTest::newRow("1 TB") << quint64(1'000'000'000'000) << "1.00 TB";
    }
    void sizeTexts() {
        QFETCH(quint64, bytes);
        QFETCH(QString, text);
        QCOMPARE(byteToSizeWithByte(bytes), text);
    }

    void elapsedTimeIsHoursMinutesSeconds() {
        QCOMPARE(FileEraserViewController::elapsedTimeText(1), QString("0:00:01"));
        QCOMPARE(FileEraserViewController::elapsedTimeText(70), QString("0:01:10"));
        QCOMPARE(FileEraserViewController::elapsedTimeText(3599), QString("0:59:59"));
        QCOMPARE(FileEraserViewController::elapsedTimeText(36'061), QString("10:01:01"));
    }

    void refusedFileSystemTypes() {
        for (const char* type : {"ntfs", "ntfs3", "NTFS", "lifs", "LiFS"})
            QVERIFY2(ReadOnlyVolume::isRefusedFileSystemType(type), type);
        for (const char* type : {"ext4", "vfat", "exfat", "fuseblk", "apfs", "tmpfs"})
            QVERIFY2(!ReadOnlyVolume::isRefusedFileSystemType(type), type);
        QVERIFY(!ReadOnlyVolume::contains(m_scratch->path()));
    }

    void administratorHomeLeadsBackToTheUser() {
        qputenv("VELMORA_LAYOUT", "linux");
        QVERIFY(AddFilesPanel::isInAdministratorHome("/root/Desktop"));
        QVERIFY(!AddFilesPanel::isInAdministratorHome("/rootfs/Desktop"));
        QCOMPARE(AddFilesPanel::userFolderForAdministratorFolder("/root/Downloads/new", "anna"),
                 QString("/home/anna/Downloads/new"));
        QCOMPARE(AddFilesPanel::userFolderForAdministratorFolder("/root/.cache", "anna"), QString("/.cache"));
        qputenv("VELMORA_LAYOUT", "macos");
        QCOMPARE(AddFilesPanel::userFolderForAdministratorFolder("/private/var/root/Documents", "anna"),
                 QString("/Users/anna/Documents"));
        QCOMPARE(AddFilesPanel::defaultStartFolder(), QString("Users/%1/Desktop").arg(qEnvironmentVariable("USER")));
        qunsetenv("VELMORA_LAYOUT");
    }

    void addingListsEachPathOnceAndStopsAtTheRoot() {
        const QString file = m_scratch->filePath("report.PDF");
        const QString folder = m_scratch->filePath("photos");
        writeFile(file, 1500);
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(m_page->addView()->isVisible());

        // The first items arrive on the empty page's drop area.
        dropFiles(m_page->dragView(), {file});
        QCOMPARE(m_page->dragView()->borderImage(), QString("dashboder"));
        QVERIFY(!m_page->addView()->isVisible());
        QVERIFY(m_page->listView()->isVisible());

        m_page->addSelectedPaths({file, folder, folder + "/"});
        QCOMPARE(m_page->valueArr().size(), 2);
        const FileObj& added = m_page->valueArr().at(0);
        QCOMPARE(added.name, QString("report.PDF"));
        QCOMPARE(added.type, QString("PDF"));
        QCOMPARE(added.size, quint64(1500));
        QVERIFY(!added.isDir && added.isSelect);
        const FileObj& addedFolder = m_page->valueArr().at(1);
        QCOMPARE(addedFolder.type, QString("Folder"));
        QCOMPARE(addedFolder.size, quint64(0));
        QVERIFY(addedFolder.isDir);
        QCOMPARE(m_page->tableView()->model()->index(0, FileEraserTableModel::Size).data().toString(),
                 QString("1.50 KB"));
        QCOMPARE(m_page->tableView()->model()->index(1, FileEraserTableModel::Size).data().toString(), QString("--"));

        // On the list: a listed file is not added again; the root ends the batch where it stands.
        const QString later = m_scratch->filePath("later.txt");
        const QString never = m_scratch->filePath("never.txt");
        writeFile(later, 10);
        writeFile(never, 10);
        dropFiles(m_page->listView(), {file, later, "/", never});
        QCOMPARE(names(m_page->valueArr()), QStringList({"report.PDF", "photos", "later.txt"}));

        m_page->emptyListButtonAction();
        QVERIFY(m_page->valueArr().isEmpty());
        QCOMPARE(plainText(m_page->summaryLabel()), QString("Total: 0 Item"));
        QVERIFY(m_page->addView()->isVisible());
        QTRY_COMPARE_WITH_TIMEOUT(m_page->listView()->isVisible(), false, 3000);
        QCOMPARE(m_page->listView()->x(), 730);
    }

    void selectionSummaryFollowsTheTicks() {
        for (const char* name : {"a.txt", "b.txt", "c.txt"}) writeFile(m_scratch->filePath(name), 100);
        m_page->addSelectedPaths({m_scratch->filePath("a.txt"), m_scratch->filePath("b.txt"),
                                  m_scratch->filePath("c.txt")});
        QCOMPARE(plainText(m_page->summaryLabel()), QString("Selected: 3/3 Items"));
        QCOMPARE(m_page->selectAllButton()->imageName(), QString("checkbox_yes"));
        QVERIFY(m_page->eraserFileButton()->isEnabled());

        // A click on the row's checkbox unticks it.
        QTableView* table = m_page->tableView();
        const QRect checkbox = table->visualRect(table->model()->index(1, FileEraserTableModel::CheckBox));
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, checkbox.center());
        QVERIFY(!m_page->valueArr().at(1).isSelect);
        QCOMPARE(plainText(m_page->summaryLabel()), QString("Selected: 2/3 Items"));
        QCOMPARE(m_page->returnSelectAllState(), 1);
        QCOMPARE(m_page->selectAllButton()->imageName(), QString("checkbox_election"));
        QCOMPARE(table->model()->index(1, FileEraserTableModel::CheckBox).data(FileEraserTableModel::ImageRole).toString(),
                 QString("checkbox_no"));

        m_page->setAllSelectOrNoSelect();  // some ticked: all become ticked
        QCOMPARE(m_page->returnSelectAllState(), 2);
        QTest::mouseClick(m_page->selectAllButton(), Qt::LeftButton);  // all ticked: none remain
        QCOMPARE(m_page->returnSelectAllState(), 0);
        QCOMPARE(plainText(m_page->summaryLabel()), QString("Total: 3 Items"));
        QCOMPARE(m_page->selectAllButton()->imageName(), QString("checkbox_no"));
        QVERIFY(!m_page->eraserFileButton()->isEnabled());

        m_page->emptyListButtonAction();
        m_page->addSelectedPaths({m_scratch->filePath("a.txt")});
        m_page->selectListButton(0);
        QCOMPARE(plainText(m_page->summaryLabel()), QString("Total: 1 Item"));
    }

    void sortingBySizeIsTheSameForKeysOneAndTwo() {
        writeFile(m_scratch->filePath("b-mid.bin"), 300);
        writeFile(m_scratch->filePath("c-small.bin"), 10);
        writeFile(m_scratch->filePath("a-big.bin"), 2000);
        m_page->addSelectedPaths({m_scratch->filePath("b-mid.bin"), m_scratch->filePath("c-small.bin"),
                                  m_scratch->filePath("a-big.bin")});

        QTest::qWait(600);  // the list has slid in
        m_page->sortButtonAction();
        QPointer<FileEraserSortVC> menu = m_page->sortMenu();
        QVERIFY(menu && menu->isVisible());
        saveScreenshotWith(m_window.get(), menu, "erase_files_sort_menu", false);
        QTest::mouseClick(menu->item("1"), Qt::LeftButton);  // size, still ascending
        QTRY_VERIFY(!menu);                                  // the page closes the menu
        QTRY_COMPARE(names(m_page->valueArr()), QStringList({"c-small.bin", "b-mid.bin", "a-big.bin"}));

        m_page->selectSortbyType(0, 1);
        QTRY_COMPARE(names(m_page->valueArr()), QStringList({"c-small.bin", "b-mid.bin", "a-big.bin"}));
        m_page->selectSortbyType(0, 0);
        QTRY_COMPARE(names(m_page->valueArr()), QStringList({"a-big.bin", "b-mid.bin", "c-small.bin"}));
        m_page->selectSortbyType(2, 1);
        QTRY_COMPARE(names(m_page->valueArr()), QStringList({"a-big.bin", "b-mid.bin", "c-small.bin"}));
        QCOMPARE(names(m_page->valueArr()), names(FileEraserViewController::sortedRecords(m_page->valueArr(), 1, 1)));
        m_page->selectSortbyType(2, 0);
        QTRY_COMPARE(names(m_page->valueArr()), QStringList({"c-small.bin", "b-mid.bin", "a-big.bin"}));
        QCOMPARE(names(m_page->valueArr()), names(FileEraserViewController::sortedRecords(m_page->valueArr(), 1, 0)));
    }

    void sortMenuShowsTheCurrentChoice() {
        FileEraserSortVC menu(2, 1, nullptr);
        QVERIFY(menu.item("2")->isChecked() && menu.item("4")->isChecked());
        QVERIFY(!menu.item("0")->isChecked() && !menu.item("3")->isChecked());
        QList<QPair<int, int>> sent;
        connect(&menu, &FileEraserSortVC::selectSortbyType, [&sent](int type, int ad) { sent.append({type, ad}); });
        menu.buttonAction("3");
        menu.buttonAction("0");
        QCOMPARE(sent, (QList<QPair<int, int>>{{2, 0}, {0, 0}}));
        QVERIFY(menu.item("0")->isChecked() && menu.item("3")->isChecked());
        QVERIFY(!menu.item("2")->isChecked() && !menu.item("4")->isChecked());
    }

    // The whole flow with the real secure-remove tool: a folder holding a file
    // and an empty subfolder is erased; an unticked file stays listed and on disk.
    void erasingAFolderLeavesNothingAndOneHistoryEntry() {
        if (!QFileInfo(secureRemoveTool()).isExecutable())
            QSKIP(qPrintable("SKIPPED: the secure-remove tool is not built at " + secureRemoveTool()));
        const QString folder = m_scratch->filePath("Project");
        writeFile(folder + "/notes.txt", 8 << 20);
        QVERIFY(QDir().mkpath(folder + "/empty"));
        const QString kept = m_scratch->filePath("keep.txt");
        writeFile(kept, 4200);
        m_page->addSelectedPaths({folder, kept});
        m_page->selectListButton(1);
        QCOMPARE(plainText(m_page->summaryLabel()), QString("Selected: 1/2 Items"));
        QVERIFY(m_page->historyButton()->imageName() == "ic_nohistory");
        QTest::qWait(600);  // the list has slid in
        saveScreenshot(m_window.get(), "erase_files_list");

        QTest::mouseClick(m_page->eraserFileButton(), Qt::LeftButton);
        QPointer<MakeSureFileEraserViewControoler> makeSure = m_page->makeSurePanel();
        QVERIFY(makeSure && makeSure->isVisible());
        QVERIFY(QFileInfo::exists(folder));  // nothing happens before the confirmation
        saveScreenshotWith(m_window.get(), makeSure, "erase_files_confirm");

        QTest::mouseClick(makeSure->continueButton(), Qt::LeftButton);
        QTRY_VERIFY(!makeSure);
        FileEraserProgressViewController* progress = m_page->progressPanel();
        QVERIFY(progress && progress->isVisible());
        QCOMPARE(progress->typeText(), QString("HMG Infosec Standard 5"));
        for (SidebarButton* button : m_window->allTypeButArr()) QVERIFY(!button->isEnabled());
        QVERIFY(waitForFirstProgress(m_page));
        // The folder goes to the tool whole; its file and subfolder count as items, and each
        // is shown once the tool reports it removed.
        const QString round = progress->roundText();
        QVERIFY2(QRegularExpression("^[0-2] of 3 items$").match(round).hasMatch(), qPrintable(round));
        const QStringList contents{folder + "/notes.txt", folder + "/empty"};
        if (round.startsWith("0"))
            QCOMPARE(progress->pathText(), folder);
        else
            QVERIFY2(contents.contains(progress->pathText()), qPrintable(progress->pathText()));
        QVERIFY(progress->progress() >= 2.0);
        QVERIFY(progress->elapsedText().startsWith("0:00:0"));
        saveScreenshotWith(m_window.get(), progress, "erase_files_progress");

        QTRY_VERIFY_WITH_TIMEOUT(m_page->successPanel(), 60000);
        QVERIFY(!m_page->failPanel());
        QVERIFY(!m_page->progressPanel());
        QVERIFY(!QFileInfo::exists(folder));
        QVERIFY(QFileInfo::exists(kept));
        for (SidebarButton* button : m_window->allTypeButArr()) QVERIFY(button->isEnabled());
        QCOMPARE(names(m_page->valueArr()), QStringList({"keep.txt"}));
        QVERIFY(!m_page->valueArr().first().isSelect);
        QCOMPARE(m_page->deleteErrorArr().size(), 1);
        QCOMPARE(m_page->deleteErrorArr().first().failStr, QString("Erased"));
        QCOMPARE(plainText(m_page->summaryLabel()), QString("Total: 1 Item"));
        QCOMPARE(m_page->historyButton()->imageName(), QString("ic_history"));
        QCOMPARE(PublicUtilities::getUpDataHistoryStr("WipeFileHistory"), QString("1"));
        saveScreenshotWith(m_window.get(), m_page->successPanel(), "erase_files_success");

        const HistoryDic history = DoDataBase::returnDoDataBase()->getAllData();
        QCOMPARE(history.size(), 1);
        const HistoryRows rows = history.first();
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows.at(0).value("Items"), QString("Items"));
        QCOMPARE(rows.at(1).value("Items"), folder);
        QCOMPARE(rows.at(1).value("Erasure Standard"), QString("HMG Infosec Standard 5"));
        QCOMPARE(rows.at(1).value("Result"), QString("Erased"));

        m_page->successPanel()->okButton()->click();
        QTRY_VERIFY(!m_page->successPanel());
        m_page->historyButtonAction();
        QTRY_COMPARE_WITH_TIMEOUT(m_page->historyPanel()->x(), 0, 3000);
        auto* historyView = qobject_cast<HistoryViewController*>(m_page->historyPanel()->content());
        QVERIFY(historyView);
        QCOMPARE(historyView->historyAllArr(), QStringList(history.firstKey()));
        historyView->outlineView()->setCurrentItem(historyView->outlineView()->topLevelItem(0));
        saveScreenshot(m_window.get(), "erase_files_history_panel");
        historyView->closeButtonAction();
        QTRY_VERIFY_WITH_TIMEOUT(!m_page->historyPanel()->isVisible(), 3000);
    }

    void cancelShowsTheFailurePanelWithItsNote() {
        if (!QFileInfo(secureRemoveTool()).isExecutable())
            QSKIP(qPrintable("SKIPPED: the secure-remove tool is not built at " + secureRemoveTool()));
        const QString folder = m_scratch->filePath("Large");
        writeFile(folder + "/big.bin", 96 << 20);
        writeFile(folder + "/second.bin", 1 << 20);
        m_page->addSelectedPaths({folder});
        m_page->makeSureToEraserSelectFiles();
        QVERIFY(waitForFirstProgress(m_page));
        QTest::mouseClick(m_page->progressPanel()->cancelButton(), Qt::LeftButton);

        QTRY_VERIFY_WITH_TIMEOUT(m_page->failPanel(), 60000);
        QVERIFY(!m_page->successPanel());
        QVERIFY(m_page->failPanel()->failNode()->isVisibleTo(m_page->failPanel()));
        // The tool was stopped inside the folder: it stays, recorded as cancelled, and stays listed.
        QVERIFY(QFileInfo::exists(folder));
        QCOMPARE(m_page->deleteErrorArr().size(), 1);
        QCOMPARE(m_page->deleteErrorArr().first().failStr, QString("Cancelled"));
        QCOMPARE(m_page->valueArr().size(), 1);
        QVERIFY(m_page->listView()->isVisible());
        QCOMPARE(DoDataBase::returnDoDataBase()->getAllData().size(), 1);
        for (SidebarButton* button : m_window->allTypeButArr()) QVERIFY(button->isEnabled());
        saveScreenshotWith(m_window.get(), m_page->failPanel(), "erase_files_cancelled");    }

    // Removing one name of a file with a second name erases nothing: the page says
    // "Failed" with the reason, and the history agrees.
    void hardLinkedFileIsReportedFailed() {
        if (!QFileInfo(secureRemoveTool()).isExecutable())
            QSKIP(qPrintable("SKIPPED: the secure-remove tool is not built at " + secureRemoveTool()));
        const QString file = m_scratch->filePath("linked.txt");
        const QString secondName = m_scratch->filePath("second-name.txt");
        writeFile(file, 4096);
        QCOMPARE(::link(QFile::encodeName(file).constData(), QFile::encodeName(secondName).constData()), 0);
        m_page->addSelectedPaths({file});
        m_page->makeSureToEraserSelectFiles();

        QTRY_VERIFY_WITH_TIMEOUT(m_page->failPanel(), 60000);
        QVERIFY(!m_page->successPanel());
        QCOMPARE(m_page->deleteErrorArr().size(), 1);
        QCOMPARE(m_page->deleteErrorArr().first().failStr, QString("Failed"));
        QVERIFY2(m_page->deleteErrorArr().first().failReason.contains("hard links"),
                 qPrintable(m_page->deleteErrorArr().first().failReason));
        QCOMPARE(QFileInfo(secondName).size(), 4096);
        const HistoryDic history = DoDataBase::returnDoDataBase()->getAllData();
        QCOMPARE(history.size(), 1);
        QCOMPARE(history.first().at(1).value("Result"), QString("Failed"));
        saveScreenshotWith(m_window.get(), m_page->failPanel(), "erase_files_hard_link_failed");
    }

    // A file manager sends a name that is not UTF-8 percent-encoded byte for byte. The
    // page lists it with U+FFFD for those bytes, and erases the file of the real bytes,
    // never the file whose name reads the same.
    void droppedNameThatIsNotTextKeepsItsBytesAndIsErased() {
        if (!QFileInfo(secureRemoveTool()).isExecutable())
            QSKIP(qPrintable("SKIPPED: the secure-remove tool is not built at " + secureRemoveTool()));
        const QByteArray file = QFile::encodeName(m_scratch->path()) + "/bad\xff\xfename.txt";
        const int fd = ::open(file.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        QVERIFY(fd >= 0);
        QCOMPARE(::write(fd, "data", 4), ssize_t(4));
        ::close(fd);
        const QByteArray uri = "file://" + file.toPercentEncoding("/");
        QVERIFY(uri.endsWith("/bad%FF%FEname.txt"));
        dropUriList(m_page->dragView(), "# a comment line\r\n" + uri + "\r\n");

        QCOMPARE(m_page->valueArr().size(), 1);
        QCOMPARE(nativePath(m_page->valueArr().first().url), file);
        QCOMPARE(m_page->valueArr().first().size, quint64(4));
        const QString shown = displayPath(pathFromNative(file));
        QVERIFY(shown.endsWith(QString::fromUtf8("/bad\uFFFD\uFFFDname.txt")));
        const QAbstractItemModel* model = m_page->tableView()->model();
        QCOMPARE(model->index(0, FileEraserTableModel::Name).data().toString(), shown.mid(shown.lastIndexOf('/') + 1));
        QCOMPARE(model->index(0, FileEraserTableModel::Path).data().toString(), shown);
        QCOMPARE(model->index(0, FileEraserTableModel::Name).data(Qt::ToolTipRole).toString(), shown);
        QTest::qWait(600);  // the list has slid in
        saveScreenshot(m_window.get(), "erase_files_name_not_text");

        // Qt's file panel gives the name as it shows it; that stands for the real bytes while
        // no other name shows the same.
        const QString panelText = QString::fromUtf8(file);
        QCOMPARE(nativePath(AddFilesPanel::pathOnDisk(panelText)), file);
        const QByteArray lookalike = QFile::encodeName(m_scratch->path()) + "/bad\uFFFD\uFFFDname.txt";
        QCOMPARE(::close(::open(lookalike.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600)), 0);
        QVERIFY(AddFilesPanel::pathOnDisk(panelText).isEmpty());

        m_page->makeSureToEraserSelectFiles();
        QTRY_VERIFY_WITH_TIMEOUT(m_page->successPanel(), 60000);
        struct stat status;
        QCOMPARE(::lstat(file.constData(), &status), -1);
        QCOMPARE(::lstat(lookalike.constData(), &status), 0);
        QCOMPARE(DoDataBase::returnDoDataBase()->getAllData().first().at(1).value("Items"), shown);
    }

    void sidePanelsSlideInOverThePage() {
        saveScreenshot(m_window.get(), "erase_files_empty_page");
        m_page->setButtonAction();
        QTRY_COMPARE_WITH_TIMEOUT(m_page->levelPanel()->x(), 0, 3000);
        auto* level = qobject_cast<SetEraserLevelVC*>(m_page->levelPanel()->content());
        QVERIFY(level);
        level->cancelButtonAction();
        QTRY_VERIFY_WITH_TIMEOUT(!m_page->levelPanel()->isVisible(), 3000);

        m_page->historyButtonAction();
        QTRY_COMPARE_WITH_TIMEOUT(m_page->historyPanel()->x(), 0, 3000);
        auto* history = qobject_cast<HistoryViewController*>(m_page->historyPanel()->content());
        QVERIFY(history && history->noView()->isVisible());
        saveScreenshot(m_window.get(), "erase_files_history_empty");
        history->closeButtonAction();
        QTRY_VERIFY_WITH_TIMEOUT(!m_page->historyPanel()->isVisible(), 3000);
    }

    void addPanelTakesFilesAndFoldersAlike() {
        const QString folder = m_scratch->filePath("Letters");
        writeFile(folder + "/one.txt", 20);
        m_page->selectFileButtonAction();
        auto* panel = m_page->findChild<AddFilesPanel*>();
        QVERIFY(panel && panel->isVisible());
        QCOMPARE(panel->labelText(QFileDialog::Accept), QString("Add"));
        QCOMPARE(panel->fileMode(), QFileDialog::ExistingFiles);
        QCOMPARE(panel->windowModality(), Qt::WindowModal);
        panel->selectFile(folder);
        panel->accept();  // "Add" on a selected folder takes the folder instead of opening it
        QCOMPARE(m_page->valueArr().size(), 1);
        QCOMPARE(m_page->valueArr().first().url, folder);
        QVERIFY(m_page->valueArr().first().isDir);
    }

    void contextMenuOffersOpenAndReveal() {
        writeFile(m_scratch->filePath("menu.txt"), 20);
        m_page->addSelectedPaths({m_scratch->filePath("menu.txt")});
        QTest::qWait(600);
        QTableView* table = m_page->tableView();
        m_page->listRightMouseDown(table->visualRect(table->model()->index(0, FileEraserTableModel::Name)).center());
        auto* menu = m_page->findChild<QMenu*>();
        QVERIFY(menu && menu->isVisible());
        QStringList actions;
        for (QAction* action : menu->actions()) actions.append(action->text());
        QCOMPARE(actions, QStringList({"Open", "Reveal in Folder"}));
        saveScreenshotWith(m_window.get(), menu, "erase_files_context_menu", false);
        menu->close();
        m_page->listRightMouseDown(QPoint(10, table->viewport()->height() - 5));  // below the rows: no menu
        QTRY_VERIFY(!m_page->findChild<QMenu*>());
    }

private:
    static QString secureRemoveTool() { return qEnvironmentVariable("VELMORA_BIN_DIR") + "/srm"; }

    QTemporaryDir m_data;
    std::unique_ptr<QTemporaryDir> m_scratch;
    std::unique_ptr<MainWindowController> m_window;
    FileEraserViewController* m_page = nullptr;
};

QTEST_MAIN(FileEraserPageTest)
#include "file_eraser_page_test.moc"
