#include "gui/erase/AddFilesPanel.h"

#include "engine/platform/StandardPaths.h"

#include <QFileInfo>

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
    qInfo("newSavePath====:%s", qUtf8Printable(rest));
    for (const char* known : {"/Desktop", "/Downloads", "/Documents"}) {
        if (rest.startsWith(known)) {
            const char* homes = StandardPaths::layout() == StandardPaths::Layout::MacOS ? "/Users/%1%2" : "/home/%1%2";
            return QString(homes).arg(userName, rest);
        }
    }
    return rest;
}

void AddFilesPanel::accept() {
    QStringList chosen;
    for (const QString& path : selectedFiles()) {
        const QFileInfo item(path);
        if (item.exists() || item.isSymLink()) chosen.append(path);
    }
    if (chosen.isEmpty()) return;
    QDialog::accept();
    emit pathsChosen(chosen);
}

}  // namespace velmora
