#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QCheckBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QTimer;
class QTreeView;

namespace velmora {

class Controller;
class CopyFileTreeModel;
class FileNode;

// The picking tree of "Copy Some Files": the source's files and folders with their sizes
// and three-state ticks, folders listed when opened, a progress bar while the source is
// being measured, "Select All", "Open" and "Preview" for the current item, and "Choose"
// (enabled once something is ticked) or "Cancel". Escape cancels.
class SelectCopyFilesViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    SelectCopyFilesViewController(Controller& controller, const QString& sourceName, bool scanning, QWidget* parent);

    QTreeView* treeView() const { return m_treeView; }
    CopyFileTreeModel* treeModel() const { return m_model; }
    QCheckBox* selectAllBox() const { return m_selectAll; }
    QProgressBar* progressBar() const { return m_progressBar; }
    QLabel* selectedLabel() const { return m_selectedLabel; }
    QPushButton* chooseButton() const { return m_chooseButton; }
    QPushButton* cancelButton() const { return m_cancelButton; }
    QPushButton* openButton() const { return m_openButton; }
    QPushButton* previewButton() const { return m_previewButton; }
    bool isScanning() const { return m_scanning; }

    void openFileWithFileNode(const FileNode* node);
    void pereviewFileWithFileNode(const FileNode* node);

signals:
    void filesChosen();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void scanEnded();
    void showProgress();
    void selectionChanged();
    void currentChanged();
    FileNode* currentNode() const;

    Controller& m_controller;
    CopyFileTreeModel* m_model;
    bool m_scanning;
    QLabel* m_progressLabel;
    QProgressBar* m_progressBar;
    QTimer* m_progressTimer;
    QCheckBox* m_selectAll;
    QTreeView* m_treeView;
    QLabel* m_selectedLabel;
    QPushButton* m_openButton;
    QPushButton* m_previewButton;
    QPushButton* m_cancelButton;
    QPushButton* m_chooseButton;
};

}  // namespace velmora
