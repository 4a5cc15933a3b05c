#pragma once

#include "support/QtTestSupport.h"
#include "support/TempDataDir.h"
#include "engine/erase/FileObj.h"
#include "engine/erase/ImmutableFlag.h"
#include "engine/erase/RemoveFileAndFolder.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QMutex>
#include <QStringList>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>
#include <ostream>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <fcntl.h>
#include <unistd.h>

namespace velmora::test {

inline QString binDir() { return qEnvironmentVariable("VELMORA_BIN_DIR"); }

// Every test gets its own data folder, so nothing touches the real user's history
// or settings, and a scratch folder on a disk file system.
class EraseTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        ASSERT_TRUE(m_scratch.isValid());
    }

    // Immutable leftovers would keep the scratch folder from being removed.
    void TearDown() override {
        QDirIterator entries(m_scratch.path(), QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                             QDirIterator::Subdirectories);
        while (entries.hasNext()) ImmutableFlag::clear(entries.next());
    }

    QString scratch(const QString& name) const { return m_scratch.filePath(name); }

    static void writeFile(const QString& path, const QByteArray& content) {
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
        ASSERT_EQ(file.write(content), content.size());
    }

    static void writeBigFile(const QString& path, qint64 megabytes) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        const QByteArray chunk(1 << 20, 'V');
        for (qint64 i = 0; i < megabytes; ++i) ASSERT_EQ(file.write(chunk), chunk.size());
    }

    static bool existsOnDisk(const QString& path) { return QFileInfo(path).exists() || QFileInfo(path).isSymLink(); }

    // Sets the immutable flag (root on ext4 and the like); false where impossible.
    static bool makeImmutable(const QString& path) {
        const int fd = open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK);
        if (fd < 0) return false;
        int flags = 0;
        bool done = ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
        flags |= FS_IMMUTABLE_FL;
        done = done && ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
        close(fd);
        return done;
    }

    static FileObj fileRecord(const QString& path, bool isDir = false) {
        FileObj record;
        record.name = QFileInfo(path).fileName();
        record.url = path;
        record.isDir = isDir;
        record.isSelect = true;
        record.type = isDir ? "Folder" : QFileInfo(path).suffix();
        record.size = isDir ? 0 : quint64(QFileInfo(path).size());
        return record;
    }

    TempDataDir m_dataDir;
    QTemporaryDir m_scratch{QDir::tempPath() + "/velmora-erase-XXXXXX"};
};

// Records everything the engine reports during one run.
class EngineRun {
public:
    explicit EngineRun(RemoveFileAndFolder& engine) {
        QObject::connect(&engine, &RemoveFileAndFolder::removeProgress, &m_loop, [this](float value, const QString& path, int index) {
            progress.append(value);
            paths.append(path);
            indexes.append(index);
        });
        QObject::connect(&engine, &RemoveFileAndFolder::haveFailEraser, &m_loop, [this] { ++failures; });
        QObject::connect(&engine, &RemoveFileAndFolder::removeObjEnd, &m_loop, [this](const FileObjList& list) {
            results = list;
            ++ends;
            m_loop.quit();
        });
    }

    // False when the run did not end within two minutes.
    bool waitForEnd() {
        if (ends == 0) {
            QTimer::singleShot(120000, &m_loop, &QEventLoop::quit);
            m_loop.exec();
        }
        return ends == 1;
    }

    QList<float> progress;
    QStringList paths;
    QList<int> indexes;
    int failures = 0;
    int ends = 0;
    FileObjList results;

private:
    QEventLoop m_loop;
};

// Collects the log lines written while it lives, with the application's logging
// categories (silent by default) turned on.
class LogCapture {
public:
    LogCapture() {
        s_lines.clear();
        QLoggingCategory::setFilterRules("velmora.*=true");
        m_previous = qInstallMessageHandler(&LogCapture::handle);
    }
    ~LogCapture() {
        qInstallMessageHandler(m_previous);
        QLoggingCategory::setFilterRules(QString());
    }
    QStringList lines() const {
        QMutexLocker lock(&s_mutex);
        return s_lines;
    }

private:
    static void handle(QtMsgType, const QMessageLogContext&, const QString& message) {
        QMutexLocker lock(&s_mutex);
        s_lines.append(message);
    }
    static inline QMutex s_mutex;
    static inline QStringList s_lines;
    QtMessageHandler m_previous;
};

// The command lines of this process's running children, read from /proc.
inline QList<QStringList> childCommandLines() {
    QList<QStringList> children;
    const QString self = QString::number(getpid());
    for (const QString& pid : QDir("/proc").entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile stat("/proc/" + pid + "/stat");
        if (!stat.open(QIODevice::ReadOnly)) continue;
        const QByteArray line = stat.readAll();
        // Fields after the command name in parentheses: state, then the parent's pid.
        const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
        if (fields.size() < 2 || fields.at(1) != self.toUtf8() || fields.at(0) == "Z") continue;
        QFile cmdline("/proc/" + pid + "/cmdline");
        if (!cmdline.open(QIODevice::ReadOnly)) continue;
        QStringList arguments;
        for (const QByteArray& argument : cmdline.readAll().split('\0'))
            if (!argument.isEmpty()) arguments.append(QString::fromLocal8Bit(argument));
        if (!arguments.isEmpty()) children.append(arguments);
    }
    return children;
}

}  // namespace velmora::test
