#pragma once

#include <QString>

namespace velmora {

// The shell runners: each deletes its own output file in the per-user temporary
// folder, runs "COMMAND > OUTPUT" through the system shell, waits, and returns the
// output path for the caller to read. A null command gives an empty path. The
// command's exit status is never read.
QString execCommand(const char* command);        // "SteadyWiperTemp.plist"
QString eraserDiskCommand(const char* command);  // "eraserVolumeTemp.plist"
QString eraserExecCommand(const char* command);  // "eraserVolumeTemp.plist"
QString aepairExecCommand(const char* command);  // "SteadyWiperRepairTemp.plist"
QString diskExecCommand(const char* command);    // "VelmoraDataEraserTemp.plist" (drive-copy picker)

}  // namespace velmora
