#pragma once

#include "gui/widgets/MAAttachedWindow.h"

namespace velmora {

// A short notice with one "OK": the read-only volume notice and the
// "Cannot open file" / "Cannot open Folder" messages.
class NoticeViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    NoticeViewController(const QString& title, const QString& message, QWidget* parent);
    QString title() const { return m_title; }

private:
    QString m_title;
};

}  // namespace velmora
