// Times one side of the free-space fill benchmark on a mounted volume and
// prints "SECONDS BYTES" (bench/fill/run.sh makes the volume and compares):
//
//   fill_bench MOUNTPOINT fill   the free-space fill, one pass, until its end-of-pass
//                                step is done (fill files flushed, folder removed,
//                                file system flushed); BYTES is what the plan writes
//   fill_bench MOUNTPOINT dd     dd writing zeros into one file until the volume is
//                                full, then "sync FILE", "rm", "sync -f"
//   fill_bench MOUNTPOINT dd-fill-bytes
//                                the same, but dd stops after as many 4 MiB blocks as
//                                the fill writes (count=): the same amount of data
//
// Only the volume of a loop device is accepted, never the system disk.
#include "engine/erase/EraserLevel.h"
#include "engine/volumes/FreeSpaceWipe.h"
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

// Fill files 1 .. n-1 and the remainder: one fill unit short of the free space.
qint64 plannedFillBytes(qint64 freeBytes) {
    const qint64 fillCount = freeBytes / FreeSpaceWipe::kFillUnit;
    const qint64 remainder = freeBytes - fillCount * FreeSpaceWipe::kFillUnit;
    return qMax<qint64>(0, fillCount - 1) * 128008008 + remainder;
}

qint64 fill(const VolumeObj& volume) {
    FreeSpaceWipe wipe;
    wipe.selectEraserType = 1;
    wipe.selectVolumeObj = volume;
    QEventLoop loop;
    QObject::connect(&wipe, &FreeSpaceWipe::closeWindow, &loop, &QEventLoop::quit);
    QObject::connect(&wipe, &FreeSpaceWipe::runStalled, &loop, &QEventLoop::quit);
    wipe.doFreeSpaceAction();
    loop.exec();
    return plannedFillBytes(volume.volumeFreeSizeNum);
}

void runQuietly(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(-1);
}

// blocks 0: until the volume is full (it is a loop volume, so that ends soon).
qint64 dd(const QString& folder, qint64 blocks) {
    const QString file = folder + "/fill";
    QStringList arguments{"if=/dev/zero", "of=" + file, "bs=4M", "status=none"};
    if (blocks > 0) arguments.append(QString("count=%1").arg(blocks));
    runQuietly("dd", arguments);
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
    const QStringList sides{"fill", "dd", "dd-fill-bytes"};
    if (args.size() != 2 || !sides.contains(args[1])) {
        std::fprintf(stderr, "usage: fill_bench MOUNTPOINT fill|dd|dd-fill-bytes   (the volume of a loop device)\n");
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

    QElapsedTimer clock;
    clock.start();
    constexpr qint64 kBlock = 4 << 20;
    const qint64 fillBlocks = (plannedFillBytes(volume->volumeFreeSizeNum) + kBlock - 1) / kBlock;
    const qint64 bytes = args[1] == "fill" ? fill(*volume) : dd(folder, args[1] == "dd" ? 0 : fillBlocks);
    std::printf("%.3f %lld\n", clock.nsecsElapsed() / 1e9, bytes);
    return 0;
}
