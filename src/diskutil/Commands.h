#pragma once

#include <string>
#include <vector>

namespace velmora::diskutil {

// Each command takes the arguments after its verb, prints its result on standard
// output and throws DiskUtilError when it fails.

void infoCommand(const std::vector<std::string>& args);         // -plist TARGET
void listCommand(const std::vector<std::string>& args);         // -plist
void listFilesystemsCommand(const std::vector<std::string>& args);  // -plist
void renameCommand(const std::vector<std::string>& args);       // TARGET NAME
void ejectCommand(const std::vector<std::string>& args);        // TARGET
void eraseVolumeCommand(const std::vector<std::string>& args);  // FORMAT NAME DEVICE
void reformatCommand(const std::vector<std::string>& args);     // DEVICE

}  // namespace velmora::diskutil
