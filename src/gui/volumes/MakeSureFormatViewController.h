#pragma once

#include "engine/volumes/FormatChoices.h"
#include "gui/widgets/MAAttachedWindow.h"

#include <QPointer>

class QLabel;
class QLineEdit;
class QPushButton;

namespace velmora {

class FormatTypeViewController;

// Asks before a volume is formatted, with its new name and file system: the name
// field shows the volume's name, the type button its current type and opens the
// list of choices (FormatTypeViewController). An APFS or NTFS volume has a fixed
// type (dimmed, no arrow, disabled) and a notice of what the format does to it.
// "Continue" (never the default button) closes the panel and hands on name and
// type; "Cancel", Enter and Escape only close it.
class MakeSureFormatViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    MakeSureFormatViewController(const QList<FormatChoice>& choices, QWidget* parent);

    // The volume's name and diskType.
    void setName(const QString& name, const QString& diskType);
    // Chooses the item of the type list with this identifier.
    void selectFormatbyType(int identifier);
    void typeButtonAction();

    QLineEdit* nameField() const { return m_nameField; }
    QPushButton* typeButton() const { return m_typeButton; }
    QLabel* typeArrow() const { return m_typeArrow; }
    QLabel* nameHint() const { return m_nameHint; }
    QLabel* noticeLabel() const { return m_noticeLabel; }
    QPushButton* continueButton() const { return m_continueButton; }
    QPushButton* cancelButton() const { return m_cancelButton; }
    FormatTypeViewController* typeList() const;
    QString typeText() const { return m_typeText; }
    bool typeFixed() const { return m_typeFixed; }

    static constexpr const char* kApfsArticleUrl = "https://www.velmora.app/guide/recover-data-from-system-drive";

signals:
    void makeSureToFormatSelectVolumeWithName(const QString& name, const QString& typeText);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void showType();
    void updateNameHint();
    void fitHeight();

    static constexpr int kMinimumHeight = 260;

    QList<FormatChoice> m_choices;
    QString m_typeText;
    bool m_typeFixed = false;
    QLineEdit* m_nameField;
    QLabel* m_nameHint;
    QPushButton* m_typeButton;
    QLabel* m_typeArrow;
    QLabel* m_noticeLabel;
    QPushButton* m_continueButton;
    QPushButton* m_cancelButton;
    QPointer<FormatTypeViewController> m_typeList;
};

}  // namespace velmora
