#pragma once

#include "engine/volumes/ShellRunners.h"

#include <QStringList>

namespace velmora {

// The platform's disk utility (StandardPaths::diskUtilPath) with these arguments,
// each one argument of the child whatever it holds.
CommandLine diskUtilLine(const QStringList& arguments);

// The command run with administrator rights: on Linux, when not root, through
// pkexec; elsewhere unchanged (the macOS disk utility needs no rights to erase).
CommandLine asAdministrator(const CommandLine& command);

// Why a disk-utility child that did not succeed failed, in words: pkexec's
// refusal (126, 127) is told apart from the utility's own error.
QString diskUtilFailure(const CommandLine& command, int exitCode, const QString& details);

}  // namespace velmora
