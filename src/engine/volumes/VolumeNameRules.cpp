#include "engine/volumes/VolumeNameRules.h"

#include <cstring>

namespace velmora {
namespace {

enum class NameFamily { Fat, ExFat, Ext, Hfs, Apfs, Ntfs, Other };

NameFamily familyOf(const QString& fileSystem) {
    const QString type = fileSystem.toLower();
    if (type.contains("exfat")) return NameFamily::ExFat;
    if (type.contains("fat") || type.startsWith("ms-dos") || type == "msdos") return NameFamily::Fat;
    if (type.startsWith("ext")) return NameFamily::Ext;
    if (type.contains("hfs")) return NameFamily::Hfs;
    if (type.contains("apfs")) return NameFamily::Apfs;
    if (type.contains("ntfs")) return NameFamily::Ntfs;
    return NameFamily::Other;
}

// What a FAT label cannot hold besides control characters; the label is stored in
// the OEM code page, so only ASCII is taken as what the user typed.
constexpr char kFatForbidden[] = "*?.,;:/\\|+=<>[]\"";

QString fatLabelProblem(const QString& label) {
    for (const QChar c : label) {
        if (c.unicode() > 0x7e) return QString("a FAT volume name holds only ASCII characters, not \"%1\"").arg(c);
        if (std::strchr(kFatForbidden, c.toLatin1()))
            return QString("a FAT volume name cannot hold the character \"%1\" (none of %2)").arg(c, kFatForbidden);
    }
    return {};
}

QString lengthProblem(const QString& kind, qsizetype length, qsizetype limit, const char* unit) {
    if (length <= limit) return {};
    return QString("%1 volume name holds at most %2 %3; this one has %4").arg(kind).arg(limit).arg(unit).arg(length);
}

}  // namespace

VolumeNameCheck nameForRename(const QString& fileSystem, const QString& name) {
    if (name.isEmpty() || name == " ") return {name, "a volume name cannot be empty"};
    for (const QChar c : name)
        if (c.unicode() < 0x20 || c.unicode() == 0x7f)
            return {name, "a volume name cannot hold control characters such as line breaks or tabs"};

    VolumeNameCheck check{name, {}};
    switch (familyOf(fileSystem)) {
    case NameFamily::Fat: {
        // The FAT label: upper case, its first 11 characters; the blanks it would end in are not kept.
        QString label = name.toUpper().left(11);
        while (label.endsWith(' ')) label.chop(1);
        check.name = label;
        if (label.isEmpty()) check.error = "a FAT volume name needs a character other than a blank";
        else check.error = fatLabelProblem(label);
        break;
    }
    case NameFamily::ExFat: check.error = lengthProblem("an exFAT", name.size(), 15, "characters (UTF-16 units)"); break;
    case NameFamily::Ext: check.error = lengthProblem("an " + fileSystem, name.toUtf8().size(), 16, "bytes (UTF-8)"); break;
    case NameFamily::Hfs: check.error = lengthProblem("an HFS+", name.size(), 255, "characters (UTF-16 units)"); break;
    case NameFamily::Apfs: check.error = lengthProblem("an APFS", name.size(), 255, "characters (UTF-16 units)"); break;
    case NameFamily::Ntfs: check.error = lengthProblem("an NTFS", name.size(), 128, "characters (UTF-16 units)"); break;
    case NameFamily::Other: break;
    }
    return check;
}

VolumeNameCheck nameForFormat(const QString& typeText, const QString& name) {
    return nameForRename(typeText, name.isEmpty() || name == " " ? QString("NEW") : name);
}

}  // namespace velmora
