#include "engine/volumes/ShellRunners.h"

#include "engine/platform/StandardPaths.h"

#include <QFile>
#include <cstdlib>
#include <cstdio>

namespace velmora {
namespace {

constexpr size_t kCommandBufferSize = 2048;

QString runWithOutputFile(const char* command, const char* outputFileName) {
    if (!command) return {};
    const QString outputPath = StandardPaths::tempDir() + "/" + outputFileName;
    if (QFile::exists(outputPath)) QFile::remove(outputPath);
    char line[kCommandBufferSize] = {};
    std::snprintf(line, sizeof line, "%s > %s", command, QFile::encodeName(outputPath).constData());
    std::system(line);
    return outputPath;
}

}  // namespace

QString execCommand(const char* command) { return runWithOutputFile(command, "SteadyWiperTemp.plist"); }

QString eraserDiskCommand(const char* command) { return runWithOutputFile(command, "eraserVolumeTemp.plist"); }

QString eraserExecCommand(const char* command) { return runWithOutputFile(command, "eraserVolumeTemp.plist"); }

QString aepairExecCommand(const char* command) { return runWithOutputFile(command, "SteadyWiperRepairTemp.plist"); }

QString diskExecCommand(const char* command) { return runWithOutputFile(command, "VelmoraDataEraserTemp.plist"); }

}  // namespace velmora
