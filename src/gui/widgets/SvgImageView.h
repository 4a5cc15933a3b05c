#pragma once

#include <QWidget>

namespace velmora {

// A still picture from the application's artwork ("ic_add", "ic_success", ...),
// drawn at the widget's size.
class SvgImageView : public QWidget {
    Q_OBJECT
public:
    SvgImageView(const QString& imageName, QSize size, QWidget* parent = nullptr);
    QString imageName() const { return m_imageName; }
    void setImageName(const QString& imageName);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_imageName;
};

}  // namespace velmora
