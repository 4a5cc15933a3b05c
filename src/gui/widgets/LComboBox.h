#pragma once

#include <QComboBox>

namespace velmora {

// The application's drop-down list, styled for the dark surfaces.
class LComboBox : public QComboBox {
    Q_OBJECT
public:
    explicit LComboBox(QWidget* parent = nullptr);
};

}  // namespace velmora
