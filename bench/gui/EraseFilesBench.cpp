// Erase Files: dropping 200,000 single files, adding a folder of as many small and
// empty files in nested folders, confirming, and the run until the end view. The page runs a fast stand-in of srm
// (bench_gui_fast_srm: the tool's protocol, real removal, no overwriting), so that the
// page, not the disk, sets the pace.
#include "GuiBench.h"
#include "engine/platform/NativePath.h"
#include "gui/erase/FileEraserProgressViewController.h"
#include "gui/erase/FileEraserSuccessViewController.h"
#include "gui/erase/FileEraserViewController.h"
#include "gui/erase/MakeSureFileEraserViewControoler.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPushButton>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::bench {
namespace {

QString filePath(const QString& root, int index) {
    return root + QString("/part %1/sub/file %2.txt").arg(index / 1000, 3, 10, QChar('0')).arg(index);
}

// `files` files, a thousand to a folder, every tenth with a few bytes.
void makeTree(const QString& root, int files) {
    for (int index = 0; index < files; ++index) {
        const QByteArray path = nativePath(filePath(root, index));
        if (index % 1000 == 0) QDir().mkpath(QFileInfo(pathFromNative(path)).path());
        const int fd = open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        if (fd < 0) continue;
        if (index % 10 == 0 && write(fd, "some text\n", 10) != 10) qWarning("cannot write %s", path.constData());
        close(fd);
    }
}

// The page finds its tools through VELMORA_BIN_DIR: a folder where "srm" is the stand-in.
void useFastSrm(BenchContext& context) {
    const QString tools = context.workDir() + "/tools";
    QDir().mkpath(tools);
    QFile::link(context.binDir() + "/bench_gui_fast_srm", tools + "/srm");
    qputenv("VELMORA_BIN_DIR", tools.toUtf8());
}

}  // namespace

void benchEraseFiles(BenchContext& context) {
    const int files = context.scaled(200000);
    const QString folder = context.workDir() + "/erase/Big folder";
    makeTree(folder, files);
    const QByteArray binDirBefore = qgetenv("VELMORA_BIN_DIR");
    useFastSrm(context);

    const QString count = QString::number(files);
    {
        QStringList singleFiles;
        for (int index = 0; index < files; ++index) singleFiles.append(filePath(folder, index));
        FileEraserViewController page(nullptr);
        page.resize(1000, 680);
        page.show();
        context.measure("Erase Files", "drop " + count + " single files", [&] { page.viewDragAction(singleFiles); },
                        [&] { return page.listView()->isVisible() && page.listView()->x() == 0; });
    }

    FileEraserViewController page(nullptr);
    page.resize(1000, 680);
    page.show();
    context.measure("Erase Files", "add a folder of " + count + " files", [&] { page.viewDragAction({folder}); },
                    [&] { return page.listView()->isVisible() && page.listView()->x() == 0; });

    page.eraserNowButtonAction();
    settle(50);
    context.measure("Erase Files", "confirm: until the progress counts", [&] {
        page.makeSurePanel()->continueButton()->click();
    }, [&] { return page.progressPanel() && page.progressPanel()->roundText().contains(" of "); });

    context.measure("Erase Files", "the run until the end view", [] {}, [&] {
        return page.successPanel() && page.successPanel()->isVisible();
    });
    if (!page.successPanel() || QFileInfo::exists(folder)) qWarning("Erase Files: the run did not erase the folder");
    if (page.successPanel()) page.successPanel()->okButton()->click();
    settle(50);

    if (binDirBefore.isEmpty()) qunsetenv("VELMORA_BIN_DIR");
    else qputenv("VELMORA_BIN_DIR", binDirBefore);
}

}  // namespace velmora::bench
