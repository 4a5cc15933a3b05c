#pragma once

#include <QAbstractButton>

namespace velmora {

// One entry of the main window's sidebar: icon and title, drawn highlighted
// with the "_sel" icon when selected. A disabled entry ignores clicks.
class SidebarButton : public QAbstractButton {
    Q_OBJECT
public:
    SidebarButton(const QString& title, const QString& iconImage, const QString& selIconImage, int tag,
                  QWidget* parent = nullptr);
    int tag() const { return m_tag; }
    void setSelected(bool selected);
    bool isSelected() const { return m_selected; }
    // Enables or disables the entry and redraws it (the sidebar lock).
    void setButtonEnden(bool enabled);
    // Room for the icon and the title in its selected (bold) face, inside the pill.
    QSize sizeHint() const override;

signals:
    void clickedWithTag(int tag);

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    QString m_iconImage;
    QString m_selIconImage;
    int m_tag;
    bool m_selected = false;
    bool m_hovered = false;
};

}  // namespace velmora
