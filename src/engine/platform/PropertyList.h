#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

namespace velmora {

// Property lists (XML or binary) to and from Qt values: dictionaries become
// QVariantMap, arrays QVariantList, strings QString, integers qint64/quint64,
// booleans bool, reals double, data QByteArray, dates QDateTime.
QVariant propertyListFromData(const QByteArray& bytes);
QVariant propertyListFromFile(const QString& path);
QByteArray propertyListToXml(const QVariant& value);
// Writes through a temporary file and a rename, so readers never see half a file.
bool writePropertyListAtomically(const QString& path, const QVariant& value);

}  // namespace velmora
