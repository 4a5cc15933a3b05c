// The erase list built from the page's records when the erase is confirmed, on real folders.
#include "support/EraseTestSupport.h"
#include "engine/erase/EraseList.h"
#include "engine/platform/NativePath.h"
#include "support/TestFiles.h"

#include <sys/stat.h>

namespace velmora::test {
namespace {

class EraseListTest : public EraseTest {};

TEST_F(EraseListTest, ChosenItemsStayWholeWithTheirFolderResolvedAndTheirIdentityPinned) {
    const QString real = scratch("real");
    writeFile(real + "/docs/note.txt", "12345");
    QDir().mkpath(real + "/docs/empty");
    const QString target = scratch("target");
    writeFile(target + "/keep.txt", "keep");
    ASSERT_TRUE(QFile::link(target, real + "/link"));
    ASSERT_TRUE(QFile::link(real, scratch("via")));
    const QString canonicalScratch = QFileInfo(scratch("")).canonicalFilePath();

    FileObj unticked = fileRecord(real + "/docs/note.txt");
    unticked.isSelect = false;
    // Reached through a link to their folder, as the user may have chosen them.
    const FileObjList list =
        EraseList::build({fileRecord(scratch("via/docs"), true), unticked, fileRecord(scratch("via/link"))});
    ASSERT_EQ(list.size(), 2);
    EXPECT_EQ(list.at(0).url, canonicalScratch + "/real/docs");  // one item, not its contents
    EXPECT_EQ(list.at(1).url, canonicalScratch + "/real/link");   // the link itself, not its target
    struct stat status;
    ASSERT_EQ(lstat(QFile::encodeName(real + "/link").constData(), &status), 0);
    EXPECT_EQ(list.at(1).device, quint64(status.st_dev));
    EXPECT_EQ(list.at(1).inode, quint64(status.st_ino));

    // Progress counts the folder and everything in it; a link counts once, never followed.
    EXPECT_EQ(EraseList::itemCount(list.at(0)), 3);
    EXPECT_EQ(EraseList::itemCount(list.at(1)), 1);
    EXPECT_EQ(EraseList::itemCount(fileRecord(real, true)), 5);

    // A tree deeper than PATH_MAX is counted whole, through folder descriptors, and a
    // name that is not UTF-8 keeps its bytes through the list.
    const QByteArray top = QFile::encodeName(scratch("top-")) + "\xff";
    ASSERT_EQ(mkdir(top.constData(), 0755), 0);
    velmora::test::writeFile(makeDeepFolders(top.toStdString(), 40, std::string(120, 'd')) + "/f", "data");
    const FileObjList deep = EraseList::build({fileRecord(pathFromNative(top), true)});
    ASSERT_EQ(deep.size(), 1);
    EXPECT_EQ(nativePath(deep.first().url), QFile::encodeName(canonicalScratch) + "/top-\xff");
    EXPECT_NE(deep.first().inode, 0u);
    EXPECT_EQ(EraseList::itemCount(deep.first()), 42);
}

}  // namespace
}  // namespace velmora::test
