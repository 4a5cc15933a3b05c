// The picking tree of "Copy Some Files" on a source of 100,000 entries: a folder of
// 50,000 files, and a folder of 500 folders with 100 files each. The tree is fed by the
// copy Controller as the page feeds it, from a folder instead of a mounted volume.
#include "GuiBench.h"
#include "engine/copy/Controller.h"
#include "gui/copy/CopyFileTreeModel.h"
#include "gui/copy/SelectCopyFilesViewController.h"

#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QTreeView>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::bench {
namespace {

void makeFiles(const QString& folder, int count) {
    QDir().mkpath(folder);
    for (int i = 0; i < count; ++i) {
        const QByteArray path = QString("%1/file%2.dat").arg(folder).arg(i).toUtf8();
        const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd < 0) continue;
        (void)::ftruncate(fd, 1000 + i % 5000);
        ::close(fd);
    }
}

QModelIndex topLevelNamed(CopyFileTreeModel& model, const QString& name) {
    for (int row = 0; row < model.rowCount(); ++row)
        if (model.nodeOf(model.index(row, 0))->name == name) return model.index(row, 0);
    return {};
}

}  // namespace

void benchDriveCopy(BenchContext& context) {
    const QString source = context.workDir() + "/copy-source";
    const int flat = context.scaled(50000);
    const int folders = context.scaled(500);
    makeFiles(source + "/flat", flat);
    for (int folder = 0; folder < folders; ++folder) makeFiles(QString("%1/nested/folder%2").arg(source).arg(folder), 100);

    QWidget host;
    host.resize(1000, 700);
    host.show();
    Controller controller;
    SelectCopyFilesViewController* picker = nullptr;
    context.measure("Drive Copy", QString("open the picker, measure %1 entries").arg(flat + folders * 101), [&] {
        controller.eumeAllRootFileNodeWithRootArr(source, false, true);
        picker = new SelectCopyFilesViewController(controller, "Bench", controller.eumeRoot().isScanning(), &host);
        picker->open();
    }, [&] { return !picker->isScanning() && picker->treeModel()->rowCount() == 2; });

    CopyFileTreeModel& model = *picker->treeModel();
    const QModelIndex flatFolder = topLevelNamed(model, "flat");
    const QModelIndex nestedFolder = topLevelNamed(model, "nested");
    context.measure("Drive Copy", QString("expand the folder of %1 files").arg(flat),
                    [&] { picker->treeView()->expand(flatFolder); },
                    [&] { return model.rowCount(flatFolder) == flat && picker->treeView()->isExpanded(flatFolder); });
    const QString nothing = picker->selectedLabel()->text();
    context.measure("Drive Copy", QString("tick the folder of %1 files").arg(flat),
                    [&] { model.setData(flatFolder, Qt::Checked, Qt::CheckStateRole); },
                    [&] { return picker->selectedLabel()->text() != nothing; });
    context.measure("Drive Copy", QString("untick the folder of %1 files").arg(flat),
                    [&] { model.setData(flatFolder, Qt::Unchecked, Qt::CheckStateRole); },
                    [&] { return picker->selectedLabel()->text() == nothing; });
    context.measure("Drive Copy", QString("expand the folder of %1 folders").arg(folders),
                    [&] { picker->treeView()->expand(nestedFolder); },
                    [&] { return model.rowCount(nestedFolder) == folders; });
    context.measure("Drive Copy", "select all", [&] { picker->selectAllBox()->click(); },
                    [&] { return picker->selectAllBox()->checkState() == Qt::Checked; });
    picker->reject();
    settle(300);
}

}  // namespace velmora::bench
