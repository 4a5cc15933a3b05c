#pragma once

#include <QWidget>

class QTimer;

namespace velmora {

// Circular progress: a ring filled to the value (0-100) with the percentage in
// the middle, or, when indeterminate, a turning arc for work of unknown length.
class MLCircularIndicator : public QWidget {
    Q_OBJECT
public:
    explicit MLCircularIndicator(QWidget* parent = nullptr, int side = 120);
    void setValue(double percent);
    double value() const { return m_value; }
    void setIndeterminate(bool indeterminate);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double m_value = 0;
    bool m_indeterminate = false;
    int m_angle = 0;
    QTimer* m_spinTimer;
};

}  // namespace velmora
