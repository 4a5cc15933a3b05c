#pragma once

#include <QString>

namespace velmora {

// A tool tip that shows the text as it is: Qt takes a tool tip that looks like markup for
// rich text, and names of files and volumes are data, never markup.
inline QString plainToolTip(const QString& text) { return "<qt>" + text.toHtmlEscaped() + "</qt>"; }

}  // namespace velmora
