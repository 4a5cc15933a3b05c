#pragma once

#include <QStringList>
#include <QWidget>

namespace velmora {

// The list side of the file-eraser page: more files and folders can be
// dropped onto the list itself. A frame shows while a drag is over it.
class DragOneFileView : public QWidget {
    Q_OBJECT
public:
    explicit DragOneFileView(QWidget* parent = nullptr);

signals:
    void viewDragAction(const QStringList& paths);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* m_dropFrame;
};

}  // namespace velmora
