#include "cli/CopyCommand.h"

#include "cli/Terminal.h"
#include "cli/VolumesCommand.h"
#include "engine/copy/DiskCopyLogic.h"
#include "engine/copy/NodeTreeOperator.h"
#include "engine/platform/NativePath.h"
#include "engine/volumes/CommUti.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QTimer>
#include <atomic>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace velmora::cli {
namespace {

constexpr const char* kUsage =
    "usage: velmora-cli copy [--yes] [--verify] [--json] SOURCE DEST [--only PATH...]\n"
    "  SOURCE and DEST: a volume (name, mount point or device node) or a folder;\n"
    "  --only: items under SOURCE to copy (relative to it, or full paths below it)";

std::atomic<bool> interrupted{false};

void onInterrupt(int) {
    interrupted = true;
    std::signal(SIGINT, SIG_DFL);  // a second Ctrl-C ends the program at once
}

QString sizeText(quint64 bytes) { return CommUti::longlongDiskSize(qint64(bytes)); }

// A folder operand as a record of its own: its path, its file system's room, and as its
// used size the volume's when it is the volume's folder, else what lies below it.
std::optional<VolumeObj> folderRecord(const QString& argument, bool measure) {
    char resolved[PATH_MAX];
    if (!realpath(nativePath(argument).constData(), resolved)) return std::nullopt;
    struct stat status {};
    struct statvfs room {};
    if (stat(resolved, &status) != 0 || !S_ISDIR(status.st_mode) || statvfs(resolved, &room) != 0) return std::nullopt;
    VolumeObj record;
    record.volumePath = pathFromNative(resolved);
    record.volumeMountPoint = record.volumePath;
    record.volumeName = record.volumePath.mid(record.volumePath.lastIndexOf('/') + 1);
    record.volumeTotalSizeNum = qint64(room.f_blocks) * qint64(room.f_frsize);
    record.volumeFreeSizeNum = qint64(room.f_bavail) * qint64(room.f_frsize);
    record.volumeFreeSize = sizeText(quint64(record.volumeFreeSizeNum));
    record.deviceNumber = status.st_dev;
    struct stat parent {};
    const bool volumeFolder = record.volumePath == "/" ||
                              (stat((QByteArray(resolved) + "/..").constData(), &parent) == 0 && parent.st_dev != status.st_dev);
    if (measure && !volumeFolder) {
        quint64 used = 0;
        NodeTreeOperator().getFileSizeWithPat(record.volumePath, used);
        record.volumeTotalSizeNum = qint64(used) + record.volumeFreeSizeNum;
    }
    return record;
}

// SOURCE or DEST: an existing folder as it is, else a listed volume at its mount point.
std::optional<VolumeObj> operandRecord(const QString& argument, bool isSource) {
    if (std::optional<VolumeObj> folder = folderRecord(argument, isSource)) return folder;
    std::optional<VolumeObj> volume = volumeOperand({argument}, kUsage);
    if (!volume) return std::nullopt;
    // The volume by its folder, as long as it is still the volume that was listed.
    std::optional<VolumeObj> record = folderRecord(volume->volumeMountPoint, isSource);
    if (!record || (volume->deviceNumber != 0 && record->deviceNumber != volume->deviceNumber)) {
        printErr("velmora-cli: \"" + printable(argument) + "\" is no longer mounted where it was listed");
        return std::nullopt;
    }
    record->volumeName = volume->volumeName;
    return record;
}

// Ticks each --only item in the source tree, listing the folders on its way; false with a
// message when one is not there.
bool pickItems(Controller& controller, const QString& root, const QStringList& items) {
    EumeRoot& lister = controller.eumeRoot();
    lister.listFolder(root, nullptr, false, [&controller](const FileNodePtr& node) { controller.rootArr().append(node); });
    const QString prefix = root == "/" ? "/" : root + '/';
    for (const QString& item : items) {
        QString relative = item;
        if (relative.startsWith('/')) {
            if (!relative.startsWith(prefix)) {
                printErr("velmora-cli: " + escapedPath(item) + " does not lie under the source");
                return false;
            }
            relative = relative.mid(prefix.size());
        }
        const QStringList components = relative.split('/', Qt::SkipEmptyParts);
        FileNodeList* level = &controller.rootArr();
        FileNode* found = nullptr;
        for (const QString& component : components) {
            if (found) {
                lister.getNodeListWithFaterNode(found);
                level = &found->children;
            }
            const auto match = std::find_if(level->begin(), level->end(),
                                            [&component](const FileNodePtr& node) { return node->name == component; });
            found = match == level->end() ? nullptr : match->get();
            if (!found) break;
        }
        if (!found) {
            printErr("velmora-cli: " + escapedPath(item) + " is not in the source (or is never copied)");
            return false;
        }
        controller.changeSelectWithNode(found, true);
    }
    return true;
}

quint64 measureTicked(const FileNodeList& nodes) {
    quint64 total = 0;
    const NodeTreeOperator sizes;
    for (const FileNodePtr& node : nodes) {
        if (node->state == FileNode::Ticked) {
            sizes.measure(*node);
            total += node->size;
        } else if (node->state == FileNode::PartlyTicked) {
            total += measureTicked(node->children);
        }
    }
    return total;
}

QJsonArray issuesJson(const QList<CopyIssue>& issues) {
    QJsonArray list;
    for (const CopyIssue& issue : issues) list.append(QJsonObject{{"path", escapedPath(issue.path)}, {"reason", issue.reason}});
    return list;
}

void printResult(const CopyResult& result, bool verify, bool json) {
    if (json) {
        QJsonArray notes;
        for (const CopyNote& note : result.notes)
            notes.append(QJsonObject{{"reason", note.reason}, {"count", note.count}, {"firstPath", escapedPath(note.firstPath)}});
        QJsonObject object{{"destination", escapedPath(result.destinationFolder)},
                           {"complete", result.complete() && (!verify || result.verified)},
                           {"cancelled", result.cancelled},
                           {"copiedItems", qint64(result.copiedItems)},
                           {"copiedBytes", qint64(result.copiedBytes)},
                           {"failures", issuesJson(result.failures)},
                           {"notes", notes}};
        if (verify) {
            object.insert("verified", result.verified);
            object.insert("verifiedFiles", qint64(result.verifiedFiles));
            object.insert("mismatches", issuesJson(result.mismatches));
        }
        printJson(QJsonDocument(object));
        return;
    }
    for (const CopyIssue& failure : result.failures)
        printOut(QString("Failed  %1: %2").arg(escapedPath(failure.path), printableMessage(failure.reason)));
    for (const CopyIssue& mismatch : result.mismatches)
        printOut(QString("Differs  %1: %2").arg(escapedPath(mismatch.path), printableMessage(mismatch.reason)));
    for (const CopyNote& note : result.notes)
        printOut(QString("Not kept  %1: %2 item(s), the first %3")
                     .arg(printableMessage(note.reason)).arg(note.count).arg(escapedPath(note.firstPath)));
    if (result.destinationLost) printErr("velmora-cli: the destination folder is gone: the copy was stopped");
    if (result.cancelled) printErr("velmora-cli: " + DiskCopyLogic::kStoppedText);
    const QString copied = QString("%1 items, %2 bytes").arg(result.copiedItems).arg(result.copiedBytes);
    if (result.complete() && (!verify || result.verified)) {
        printOut(QString("Copied  %1 into %2%3").arg(copied, escapedPath(result.destinationFolder),
                                                   verify ? QString(", %1 files verified").arg(result.verifiedFiles) : QString()));
    } else {
        const qsizetype missing = result.failures.size();
        printOut(QString("Failed  %1 copied into %2; %3 item(s) not copied%4")
                     .arg(copied, escapedPath(result.destinationFolder)).arg(missing)
                     .arg(result.mismatches.isEmpty() ? QString() : QString(", %1 copy(ies) differ").arg(result.mismatches.size())));
    }
}

}  // namespace

