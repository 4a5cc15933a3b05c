#include "gui/duplicate/ChoosePathPanel.h"

#include <QFileInfo>

namespace velmora {

ChoosePathPanel::ChoosePathPanel(const QString& startFolder, QWidget* parent) : QFileDialog(parent) {
    // The application's own panel, so that it looks and behaves the same
    // on every platform and runs with open() like the other panels.
    setOption(QFileDialog::DontUseNativeDialog);
    setOption(QFileDialog::ShowDirsOnly);
    setFileMode(QFileDialog::Directory);
    setAcceptMode(QFileDialog::AcceptOpen);
    setWindowTitle("Choose a path to search");
    setLabelText(QFileDialog::Accept, "Choose");
    setDirectory(startFolder);
    setWindowModality(Qt::WindowModal);
    setAttribute(Qt::WA_DeleteOnClose);
}

void ChoosePathPanel::accept() {
    const QStringList chosen = selectedFiles();
    if (chosen.isEmpty()) return;
    const QFileInfo folder(chosen.first());
    if (!folder.isDir()) return;
    QDialog::accept();
    emit pathChosen(folder.canonicalFilePath());
}

}  // namespace velmora
