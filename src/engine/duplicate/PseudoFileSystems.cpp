#include "engine/duplicate/PseudoFileSystems.h"

#include <QFile>
#include <QList>
#if defined(__linux__)
#include <sys/sysmacros.h>
#endif

namespace velmora {

namespace {

const char* const kPseudoTypes[] = {"proc",      "sysfs",      "devtmpfs",   "devpts",      "cgroup",   "cgroup2",
                                    "debugfs",   "tracefs",    "securityfs", "pstore",      "bpf",      "configfs",
                                    "fusectl",   "mqueue",     "hugetlbfs",  "autofs",      "binfmt_misc",
                                    "efivarfs",  "nsfs",       "rpc_pipefs", "selinuxfs",   "fuse.portal"};

const char* const kRootFoldersSkipped[] = {"/proc", "/sys", "/dev", "/run"};

}  // namespace

bool PseudoFileSystems::isPseudoType(const QByteArray& fileSystemType) {
    for (const char* type : kPseudoTypes)
        if (fileSystemType == type) return true;
    return false;
}

bool PseudoFileSystems::isSkippedBelowRoot(const QString& path) {
    for (const char* folder : kRootFoldersSkipped)
        if (path == QLatin1String(folder)) return true;
    return false;
}

// A mountinfo line: "ID PARENT MAJOR:MINOR ROOT MOUNTPOINT OPTIONS [TAGS...] - TYPE SOURCE SUPER".
PseudoFileSystems PseudoFileSystems::fromMountInfo(const QByteArray& mountInfo) {
    PseudoFileSystems result;
    for (const QByteArray& line : mountInfo.split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        const qsizetype separator = fields.indexOf("-");
        if (fields.size() < 5 || separator < 0 || separator + 1 >= fields.size()) continue;
        if (!isPseudoType(fields[separator + 1])) continue;
        const QList<QByteArray> numbers = fields[2].split(':');
        bool majorOk = false, minorOk = false;
        const uint major = numbers.value(0).toUInt(&majorOk), minor = numbers.value(1).toUInt(&minorOk);
        if (numbers.size() == 2 && majorOk && minorOk) result.m_devices.insert(quint64(makedev(major, minor)));
    }
    return result;
}

PseudoFileSystems PseudoFileSystems::mountedNow() {
#if defined(__linux__)
    QFile table("/proc/self/mountinfo");
    if (table.open(QIODevice::ReadOnly)) return fromMountInfo(table.readAll());
#endif
    return {};
}

}  // namespace velmora