int runCopyCommand(QStringList args) {
    const bool yes = takeFlag(args, "--yes");
    const bool verify = takeFlag(args, "--verify");
    const bool json = takeFlag(args, "--json");
    QStringList only;
    if (const qsizetype at = args.indexOf("--only"); at >= 0) {
        only = args.mid(at + 1);
        args = args.first(at);
        if (only.isEmpty()) {
            printErr(kUsage);
            return 2;
        }
    }
    if (args.size() != 2 || args.first().startsWith("--") || args.last().startsWith("--")) {
        printErr(kUsage);
        return 2;
    }

    // Measuring a folder source can take a while; with --only only the picked items count.
    const std::optional<VolumeObj> source = operandRecord(args.at(0), only.isEmpty());
    if (!source) return 1;
    const std::optional<VolumeObj> destination = operandRecord(args.at(1), false);
    if (!destination) return 1;

    QLoggingCategory::setFilterRules("default.info=false");
    DiskCopyLogic logic;
    logic.doSelectDiskWithVolume(*source, true);
    logic.doSelectDiskWithVolume(*destination, false);
    if (!logic.toVolume() || !logic.fromeVolume()) {
        printErr("velmora-cli: " + printableMessage(logic.errorText()));
        return 1;
    }
    if (!only.isEmpty()) {
        if (!pickItems(logic.controller(), source->volumePath, only)) return 1;
        logic.setCopyType(DiskCopyLogic::CopyType::CopySomeFiles);
        logic.setPickedFiles(logic.controller().rootArr(), measureTicked(logic.controller().rootArr()));
    }
    if (!logic.copyButtonEnabled()) {
        printErr(QString("velmora-cli: %1 (%2 needed, %3 free)")
                     .arg(logic.errorText(), sizeText(logic.neededSize()), sizeText(logic.freeSize())));
        return 1;
    }
    if (logic.freeSize() == DiskCopyLogic::kUnknownSize)
        printErr("velmora-cli: the destination does not report its free space, so it cannot be checked first");
    const QString what = only.isEmpty() ? QString("all files of %1").arg(escapedPath(source->volumePath))
                                        : QString("%1 picked item(s) of %2").arg(only.size()).arg(escapedPath(source->volumePath));
    if (!yes && !confirm(QString("Copy %1 (%2) into a new folder VLclone(...) in %3?")
                             .arg(what, sizeText(logic.neededSize()), escapedPath(destination->volumePath)))) {
        printErr("velmora-cli: nothing copied");
        return 1;
    }

    QEventLoop loop;
    int exitCode = 1;
    ProgressBar bar("Copying");
    QElapsedTimer clock;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, &loop, [&] {
        if (interrupted.exchange(false)) {
            printErr("\nvelmora-cli: stopping...");
            logic.cancelCopy();
        }
        if (!logic.doCopy()) return;
        const quint64 bytes = logic.doCopy()->copiedBytes();
        const quint64 needed = qMax<quint64>(logic.neededSize(), 1);
        const double seconds = qMax<double>(clock.elapsed() / 1000.0, 0.001);
        bar.update(qMin(100.0, double(bytes) * 100.0 / double(needed)),
                   QString("%1 of %2, %3/s").arg(sizeText(bytes), sizeText(needed), sizeText(quint64(bytes / seconds))));
    });
    QObject::connect(&logic, &DiskCopyLogic::showError, &loop, [&](const QString& text) {
        bar.finish();
        printErr("velmora-cli: " + printableMessage(text));
        loop.quit();
    });
    QObject::connect(&logic, &DiskCopyLogic::showConfirmation, &loop, [&] {
        clock.start();
        if (!logic.beginToCopyFiles(QDateTime::currentDateTime(), verify)) return;  // showError ends the loop
        if (!json) printOut("Destination: " + escapedPath(logic.copyFolder()));
        if (logic.copyFolderOnDesktop())
            printErr("velmora-cli: the destination could not hold the copy folder; it is in the desktop folder instead");
    });
    QObject::connect(&logic, &DiskCopyLogic::copyEnded, &loop, [&](const CopyResult& result) {
        bar.finish();
        printResult(result, verify, json);
        exitCode = result.complete() && (!verify || result.verified) ? 0 : 1;
        loop.quit();
    });

    interrupted = false;
    std::signal(SIGINT, onInterrupt);
    ticker.start(200);
    QTimer::singleShot(0, &logic, &DiskCopyLogic::cloneButtonAction);
    loop.exec();
    std::signal(SIGINT, SIG_DFL);
    return exitCode;
}

}  // namespace velmora::cli
