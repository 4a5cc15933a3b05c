#pragma once

#include <QAbstractButton>

namespace velmora {

// A small clickable image: the checkbox ("checkbox_yes", "checkbox_no",
// "checkbox_election") and radio button ("radiobutton_sel", "radiobutton_no")
// of the application. The owner decides which image shows; clicks are reported.
class ImageToggle : public QAbstractButton {
    Q_OBJECT
public:
    explicit ImageToggle(const QString& imageName, QWidget* parent = nullptr, int side = 16);
    void setImageName(const QString& imageName);
    QString imageName() const { return m_imageName; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_imageName;
    int m_side;
};

}  // namespace velmora
