#pragma once

#include "support/QtTestSupport.h"
#include "support/TempDataDir.h"
#include "engine/history/DoDataBase.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRandomGenerator>
#include <QStringList>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>
#include <unistd.h>

namespace velmora::test {

inline QString sourceDir() { return qEnvironmentVariable("VELMORA_SOURCE_DIR"); }
inline QString binDir() { return qEnvironmentVariable("VELMORA_BIN_DIR"); }
inline QString fixture(const QString& name) { return sourceDir() + "/tests/fixtures/volumes/" + name; }

// Runs a program and waits; the exit code, or -1 when it did not run.
inline int run(const QString& program, const QStringList& arguments, QByteArray* output = nullptr, int timeoutMs = 120000) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
        return -1;
    }
    if (output) *output = process.readAll();
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

// velmora-cli from the build in the folder given (else the temporary folder), with no
// one at its standard input and the extra environment; output and errors merged into
// *output. Its exit code, -1 when it did not end.
inline int cli(const QStringList& arguments, QByteArray* output, const QString& workingFolder = {},
               const QProcessEnvironment& extra = {}) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(extra);
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(workingFolder.isEmpty() ? QDir::tempPath() : workingFolder);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(binDir() + "/velmora-cli", arguments);
    if (!process.waitForFinished(300000)) {
        process.kill();
        process.waitForFinished();
        return -1;
    }
    *output = process.readAll();
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

inline void writeFile(const QString& path, const QByteArray& contents) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    ASSERT_EQ(file.write(contents), contents.size()) << path.toStdString();
}

inline QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

inline QStringList entriesOf(const QString& folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

// What blkid reads from the device itself (TYPE, LABEL, ...).
inline QString blkidValue(const std::string& node, const char* tag) {
    QByteArray value;
    run("blkid", {"-p", "-o", "value", "-s", tag, QString::fromStdString(node)}, &value);
    return QString::fromUtf8(value).trimmed();
}

// A file full of the marker, written through to the disk and then deleted the
// ordinary way: its blocks are free but still hold the marker.
inline void writeAndDeleteMarkerFile(const QString& path, const QByteArray& marker) {
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
        for (int i = 0; i < 4000; ++i) file.write(marker + " " + QByteArray::number(i) + "\n");
        file.flush();
        ::fsync(file.handle());
    }
    ASSERT_TRUE(QFile::remove(path));
    ::sync();
}

// The item rows (header rows left out) of every "WipeVolume" history entry.
inline QStringList volumeHistoryItems() {
    QStringList items;
    for (const HistoryRows& rows : DoDataBase::returnDoDataBase()->getAllDataWithKey(DoDataBase::kWipeVolume))
        for (const HistoryRow& row : rows)
            if (row.value("Items") != "Items") items.append(row.value("Items") + "|" + row.value("Result"));
    return items;
}

// A unique text that appears nowhere else on the machine.
inline QByteArray uniqueMarker() {
    return "VELMORA-RESIDUE-" + QByteArray::number(QRandomGenerator::system()->generate64(), 16) + "-" +
           QByteArray::number(QRandomGenerator::system()->generate64(), 16);
}

// The macOS layout against the fake disk utility (tests/fixtures/volumes/diskutil),
// which logs each command line it gets to the test's folder.
class FakeDiskUtilTestBase : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        ASSERT_TRUE(QFileInfo(fixture("diskutil")).isExecutable()) << "VELMORA_SOURCE_DIR must point at the sources";
    }

    QStringList loggedCommands() const {
        QFile log(m_root.filePath("diskutil.log"));
        if (!log.open(QIODevice::ReadOnly)) return {};
        return QString::fromUtf8(log.readAll()).split('\n', Qt::SkipEmptyParts);
    }

    TempDataDir m_data;
    QTemporaryDir m_root;
    ScopedEnv m_layout{"VELMORA_LAYOUT", "macos"};
    ScopedEnv m_volumes{"VELMORA_VOLUMES_ROOT", m_root.path() + "/Volumes"};
    ScopedEnv m_diskutil{"VELMORA_DISKUTIL", fixture("diskutil")};
    ScopedEnv m_log{"FAKE_DISKUTIL_LOG", m_root.filePath("diskutil.log")};
};

}  // namespace velmora::test
