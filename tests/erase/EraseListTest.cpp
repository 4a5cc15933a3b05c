// The post-order erase list built from the page's records, on real folders.
#include "EraseTestSupport.h"
#include "engine/erase/EraseList.h"

namespace velmora::test {
namespace {

class EraseListTest : public EraseTest {};

QStringList urls(const FileObjList& list) {
    QStringList paths;
    for (const FileObj& record : list) paths.append(record.url);
    return paths;
}

TEST_F(EraseListTest, FolderWithFileAndEmptySubfolderBecomesFileSubfolderFolder) {
    const QString folder = scratch("docs");
    writeFile(folder + "/note.txt", "12345");
    QDir().mkpath(folder + "/empty");
    const FileObjList list = EraseList::build({fileRecord(folder, true)});
    ASSERT_EQ(list.size(), 3);
    EXPECT_EQ(QSet<QString>({list.at(0).url, list.at(1).url}), QSet<QString>({folder + "/note.txt", folder + "/empty"}));
    EXPECT_EQ(list.at(2).url, folder);
    for (const FileObj& record : list.mid(0, 2)) {
        EXPECT_TRUE(record.isDir);  // contents records are all marked as folders
        EXPECT_EQ(record.type, "Folder");
        EXPECT_EQ(record.size, record.url.endsWith("note.txt") ? 5u : 0u);
    }
}

TEST_F(EraseListTest, ChosenLinkToAFolderIsNeverWalkedInto) {
    const QString target = scratch("target");
    writeFile(target + "/keep.txt", "keep");
    const QString link = scratch("link");
    ASSERT_TRUE(QFile::link(target, link));
    const FileObjList list = EraseList::build({fileRecord(link, true)});
    ASSERT_EQ(list.size(), 1);
    EXPECT_EQ(list.first().url, link);
}

TEST_F(EraseListTest, EveryItemPrecedesItsFolderAndOnlyTickedRecordsCount) {
    const QString root = scratch("root");
    writeFile(root + "/a/b/deep.txt", "d");
    writeFile(root + "/a/.hidden", "h");
    writeFile(root + "/top.txt", "t");
    writeFile(root + "/Viewer.app/Contents/Info.plist", "p");
    const QString bundle = scratch("Chosen.app");
    writeFile(bundle + "/Contents/Info.plist", "p");
    const QString unticked = scratch("unticked.txt");
    writeFile(unticked, "u");
    const QString outside = scratch("outside");
    writeFile(outside + "/private.txt", "not chosen");
    ASSERT_TRUE(QFile::link(outside, root + "/link-to-outside"));

    FileObj skipped = fileRecord(unticked);
    skipped.isSelect = false;
    const QStringList list = urls(EraseList::build({fileRecord(root, true), skipped, fileRecord(bundle, true)}));

    EXPECT_FALSE(list.contains(unticked));
    EXPECT_TRUE(list.contains(root + "/a/.hidden"));
    // A ticked bundle goes alone; a bundle inside a chosen folder is walked like any folder.
    EXPECT_EQ(list.last(), bundle);
    EXPECT_FALSE(list.contains(bundle + "/Contents"));
    EXPECT_TRUE(list.contains(root + "/Viewer.app/Contents/Info.plist"));
    // A link is listed as itself; what it points to is not chosen.
    EXPECT_TRUE(list.contains(root + "/link-to-outside"));
    EXPECT_FALSE(list.contains(root + "/link-to-outside/private.txt"));
    EXPECT_EQ(list.size(), 11);
    for (const QString& path : list) {
        const qsizetype parent = list.indexOf(QFileInfo(path).absolutePath());
        if (parent >= 0) {
            EXPECT_LT(list.indexOf(path), parent) << path.toStdString();
        }
    }
}

}  // namespace
}  // namespace velmora::test
