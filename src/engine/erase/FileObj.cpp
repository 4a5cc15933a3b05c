#include "engine/erase/FileObj.h"

#include <QFileInfo>

namespace velmora {

void FileObj::setIsSymbolicLink() { isSymbolicLink = QFileInfo(url).isSymLink(); }

}  // namespace velmora
