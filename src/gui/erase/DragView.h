#pragma once

#include <QStringList>
#include <QWidget>

namespace velmora {

// The drop area of the empty file-eraser page, framed by the dashed border
// "dashboder", which lights up while files are dragged over it. Dropped
// files and folders are handed on as a list of paths.
class DragView : public QWidget {
    Q_OBJECT
public:
    explicit DragView(QWidget* parent = nullptr);
    QString borderImage() const { return m_borderImage; }

signals:
    void viewDragAction(const QStringList& paths);

protected:
    void paintEvent(QPaintEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void setBorderImage(const QString& name);

    QString m_borderImage = "dashboder";
};

}  // namespace velmora
