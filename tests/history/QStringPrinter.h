#pragma once

#include <QString>
#include <ostream>

// Lets GoogleTest print QString values (and containers of them) readably.
inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }
