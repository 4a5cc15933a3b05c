#pragma once

#include <string>
#include <sys/types.h>

namespace velmora::test {

// A child ("sleep") whose working folder is the given folder, so the file system there
// cannot be unmounted while it runs. Killed and reaped when the object goes.
class BusyFolder {
public:
    explicit BusyFolder(const std::string& folder);
    ~BusyFolder();
    BusyFolder(const BusyFolder&) = delete;
    BusyFolder& operator=(const BusyFolder&) = delete;

    pid_t pid() const { return m_pid; }  // -1 when it could not start

private:
    pid_t m_pid = -1;
};

}  // namespace velmora::test
