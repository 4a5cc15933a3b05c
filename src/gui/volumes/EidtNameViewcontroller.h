#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace velmora {

// Asks for a volume's new name: a field prefilled with the current name, "Save"
// (the default button: Enter saves) and "Cancel" (also Escape). Under the field
// a hint says what the file system will hold, or why it cannot hold the name;
// the field itself takes any text.
class EidtNameViewcontroller : public MAAttachedWindow {
    Q_OBJECT
public:
    // fileSystem: the volume's diskType, for the hint.
    EidtNameViewcontroller(const QString& volumeName, const QString& fileSystem, QWidget* parent);
    QLineEdit* nameField() const { return m_nameField; }
    QLabel* hintLabel() const { return m_hintLabel; }
    QPushButton* saveButton() const { return m_saveButton; }
    QPushButton* cancelButton() const { return m_cancelButton; }
    // The last text typed into the field.
    const QString& editStr() const { return m_editStr; }

signals:
    void eidtNameSaveActionWithName(const QString& name);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void controlTextDidChange(const QString& text);
    void fitHeight();

    QString m_fileSystem;
    QString m_editStr;
    QLineEdit* m_nameField;
    QLabel* m_hintLabel;
    QPushButton* m_saveButton;
    QPushButton* m_cancelButton;
};

}  // namespace velmora
