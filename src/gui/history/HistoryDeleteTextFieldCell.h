#pragma once

#include <QWidget>

namespace velmora {

class ImageToggle;

// The buttons of a history entry's row: export (folder image) and delete.
// They report the entry's key to the history panel.
class HistoryDeleteTextFieldCell : public QWidget {
    Q_OBJECT
public:
    HistoryDeleteTextFieldCell(const QString& date, QWidget* parent = nullptr);
    QString date() const { return m_date; }
    // The buttons show on the selected entry only. The cell itself stays: the
    // outline shows its cell widgets whenever their row is in view.
    void setButtonsVisible(bool visible);
    ImageToggle* exportButton() const { return m_exportButton; }
    ImageToggle* deleteButton() const { return m_deleteButton; }

signals:
    void clickExportWithDate(const QString& date);
    void clickDeleteWithDate(const QString& date);

private:
    QString m_date;
    ImageToggle* m_exportButton;
    ImageToggle* m_deleteButton;
};

}  // namespace velmora
