#pragma once

#include <QFileDialog>

namespace velmora {

// The open panel of the duplicate finder, "Choose a path to search": folders
// only, links resolved, hidden entries not shown, confirmed with "Choose".
// Only the first folder chosen is handed on.
class ChoosePathPanel : public QFileDialog {
    Q_OBJECT
public:
    ChoosePathPanel(const QString& startFolder, QWidget* parent);

signals:
    void pathChosen(const QString& path);

protected:
    void accept() override;
};

}  // namespace velmora
