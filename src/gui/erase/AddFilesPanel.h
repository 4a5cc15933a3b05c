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

    // The path on disk of a path the panel gave. Qt's panel shows names as text, each byte
    // that is not text as U+FFFD, and gives that text back; a component holding U+FFFD is
    // matched against the names of its folder, read as bytes, and stands for the one name
    // that shows like it. Empty when no name or more than one name fits.
    static QString pathOnDisk(const QString& chosen);

    // "Add": takes every selected item, files and folders alike; an ambiguous one is left out.
    void accept() override;

signals:
    void pathsChosen(const QStringList& paths);
};

}  // namespace velmora
