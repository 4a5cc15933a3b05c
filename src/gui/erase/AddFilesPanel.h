#pragma once

#include <QFileDialog>

namespace velmora {

// The add panel of the file eraser: files and folders alike can be chosen,
// several at once, and confirmed with "Add". Double-clicking a folder still
// opens it; "Add" takes whatever is selected.
class AddFilesPanel : public QFileDialog {
    Q_OBJECT
public:
    AddFilesPanel(const QString& startFolder, QWidget* parent);

    // Where the panel opens when no other folder is pending: the user's desktop
    // ("Users/<USER>/Desktop", relative as macOS has always taken it; the
    // desktop folder of the home on Linux).
    static QString defaultStartFolder();
    // The administrator's home, where a panel of an application running with
    // administrator rights wanders by default.
    static QString administratorHome();
    static bool isInAdministratorHome(const QString& folder);
    // The user's own counterpart of a folder in the administrator's home:
    // Desktop, Downloads and Documents move to the user's home, any other rest
    // of the path is kept as it stands.
    static QString userFolderForAdministratorFolder(const QString& folder, const QString& userName);

    // "Add": takes every selected item, files and folders alike.
    void accept() override;

signals:
    void pathsChosen(const QStringList& paths);
};

}  // namespace velmora
