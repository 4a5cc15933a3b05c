#include "gui/erase/FileEraserSortVC.h"

#include "gui/widgets/Style.h"

#include <QAbstractButton>
#include <QPainter>
#include <QPainterPath>
#include <QSvgRenderer>
#include <QVBoxLayout>

namespace velmora {
namespace {

// One choice of the menu: a tick and a label, white when chosen, else at 70 %.
class SortItem : public QAbstractButton {
public:
    SortItem(const QString& text, QWidget* parent) : QAbstractButton(parent) {
        setText(text);
        setCheckable(true);
        setFixedHeight(30);
        setCursor(Qt::PointingHandCursor);
        setFont(Style::regularFont(12));
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (underMouse()) painter.fillRect(rect(), QColor(255, 255, 255, 14));
        painter.setOpacity(isChecked() ? 1.0 : 0.7);
        if (isChecked()) {
            QSvgRenderer tick(Style::imagePath("ic_tick"));
            tick.render(&painter, QRectF(12, height() / 2.0 - 8, 16, 16));
        }
        painter.setPen(Style::kText);
        painter.drawText(rect().adjusted(36, 0, -8, 0), Qt::AlignVCenter | Qt::AlignLeft, text());
    }
};

struct Choice {
    const char* identifier;
    const char* title;
};
constexpr Choice kKeys[] = {{"0", "Name"}, {"1", "Size"}, {"2", "Space Used"}};
constexpr Choice kDirections[] = {{"3", "Ascending"}, {"4", "Descending"}};

}  // namespace

FileEraserSortVC::FileEraserSortVC(int sortType, int sortAD, QWidget* parent)
    : QWidget(parent, Qt::Popup | Qt::FramelessWindowHint), m_sortType(sortType), m_sortAD(sortAD) {
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_DeleteOnClose);
    setFixedWidth(170);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 8, 0, 8);
    layout->setSpacing(0);
    auto addChoices = [this, layout](const auto& choices) {
        for (const Choice& choice : choices) {
            auto* item = new SortItem(choice.title, this);
            const QString identifier = choice.identifier;
            connect(item, &QAbstractButton::clicked, this, [this, identifier] { buttonAction(identifier); });
            m_items.insert(identifier, item);
            layout->addWidget(item);
        }
    };
    addChoices(kKeys);
    auto* separator = new QWidget(this);
    separator->setFixedHeight(1);
    separator->setAttribute(Qt::WA_StyledBackground);
    separator->setStyleSheet("background: rgba(255,255,255,40); margin: 0px 10px;");
    layout->addSpacing(4);
    layout->addWidget(separator);
    layout->addSpacing(4);
    addChoices(kDirections);
    highlightCurrentChoice();
}

void FileEraserSortVC::popUpBelow(const QPoint& globalTopRight) {
    adjustSize();
    move(globalTopRight - QPoint(width(), 0));
    show();
}

void FileEraserSortVC::buttonAction(const QString& identifier) {
    const int choice = identifier.toInt();
    if (choice <= 2) {
        m_sortType = choice;
    } else {
        m_sortAD = choice == 3 ? 0 : 1;
        if (m_sortType < 0) m_sortType = 0;  // a direction alone sorts by name
    }
    highlightCurrentChoice();
    emit selectSortbyType(m_sortType, m_sortAD);
}

void FileEraserSortVC::highlightCurrentChoice() {
    for (auto it = m_items.cbegin(); it != m_items.cend(); ++it) {
        const int choice = it.key().toInt();
        // An unsorted list (insertion order) shows no tick at all.
        it.value()->setChecked(choice <= 2 ? choice == m_sortType : m_sortType >= 0 && (choice == 3) == (m_sortAD == 0));
    }
}

void FileEraserSortVC::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath shape;
    shape.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
    painter.fillPath(shape, Style::kPanel);
    painter.setPen(QColor(255, 255, 255, 40));
    painter.drawPath(shape);
}

}  // namespace velmora
