#pragma once

#include "VolumeTestSupport.h"

#include <QFileInfo>
#include <QStringList>

namespace velmora::test {

// A file system on a loop device over a bounded image file, mounted at
// FOLDER/mnt/LABEL. Everything it set up is taken down again when it goes,
// whether the test passed or not: every mount of the device (also one the disk
// utility made), the loop device and the image. Needs root.
class LoopVolume {
public:
    // type: "ext4" or "vfat" (FAT32). ext4 is made without reserved blocks, so its
    // whole free space is writable.
    LoopVolume(const QString& folder, const QString& type, const QString& label, int sizeMiB)
        : m_type(type), m_label(label), m_image(folder + "/" + label + ".img"), m_mountPoint(folder + "/mnt/" + label) {
        QFile image(m_image);
        if (!image.open(QIODevice::WriteOnly) || !image.resize(qint64(sizeMiB) << 20)) {
            m_error = "cannot create " + m_image;
            return;
        }
        image.close();
        QByteArray output;
        if (run("losetup", {"--find", "--show", m_image}, &output) != 0) {
            m_error = "losetup: " + QString::fromLocal8Bit(output);
            return;
        }
        m_device = QString::fromLocal8Bit(output).trimmed();
        const QStringList mkfs = type == "ext4" ? QStringList{"mkfs.ext4", "-q", "-F", "-m", "0", "-L", label, m_device}
                                                : QStringList{"mkfs.vfat", "-F", "32", "-n", label, m_device};
        if (run(mkfs.first(), mkfs.mid(1), &output) != 0) {
            m_error = mkfs.first() + ": " + QString::fromLocal8Bit(output);
            return;
        }
        mount();
    }

    ~LoopVolume() {
        unmount();
        if (!m_device.isEmpty()) run("losetup", {"--detach", m_device});
        QFile::remove(m_image);
    }

    bool isReady() const { return m_error.isEmpty() && isMounted(); }
    QString error() const { return m_error; }
    QString device() const { return m_device; }
    QString mountPoint() const { return m_mountPoint; }
    QString image() const { return m_image; }

    // The kernel has no FAT driver on some machines: the FUSE one then mounts it,
    // as the disk utility does.
    bool mount() {
        QDir().mkpath(m_mountPoint);
        QByteArray output;
        bool mounted = run("mount", {"-t", m_type, m_device, m_mountPoint}, &output) == 0;
        if (!mounted && m_type == "vfat")
            mounted = run("fusefat", {"-o", "rw+,blkdev,fsname=" + m_device, m_device, m_mountPoint}, &output) == 0;
        if (!mounted) m_error = "mount: " + QString::fromLocal8Bit(output);
        return mounted && isMounted();
    }

    // Unmounts every mount of the device, newest first, and flushes the loop
    // device into the image, so the image can be read as the disk holds it.
    void unmount() {
        QStringList mounts = mountPointsOfDevice();
        while (!mounts.isEmpty()) {
            const QString mountPoint = mounts.takeLast();
            if (run("umount", {mountPoint}) != 0) run("umount", {"--lazy", mountPoint});
        }
        if (!m_device.isEmpty()) run("blockdev", {"--flushbufs", m_device});
        ::sync();
    }

    bool isMounted() const { return !mountPointsOfDevice().isEmpty(); }

    QStringList mountPointsOfDevice() const {
        QStringList mountPoints;
        if (m_device.isEmpty()) return mountPoints;
        QFile table("/proc/self/mountinfo");
        if (!table.open(QIODevice::ReadOnly)) return mountPoints;
        for (const QByteArray& line : table.readAll().split('\n')) {
            const QList<QByteArray> fields = line.split(' ');
            const qsizetype separator = fields.indexOf("-");
            if (separator > 4 && separator + 2 < fields.size() && fields[separator + 2] == m_device.toUtf8())
                mountPoints.append(QString::fromUtf8(fields[4]).replace("\\040", " "));
        }
        return mountPoints;
    }

private:
    QString m_type;
    QString m_label;
    QString m_image;
    QString m_mountPoint;
    QString m_device;
    QString m_error;
};

// Loop devices need root; without it a test says so and is skipped.
#define SKIP_UNLESS_ROOT_WITH_LOOP_DEVICES()                                                          \
    do {                                                                                              \
        if (geteuid() != 0) GTEST_SKIP() << "SKIPPED: needs root to attach and mount loop devices";   \
        if (!QFileInfo::exists("/dev/loop-control")) GTEST_SKIP() << "SKIPPED: no /dev/loop-control"; \
    } while (false)

}  // namespace velmora::test
