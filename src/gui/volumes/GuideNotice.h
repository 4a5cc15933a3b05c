#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QLabel;
class QPushButton;

namespace velmora {

// A notice with "OK" whose message (rich text) carries links that open in the
// web browser: the base of the NTFS and startup-volume notices.
class GuideNotice : public MAAttachedWindow {
    Q_OBJECT
public:
    GuideNotice(const QString& title, const QString& messageHtml, QWidget* parent);
    QLabel* messageLabel() const { return m_messageLabel; }
    QPushButton* okButton() const { return m_okButton; }

    // "<a href=URL>TEXT</a>" in the accent colour.
    static QString link(const QString& url, const QString& text);

private:
    QLabel* m_messageLabel;
    QPushButton* m_okButton;
};

}  // namespace velmora
