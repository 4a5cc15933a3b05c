#pragma once

#include <QWidget>

class QMimeData;
class QPushButton;

namespace velmora {

// The start of the duplicate finder: a drop area for one folder with the
// "Choose Folder" button in it. Its dashed frame lights up while a folder
// is dragged over it.
class DuplicateStartView : public QWidget {
    Q_OBJECT
public:
    explicit DuplicateStartView(QWidget* parent = nullptr);

    QPushButton* chooseButton() const { return m_chooseButton; }
    bool isHighlighted() const { return m_highlighted; }
    // The first folder a drag carries, or an empty string.
    static QString droppedFolder(const QMimeData* data);

signals:
    void chooseFolder();
    void folderDropped(const QString& path);

protected:
    void paintEvent(QPaintEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void setHighlighted(bool highlighted);

    QPushButton* m_chooseButton;
    bool m_highlighted = false;
};

}  // namespace velmora
