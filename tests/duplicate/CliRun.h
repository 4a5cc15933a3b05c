#pragma once

#include <QProcess>
#include <QStringList>
#include <gtest/gtest.h>
#include <unistd.h>

namespace velmora::test {

struct CliRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

// Runs velmora-cli, optionally behind a wrapper command (prlimit). As root
// it runs without the capabilities that let root read any file, so that an
// unreadable file is unreadable.
inline CliRun runCli(const QStringList& args, const QStringList& wrapper = {}) {
    const QString cli = qEnvironmentVariable("VELMORA_BIN_DIR") + "/velmora-cli";
    QStringList command = wrapper;
    if (geteuid() == 0) command << "setpriv" << "--bounding-set=-dac_override,-dac_read_search";
    command << cli << args;
    QProcess process;
    process.start(command.takeFirst(), command);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(120000));
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

}  // namespace velmora::test
