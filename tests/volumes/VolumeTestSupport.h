#pragma once

#include "support/TempDataDir.h"
#include "engine/history/DoDataBase.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QStringList>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>
#include <unistd.h>

namespace velmora::test {

// The engine's timers, children and hand-overs need an application object.
inline void ensureApplication() {
    if (QCoreApplication::instance()) return;
    static int argc = 1;
    static char name[] = "test_volumes";
    static char* argv[] = {name, nullptr};
    new QCoreApplication(argc, argv);
}

inline QString sourceDir() { return qEnvironmentVariable("VELMORA_SOURCE_DIR"); }
inline QString binDir() { return qEnvironmentVariable("VELMORA_BIN_DIR"); }
inline QString fixture(const QString& name) { return sourceDir() + "/tests/fixtures/volumes/" + name; }

// Sets an environment variable for the lifetime of the object.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const QString& value) : m_name(name), m_old(qgetenv(name)), m_had(qEnvironmentVariableIsSet(name)) {
        qputenv(name, value.toUtf8());
    }
    ~ScopedEnv() {
        if (m_had) qputenv(m_name, m_old);
        else qunsetenv(m_name);
    }

private:
    const char* m_name;
    QByteArray m_old;
    bool m_had;
};

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

}  // namespace velmora::test
