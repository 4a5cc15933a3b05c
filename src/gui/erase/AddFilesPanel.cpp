#include "gui/erase/AddFilesPanel.h"

#include "engine/platform/LogCategories.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/PathStatus.h"
#include "engine/platform/StandardPaths.h"
#include "srm/NoFollowPath.h"

#include <fcntl.h>
#include <unistd.h>

namespace velmora {

AddFilesPanel::AddFilesPanel(const QString& startFolder, QWidget* parent) : QFileDialog(parent) {
    // Only the non-native dialog lets "Add" take a selected folder instead of
    // opening it.
    setOption(QFileDialog::DontUseNativeDialog);
    setFileMode(QFileDialog::ExistingFiles);
    setAcceptMode(QFileDialog::AcceptOpen);
    setLabelText(QFileDialog::Accept, "Add");
    setDirectory(startFolder);
    setWindowModality(Qt::WindowModal);
    setAttribute(Qt::WA_DeleteOnClose);
}

QString AddFilesPanel::defaultStartFolder() {
    if (StandardPaths::layout() == StandardPaths::Layout::MacOS)
        return QString::asprintf("Users/%s/Desktop", qgetenv("USER").constData());
    return StandardPaths::desktopDir();
}

QString AddFilesPanel::administratorHome() {
    return StandardPaths::layout() == StandardPaths::Layout::MacOS ? "/private/var/root" : "/root";
}

bool AddFilesPanel::isInAdministratorHome(const QString& folder) {
    const QString home = administratorHome();
    return folder == home || folder.startsWith(home + "/");
}

QString AddFilesPanel::userFolderForAdministratorFolder(const QString& folder, const QString& userName) {
    const QString rest = folder.mid(administratorHome().size());
    qCInfo(lcErase, "newSavePath====:%s", qUtf8Printable(rest));
    for (const char* known : {"/Desktop", "/Downloads", "/Documents"}) {
        if (rest.startsWith(known)) {
            const char* homes = StandardPaths::layout() == StandardPaths::Layout::MacOS ? "/Users/%1%2" : "/home/%1%2";
            return QString(homes).arg(userName, rest);
        }
    }
    return rest;
}

QString AddFilesPanel::pathOnDisk(const QString& chosen) {
    if (!chosen.contains(QChar::ReplacementCharacter)) return chosen;
    const QStringList components = chosen.split('/');
    QString path = components.first();  // empty for an absolute path
    for (qsizetype i = 1; i < components.size(); ++i) {
        const QString& component = components.at(i);
        if (!component.contains(QChar::ReplacementCharacter)) {
            path += '/' + component;
            continue;
        }
        const int folder = openLongPath(nativePath(path.isEmpty() ? QString("/") : path), O_RDONLY | O_DIRECTORY);
        if (folder < 0) return {};
        int error = 0;
        QStringList fits;
        for (const std::string& name : folderEntries(folder, error)) {
            const QByteArray bytes = QByteArray::fromStdString(name);
            // The same decoding that gave the panel its text.
            if (QString::fromUtf8(bytes) == component) fits.append(pathFromNative(bytes));
        }
        ::close(folder);
        if (fits.size() != 1) return {};
        path += '/' + fits.first();
    }
    return path;
}

void AddFilesPanel::accept() {
    QStringList chosen;
    for (const QString& selected : selectedFiles()) {
        const QString path = pathOnDisk(selected);
        if (!path.isEmpty() && itemExists(path)) chosen.append(path);
    }
    if (chosen.isEmpty()) return;
    QDialog::accept();
    emit pathsChosen(chosen);
}

}  // namespace velmora
