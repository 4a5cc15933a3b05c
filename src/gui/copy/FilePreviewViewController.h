#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QLabel;
class QPushButton;

namespace velmora {

// A quick look at one file of the copy source: a picture shown scaled, text shown as
// text (its start), anything else named with its size. The file is opened without
// following a link and only when it is a regular file. "Close" or Escape ends it.
class FilePreviewViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    FilePreviewViewController(const QString& path, QWidget* parent);

    enum class Kind { Picture, Text, Other };
    Kind kind() const { return m_kind; }
    QPushButton* closeButton() const { return m_closeButton; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    Kind m_kind = Kind::Other;
    QPushButton* m_closeButton;
};

}  // namespace velmora
