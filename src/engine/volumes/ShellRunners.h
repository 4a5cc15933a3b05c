#pragma once

#include <QString>
#include <QStringList>

namespace velmora {

// A child process to start: the program and its arguments. No shell ever sees
// them, so names, labels and paths inside are data, whatever characters they hold.
struct CommandLine {
    QString program;
    QStringList arguments;
};

// How a runner's child ended and where its standard output is.
struct CommandResult {
    QString outputPath;        // the runner's output file; empty when the command was null
    QByteArray output;         // the child's standard output, as written to the file
    bool started = false;      // the child ran
    bool exitedNormally = false;
    int exitCode = -1;
    QString failure;           // why it did not succeed (with the child's standard error); empty on success

    bool succeeded() const { return started && exitedNormally && exitCode == 0 && failure.isEmpty(); }
};

// The runners: each removes its own output file in the per-user temporary folder,
// creates it afresh (exclusively, owner-only, never through a link), runs the
// program as a child with the arguments, waits, and writes the child's standard
// output into the file. An empty program runs nothing and gives an empty path.
// One runner runs one child at a time, so two threads never replace each
// other's file; read the output from the result, which no later run changes.
CommandResult execCommand(const CommandLine& command);        // "SteadyWiperTemp.plist"
CommandResult eraserDiskCommand(const CommandLine& command);  // "eraserVolumeTemp.plist"
CommandResult eraserExecCommand(const CommandLine& command);  // "eraserVolumeTemp.plist"
CommandResult aepairExecCommand(const CommandLine& command);  // "SteadyWiperRepairTemp.plist"
CommandResult diskExecCommand(const CommandLine& command);    // "VelmoraDataEraserTemp.plist" (drive-copy picker)

}  // namespace velmora
