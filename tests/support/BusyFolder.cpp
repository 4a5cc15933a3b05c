#include "support/BusyFolder.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

extern char** environ;

namespace velmora::test {

BusyFolder::BusyFolder(const std::string& folder) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
    char program[] = "/bin/sleep";
    char seconds[] = "600";
    char* argv[] = {program, seconds, nullptr};
    if (posix_spawn(&m_pid, program, &actions, nullptr, argv, environ) != 0) m_pid = -1;
    posix_spawn_file_actions_destroy(&actions);
}

BusyFolder::~BusyFolder() {
    if (m_pid <= 0) return;
    kill(m_pid, SIGKILL);
    waitpid(m_pid, nullptr, 0);
}

}  // namespace velmora::test
