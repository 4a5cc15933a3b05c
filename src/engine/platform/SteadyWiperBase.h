#pragma once

#include <QString>
#include <QVariantMap>

namespace velmora {

// The settings property list "SteadyWiperBase": a dictionary of strings (and the
// "Link" dictionary) kept in the per-user data folder. It is seeded from the
// read-only template on first use and rewritten whole, atomically, on change.
class SteadyWiperBase {
public:
    static QString path();
    static QVariantMap read();
    static bool write(const QVariantMap& settings);
    static QString stringValue(const QString& key);
    static bool setStringValue(const QString& key, const QString& value);
};

}  // namespace velmora
