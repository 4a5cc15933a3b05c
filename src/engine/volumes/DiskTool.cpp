#include "engine/volumes/DiskTool.h"

#include "engine/platform/LogCategories.h"
#include "engine/platform/PropertyList.h"
#include "engine/volumes/DiskUtilLine.h"
#include "engine/volumes/FormatChoices.h"
#include "engine/volumes/ShellRunners.h"
#include "engine/volumes/VolumeIdentity.h"
#include "engine/volumes/VolumeNameRules.h"

#include <QtConcurrent>

namespace velmora {
namespace {

// The error dictionary the disk utility ends its output with (an erase prints its
// progress lines before it); empty when there is none.
QVariantMap errorDictionaryIn(const QByteArray& output) {
    const qsizetype start = output.lastIndexOf("<?xml");
    if (start < 0) return {};
    const QVariantMap dictionary = propertyListFromData(output.mid(start)).toMap();
    return dictionary.contains("Error") ? dictionary : QVariantMap{};
}

// Why a disk-utility command did not succeed: the message of its error dictionary
// (or its standard error), with pkexec's own refusals told apart.
QString failureOf(const CommandLine& command, const CommandResult& result) {
    if (!result.started) return result.failure;
    if (!result.exitedNormally) return "the disk utility was killed";
    const QString message = errorDictionaryIn(result.output).value("ErrorMessage").toString();
    if (result.exitCode == 0) return message.isEmpty() ? QString("the disk utility reported an error") : message;
    return diskUtilFailure(command, result.exitCode, message.isEmpty() ? result.failure : message);
}

// The command, run with administrator rights by the runner; empty when it succeeded.
QString runDiskUtil(const QStringList& arguments, CommandResult (*runner)(const CommandLine&)) {
    const CommandLine command = asAdministrator(diskUtilLine(arguments));
    const CommandResult result = runner(command);
    if (result.succeeded() && errorDictionaryIn(result.output).isEmpty()) return {};
    return failureOf(command, result);
}

QString quoted(const QString& name) { return "\"" + name + "\""; }

// One pass of arg, so a name holding "%1" stays text.
QString couldNot(const char* action, const QString& name, const QString& reason) {
    return QString("The volume %1 could not be %2: %3.").arg(quoted(name), action, reason);
}

}  // namespace

DiskTool::DiskTool(QObject* parent) : QObject(parent) {
    connect(&m_watcher, &QFutureWatcher<Outcome>::finished, this, [this] {
        const Outcome outcome = m_watcher.result();
        m_running = false;
        emit finished(m_action, outcome.succeeded, outcome.message, outcome.volumeName);
    });
}

DiskTool::~DiskTool() { m_watcher.waitForFinished(); }

void DiskTool::formatVolume(const VolumeObj& volume, const QString& name, const QString& typeText) {
    const QString oldName = volume.volumeName;
    if (volume.volumeMountPoint == "/") {
        refuse(Action::Format, couldNot("formatted", oldName, "it is the startup volume"), oldName);
        return;
    }
    QStringList arguments;
    QString newName = oldName;
    QString done;
    switch (formatCaseForVolume(volume)) {
    case FormatCase::EraseWithChosenType: {
        if (typeText.isEmpty()) {
            refuse(Action::Format, couldNot("formatted", oldName, "no file system was chosen"), oldName);
            return;
        }
        const VolumeNameCheck check = nameForFormat(typeText, name);
        if (!check.accepted()) {
            refuse(Action::Format, couldNot("formatted", oldName, check.error), oldName);
            return;
        }
        newName = check.name;
        arguments = {"eraseVolume", typeText, newName};
        done = QString("The volume %1 was formatted as %2 with the name %3.").arg(quoted(oldName), typeText, quoted(newName));
        break;
    }
    case FormatCase::ReformatInPlace:
        arguments = {"reformat"};
        done = QString("The volume %1 was reformatted in place; its name and format are kept.").arg(quoted(oldName));
        break;
    case FormatCase::EraseNtfsAsFat32:
        newName = "NEW";
        arguments = {"eraseVolume", "MS-DOS FAT32", newName};
        done = QString("The NTFS volume %1 was erased as MS-DOS FAT32 with the name \"NEW\".").arg(quoted(oldName));
        break;
    }
    run(Action::Format, oldName, [volume, arguments, oldName, newName, done]() -> Outcome {
        VolumeObj pinned = volume;
        QString error;
        if (!pinVolume(pinned, &error)) return {false, couldNot("formatted", oldName, error), oldName};
        const QString failure = runDiskUtil(arguments + QStringList{pinned.volRootDir}, eraserExecCommand);
        if (!failure.isEmpty()) return {false, couldNot("formatted", oldName, failure), oldName};
        // The device holds a new file system now: it must be mounted again, under the name asked for.
        const std::optional<ResolvedVolume> fresh = VolumeIdentity::of(pinned).resolveReformatted(&error);
        if (!fresh) return {false, QString("The volume was formatted, but %1.").arg(error), newName};
        if (fresh->volumeName != newName)
            return {false, QString("The volume was formatted, but it is named %1 instead of %2.")
                               .arg(quoted(fresh->volumeName), quoted(newName)), fresh->volumeName};
        return {true, done, newName};
    });
}

void DiskTool::renameVolume(const VolumeObj& volume, const QString& name) {
    const QString oldName = volume.volumeName;
    if (volume.volumeMountPoint == "/") {
        refuse(Action::Rename, couldNot("renamed", oldName, "it is the startup volume"), oldName);
        return;
    }
    const VolumeNameCheck check = nameForRename(volume.diskType, name);
    if (!check.accepted()) {
        refuse(Action::Rename, couldNot("renamed", oldName, check.error), oldName);
        return;
    }
    const QString newName = check.name;
    run(Action::Rename, oldName, [volume, newName, oldName]() -> Outcome {
        VolumeObj pinned = volume;
        QString error;
        if (!pinVolume(pinned, &error)) return {false, couldNot("renamed", oldName, error), oldName};
        const QString failure = runDiskUtil({"rename", pinned.volRootDir, newName}, aepairExecCommand);
        if (!failure.isEmpty()) return {false, couldNot("renamed", oldName, failure), oldName};
        // The same file system, mounted again (a new mount, so a new device number on FUSE).
        const VolumeIdentity renamed(pinned.volRootDir, pinned.diskUUID, 0, newName);
        const std::optional<ResolvedVolume> found = renamed.resolve(&error);
        if (!found) return {false, QString("The volume was renamed to %1, but %2.").arg(quoted(newName), error), newName};
        if (found->volumeName != newName)
            return {false, couldNot("renamed", oldName, QString("it is named %1 afterwards").arg(quoted(found->volumeName))),
                    found->volumeName};
        return {true, QString("The volume %1 was renamed to %2.").arg(quoted(oldName), quoted(newName)), newName};
    });
}

void DiskTool::ejectVolume(const VolumeObj& volume) {
    const QString name = volume.volumeName;
    if (volume.volumeMountPoint == "/") {
        refuse(Action::Eject, couldNot("ejected", name, "it is the startup volume"), name);
        return;
    }
    run(Action::Eject, name, [volume, name]() -> Outcome {
        VolumeObj pinned = volume;
        QString error;
        if (!pinVolume(pinned, &error)) return {false, couldNot("ejected", name, error), name};
        const QString failure = runDiskUtil({"eject", pinned.volRootDir}, aepairExecCommand);
        if (!failure.isEmpty()) return {false, couldNot("ejected", name, failure), name};
        if (VolumeIdentity::of(pinned).resolveReformatted(&error))
            return {false, couldNot("ejected", name, "it is still mounted after the disk utility ejected it"), name};
        return {true, QString("The volume %1 was ejected.").arg(quoted(name)), name};
    });
}

void DiskTool::run(Action action, const QString& volumeName, const std::function<Outcome()>& work) {
    if (m_running) {
        refuse(action, "Another disk action is under way; try again when it has ended.", volumeName);
        return;
    }
    m_running = true;
    m_action = action;
    emit started(action);
    m_watcher.setFuture(QtConcurrent::run(work));
}

void DiskTool::refuse(Action action, const QString& message, const QString& volumeName) {
    qCInfo(lcVolumes, "%s", qPrintable(message));
    QMetaObject::invokeMethod(
        this, [this, action, message, volumeName] { emit finished(action, false, message, volumeName); },
        Qt::QueuedConnection);
}

}  // namespace velmora
