#include "engine/volumes/MountInfo.h"

#include "engine/platform/NativePath.h"

namespace velmora {
namespace {

bool isOctalDigit(char c) { return c >= '0' && c <= '7'; }

// The kernel writes blanks, tabs, newlines and backslashes in a field as "\ooo".
QString unescapeMountField(const QByteArray& field) {
    QByteArray text;
    for (qsizetype i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size() && isOctalDigit(field[i + 1]) && isOctalDigit(field[i + 2])
            && isOctalDigit(field[i + 3])) {
            text.append(char((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 + (field[i + 3] - '0')));
            i += 3;
            continue;
        }
        text.append(field[i]);
    }
    return pathFromNative(text);
}

}  // namespace

QList<MountInfoEntry> parseMountInfo(const QByteArray& text) {
    QList<MountInfoEntry> entries;
    for (const QByteArray& line : text.split('\n')) {
        // id parent major:minor root mount-point options [optional...] - type source super-options
        const QList<QByteArray> fields = line.split(' ');
        const qsizetype separator = fields.indexOf("-", 6);
        if (separator < 6 || separator + 2 >= fields.size()) continue;
        const QByteArray& options = fields[5];
        entries.append({fields[2], unescapeMountField(fields[3]), unescapeMountField(fields[4]),
                        QString::fromLatin1(fields[separator + 1]), unescapeMountField(fields[separator + 2]),
                        options == "ro" || options.startsWith("ro,")});
    }
    return entries;
}

}  // namespace velmora
