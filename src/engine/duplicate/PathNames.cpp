#include "engine/duplicate/PathNames.h"

namespace velmora::PathNames {

QString appendComponent(const QString& folder, const QString& name) {
    if (folder.endsWith('/')) return folder + name;
    return folder + '/' + name;
}

QString lastComponent(const QString& path) {
    QString trimmed = path;
    while (trimmed.size() > 1 && trimmed.endsWith('/')) trimmed.chop(1);
    if (trimmed == "/") return trimmed;
    return trimmed.mid(trimmed.lastIndexOf('/') + 1);
}

QString pathExtension(const QString& path) {
    const QString name = lastComponent(path);
    const qsizetype dot = name.lastIndexOf('.');
    if (dot <= 0) return {};
    return name.mid(dot + 1);
}

}  // namespace velmora::PathNames
