#pragma once

#include <QMap>
#include <QWidget>

class QAbstractButton;

namespace velmora {

// The sort menu of the file eraser: three keys ("0" name, "1" size, "2"
// space used) and two directions ("3" ascending, "4" descending). The chosen
// key and direction are shown white with a tick, the others dimmed; sort type
// -1 is the list's own order, with nothing ticked. Every click reports the
// current pair.
class FileEraserSortVC : public QWidget {
    Q_OBJECT
public:
    FileEraserSortVC(int sortType, int sortAD, QWidget* parent);

    // Opens the menu below a point, its right edge on the point.
    void popUpBelow(const QPoint& globalTopRight);
    void buttonAction(const QString& identifier);
    int sortType() const { return m_sortType; }
    int sortAD() const { return m_sortAD; }
    QAbstractButton* item(const QString& identifier) const { return m_items.value(identifier); }

signals:
    void selectSortbyType(int sortType, int sortAD);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void highlightCurrentChoice();

    int m_sortType;
    int m_sortAD;
    QMap<QString, QAbstractButton*> m_items;
};

}  // namespace velmora
