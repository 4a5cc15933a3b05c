#pragma once

#include <QCoreApplication>
#include <QString>
#include <ostream>

// Readable QString values (and containers of them) in assertion messages.
inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }

namespace velmora::test {

// The engine's timers, children and hand-overs need an application object.
inline void ensureApplication() {
    if (QCoreApplication::instance()) return;
    static int argc = 1;
    static char name[] = "velmora-test";
    static char* argv[] = {name, nullptr};
    new QCoreApplication(argc, argv);
}

}  // namespace velmora::test
