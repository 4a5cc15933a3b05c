// The Duplicate Finder: a search of 200,000 small files holding 50,000 groups of two
// copies (10,000 of them documents), then unselect and select all, sort by size and by
// name, switch to the Documents tab and remove its 10,000 ticked copies.
#include "GuiBench.h"
#include "engine/duplicate/DuplicateResults.h"
#include "gui/app/MainWindowController.h"
#include "gui/duplicate/DuplicateOutlineModel.h"
#include "gui/duplicate/DuplicateOutlineView.h"
#include "gui/duplicate/DuplicationDetFailViewController.h"
#include "gui/duplicate/DuplicationDetSuccessViewController.h"
#include "gui/duplicate/SameFileDeleteViewController.h"
#include "gui/widgets/ImageToggle.h"

#include <QDir>
#include <QFile>
#include <QStackedWidget>
#include <random>

namespace velmora::bench {
namespace {

constexpr int kFilesPerFolder = 1000;

// Bytes of 1 to 2 KiB that only the same seed repeats.
QByteArray contentFor(quint32 seed) {
    std::mt19937 random(seed);
    QByteArray bytes(1024 + int(seed % 1024), Qt::Uninitialized);
    for (char& byte : bytes) byte = char(random());
    return bytes;
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) qFatal("cannot write %s", qPrintable(path));
}

// `groups` pairs of equal files (the first `documents` of them .txt, the others .bin)
// and as many files without a copy, spread over folders of 1,000 files.
QString makeTree(const QString& root, int groups, int documents) {
    int written = 0;
    auto nextPath = [&](const QString& suffix) {
        const QString folder = QString("%1/d%2").arg(root).arg(written / kFilesPerFolder, 4, 10, QChar('0'));
        if (written % kFilesPerFolder == 0) QDir().mkpath(folder);
        return QString("%1/f%2.%3").arg(folder).arg(written++).arg(suffix);
    };
    for (int group = 0; group < groups; ++group) {
        const QByteArray bytes = contentFor(quint32(group) * 2 + 1);
        const QString suffix = group < documents ? "txt" : "bin";
        writeFile(nextPath(suffix), bytes);
        writeFile(nextPath(suffix), bytes);
    }
    for (int single = 0; single < 2 * groups; ++single) writeFile(nextPath("dat"), contentFor(quint32(single) * 2 + 2));
    return root;
}

}  // namespace

void benchDuplicateFinder(BenchContext& context) {
    const int groups = context.scaled(50000);
    const int documents = context.scaled(10000);
    const QString tree = makeTree(context.workDir() + "/duplicates", groups, documents);
    const QString files = QString::number(4 * groups);

    MainWindowController window;
    window.show();
    window.mouseClickAction(7);
    auto* page = qobject_cast<SameFileDeleteViewController*>(window.allBaseViewArr().at(MainWindowController::slotForTag(7)));
    if (!page) qFatal("no Duplicate Finder page");
    settle(200);

    const QString name = "Duplicate Finder";
    context.measure(name, QString("search %1 files, %2 groups").arg(files).arg(groups), [&] { page->searchPathChosen(tree); },
                    [&] { return page->views()->currentWidget() == page->resultView() && page->outlineView()->isVisible(); });
    settle(200);
    context.measure(name, "unselect all", [&] { page->selectAllButton()->click(); },
                    [&] { return page->results()->selectionSize() == 0; });
    context.measure(name, "select all", [&] { page->selectAllButton()->click(); },
                    [&] { return page->results()->selectionSize() == groups; });
    context.measure(name, "sort by size", [&] { page->outlineViewDidClickTableColumn(DuplicateOutlineModel::Size); },
                    [&] { return page->isCanClick(); });
    context.measure(name, "sort by name", [&] { page->outlineViewDidClickTableColumn(DuplicateOutlineModel::Name); },
                    [&] { return page->isCanClick(); });
    context.measure(name, "switch to the Documents tab", [&] { page->segmentSelect(1); },
                    [&] { return page->outlineModel()->rowCount() == documents; });
    context.measure(name, QString("remove %1 copies").arg(documents), [&] { page->delDuplicateItems(); },
                    [&] { return page->successPanel() || page->failPanel(); });
    if (page->failPanel()) qWarning("the removal left copies: %s", qPrintable(page->failPanel()->messageText()));
    settle(200);
}

}  // namespace velmora::bench
