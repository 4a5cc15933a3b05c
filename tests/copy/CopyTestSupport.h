#pragma once

#include "engine/copy/DoCopyFiles.h"
#include "engine/copy/EumeRoot.h"
#include "support/ChildProcess.h"
#include "support/QtTestSupport.h"

#include <QEventLoop>
#include <QTimer>
#include <dirent.h>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace velmora::test {

// A copy run to its end, with every progress report it made.
struct CopyRun {
    CopyResult result;
    std::vector<float> progress;
};

// Copies the ticked nodes under `sourceRoot` into `destination` with the engine.
// `whenStarted` runs once the copy is under way (to cancel it, for one).
inline CopyRun runCopy(const QString& sourceRoot, const FileNodeList& nodes, const QString& destination,
                       bool verify = false, const std::function<void(DoCopyFiles&)>& whenStarted = {}) {
    ensureApplication();
    CopyRun run;
    DoCopyFiles copy;
    QString error;
    EXPECT_TRUE(copy.setSourceRoot(sourceRoot, &error)) << error.toStdString();
    copy.setVerifyAfterCopying(verify);
    QEventLoop loop;
    // Queued to this thread: nested folders report from tasks of their own.
    QObject::connect(&copy, &DoCopyFiles::topCopyProgress, &loop, [&run](float percent) { run.progress.push_back(percent); });
    QObject::connect(&copy, &DoCopyFiles::copyEnded, &loop, [&] {
        run.result = copy.result();
        loop.quit();
    });
    QTimer::singleShot(120000, &loop, [&loop] {
        ADD_FAILURE() << "the copy did not end";
        loop.quit();
    });
    copy.doCopyFilesWithArr(nodes, destination);
    if (whenStarted) whenStarted(copy);
    loop.exec();
    return run;
}

// The whole top level of a folder, wholly ticked ("Copy All Files").
inline FileNodeList everythingIn(const QString& folder) {
    FileNodeList nodes;
    EumeRoot lister;
    lister.listFolder(folder, nullptr, false, [&nodes](const FileNodePtr& node) {
        node->state = FileNode::Ticked;
        nodes.append(node);
    });
    return nodes;
}

inline struct stat lstatOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
    return status;
}

// The one entry of a folder whose name starts with the prefix ("VLclone("), empty if none or several.
inline std::string onlyEntryStartingWith(const std::string& folder, const std::string& prefix) {
    std::vector<std::string> found;
    if (DIR* listing = opendir(folder.c_str())) {
        while (const dirent* entry = readdir(listing))
            if (std::string(entry->d_name).rfind(prefix, 0) == 0) found.push_back(entry->d_name);
        closedir(listing);
    }
    return found.size() == 1 ? found.front() : std::string();
}

}  // namespace velmora::test
