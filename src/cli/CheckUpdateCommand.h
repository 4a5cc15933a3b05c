#pragma once

#include <QStringList>

namespace velmora::cli {

// velmora-cli check-update [--json]: compares this build with the remote update list
// and prints the new version with its notes. Exit 0 when the list was read (update or
// not), 1 when it could not be fetched or read.
int runCheckUpdateCommand(QStringList args);

}  // namespace velmora::cli
