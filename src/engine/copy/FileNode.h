#pragma once

#include <QList>
#include <QString>
#include <QtGlobal>
#include <memory>

namespace velmora {

class FileNode;
using FileNodePtr = std::shared_ptr<FileNode>;
using FileNodeList = QList<FileNodePtr>;

// One entry of the source tree of a drive copy. Paths and names are in the lossless form
// of NativePath (pathFromNative), so they give back the file system's bytes.
class FileNode {
public:
    enum State { NotTicked = 0, Ticked = 1, PartlyTicked = 2 };

    FileNode(const QString& path, const QString& name, bool isDirectory, FileNode* father)
        : path(path), name(name), isDirectory(isDirectory), father(father) {}

    QString path;              // absolute
    QString name;              // last component
    bool isDirectory = false;  // a real folder, not a link to one
    FileNode* father = nullptr;  // none at the top level; a father owns its children
    FileNodeList children;     // filled when the folder is listed
    bool childrenListed = false;
    quint64 size = 0;          // a file's size, or the total found below a folder once measured
    bool sizeKnown = false;
    int state = NotTicked;
};

}  // namespace velmora
