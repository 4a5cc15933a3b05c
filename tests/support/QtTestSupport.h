#pragma once

#include <QByteArray>
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

// Sets an environment variable for the lifetime of the object.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const QString& value) : m_name(name), m_old(qgetenv(name)), m_had(qEnvironmentVariableIsSet(name)) {
        qputenv(name, value.toUtf8());
    }
    ~ScopedEnv() {
        if (m_had) qputenv(m_name, m_old);
        else qunsetenv(m_name);
    }

private:
    const char* m_name;
    QByteArray m_old;
    bool m_had;
};

}  // namespace velmora::test
