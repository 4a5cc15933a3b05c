// Times one side of the free-space fill benchmark on a mounted volume and
// prints "SECONDS BYTES" (bench/fill/run.sh makes the volume and compares):
//
//   fill_bench MOUNTPOINT fill   the free-space fill, one pass, until its end-of-pass
//                                step is done (fill files written until the volume is
//                                full and flushed, folder removed, file system flushed);
//                                BYTES is the free space less what it could not reach
//   fill_bench MOUNTPOINT dd     dd writing zeros into one file until the volume is
//                                full, then "sync FILE", "rm", "sync -f"
//
// Only the volume of a loop device is accepted, never the system disk.
#include "engine/erase/EraserLevel.h"
#include "engine/volumes/FreeSpaceWipe.h"
#include "engine/volumes/VolumeIdentity.h"
#include "engine/volumes/VolumeScanner.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>
#include <optional>

using namespace velmora;

namespace {

std::optional<VolumeObj> loopVolumeAt(const QString& folder) {
    for (const VolumeObj& volume : VolumeScanner().scanAllVolumes())
        if (volume.volumeMountPoint == folder && volume.volumeMountPoint != "/" && volume.volumePath.startsWith("/dev/loop"))
            return volume;
    return std::nullopt;
}

qint64 fill(VolumeObj volume, double* seconds) {
    QElapsedTimer clock;
    clock.start();
    QString error;
    if (!pinVolume(volume, &error)) {
        std::fprintf(stderr, "fill_bench: %s\n", qPrintable(error));
        return -1;
    }
    FreeSpaceWipe wipe;
    wipe.selectEraserType = 1;
    wipe.selectVolumeObj = volume;
    QEventLoop loop;
    QObject::connect(&wipe, &FreeSpaceWipe::closeWindow, &loop, &QEventLoop::quit);
    wipe.doFreeSpaceAction();
    loop.exec();
    *seconds = clock.nsecsElapsed() / 1e9;
    // The end view's verdict follows; a failed fill is no measurement.
    bool succeeded = false;
    QString endText;
    QObject::connect(&wipe, &FreeSpaceWipe::eraserEnded, &loop, [&](bool ok, const QString& text) {
        succeeded = ok;
        endText = text;
        loop.quit();
    });
    loop.exec();
    if (!succeeded) {
        std::fprintf(stderr, "fill_bench: the fill failed: %s\n", qPrintable(endText));
        return -1;
    }
    return volume.volumeFreeSizeNum - wipe.unreachableBytes();
}

void runQuietly(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(-1);
}

// Until the volume is full (it is a loop volume, so that ends soon).
qint64 dd(const QString& folder) {
    const QString file = folder + "/fill";
    runQuietly("dd", {"if=/dev/zero", "of=" + file, "bs=4M", "status=none"});
    runQuietly("sync", {file});
    const qint64 bytes = QFileInfo(file).size();
    runQuietly("rm", {"-f", file});
    runQuietly("sync", {"-f", folder});
    return bytes;
}

}  // namespace

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    if (args.size() != 2 || (args[1] != "fill" && args[1] != "dd")) {
        std::fprintf(stderr, "usage: fill_bench MOUNTPOINT fill|dd   (the volume of a loop device)\n");
        return 2;
    }
    const QString folder = QFileInfo(args[0]).canonicalFilePath();
    const std::optional<VolumeObj> volume = loopVolumeAt(folder);
    if (!volume) {
        std::fprintf(stderr, "fill_bench: %s is not the mount point of a loop device's volume\n", qPrintable(args[0]));
        return 1;
    }
    QTemporaryDir dataDir;  // keeps the run out of the user's history and level
    qputenv("VELMORA_DATA_DIR", dataDir.path().toUtf8());
    EraserLevel::store(1);
    QLoggingCategory::setFilterRules("default.info=false\ndefault.warning=false");

    double seconds = 0;
    QElapsedTimer clock;
    clock.start();
    const qint64 bytes = args[1] == "fill" ? fill(*volume, &seconds) : dd(folder);
    if (bytes < 0) return 1;
    if (args[1] == "dd") seconds = clock.nsecsElapsed() / 1e9;
    std::printf("%.3f %lld\n", seconds, bytes);
    return 0;
}
