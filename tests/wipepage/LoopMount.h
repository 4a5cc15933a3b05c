#pragma once

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStringList>
#include <unistd.h>

// A small ext4 file system on a loop device over an image file, mounted at
// FOLDER/mnt/LABEL; unmounted, detached and deleted again when it goes,
// whether the test passed or not. Needs root.
class LoopMount {
public:
    LoopMount(const QString& folder, const QString& label, int sizeMiB)
        : m_image(folder + "/" + label + ".img"), m_mountPoint(folder + "/mnt/" + label) {
        QFile image(m_image);
        if (!image.open(QIODevice::WriteOnly) || !image.resize(qint64(sizeMiB) << 20)) {
            m_error = "cannot create " + m_image;
            return;
        }
        image.close();
        QString output;
        if (!run("losetup", {"--find", "--show", m_image}, &output)) return;
        m_device = output.trimmed();
        if (!run("mkfs.ext4", {"-q", "-F", "-m", "0", "-L", label, m_device})) return;
        mount();
    }

    ~LoopMount() {
        unmount();
        if (!m_device.isEmpty()) run("losetup", {"--detach", m_device});
        QFile::remove(m_image);
    }

    bool isReady() const { return m_error.isEmpty() && m_mounted; }
    QString error() const { return m_error; }
    QString device() const { return m_device; }
    QString mountPoint() const { return m_mountPoint; }

    bool mount() {
        QDir().mkpath(m_mountPoint);
        m_mounted = run("mount", {"-t", "ext4", m_device, m_mountPoint});
        return m_mounted;
    }

    void unmount() {
        if (!m_mounted) return;
        if (!run("umount", {m_mountPoint})) run("umount", {"--lazy", m_mountPoint});
        m_mounted = false;
        ::sync();
    }

private:
    bool run(const QString& program, const QStringList& arguments, QString* output = nullptr) {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(program, arguments);
        const bool ok = process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit &&
                        process.exitCode() == 0;
        const QString text = QString::fromLocal8Bit(process.readAll());
        if (output) *output = text;
        if (!ok && m_error.isEmpty()) m_error = program + ": " + text;
        return ok;
    }

    QString m_image;
    QString m_mountPoint;
    QString m_device;
    QString m_error;
    bool m_mounted = false;
};
