#pragma once

#include <QString>

// Path helpers with the semantics of a file manager's path strings rather
// than QFileInfo's: a leading full stop starts a name, not an extension.
namespace velmora::PathNames {

// The folder path and a name joined by exactly one separator.
QString appendComponent(const QString& folder, const QString& name);

// The text after the last full stop of the last component, or "" when the
// component has none or only a leading one (".profile", "Makefile").
QString pathExtension(const QString& path);

// The last component ("/" for the root folder).
QString lastComponent(const QString& path);

}  // namespace velmora::PathNames
