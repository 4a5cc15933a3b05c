// The source tree of a drive copy: what is listed, in which order, and how ticks spread.
#include "CopyTestSupport.h"

#include "engine/copy/Controller.h"
#include "support/TestFiles.h"

#include <QSignalSpy>

namespace velmora::test {
namespace {

FileNodePtr fileNode(const QString& name, quint64 size, FileNode* father = nullptr) {
    auto node = std::make_shared<FileNode>("/src/" + name, name, false, father);
    node->size = size;
    return node;
}

QStringList namesOf(const FileNodeList& nodes) {
    QStringList names;
    for (const FileNodePtr& node : nodes) names.append(node->name);
    return names;
}

TEST(CopyTree, NeverListedNamesAreLeftOutOfAListing) {
    TempDir root;
    for (const char* name : {".Trashes", ".fseventsd", ".Spotlight-V100", "Documents"}) mkdir((root / name).c_str(), 0755);
    writeFile(root / ".DS_Store", "x");
    writeFile(root / ".Trash.txt", "kept: only exact names are left out");
    FileNodeList nodes;
    EumeRoot().listFolder(QString::fromStdString(root.path()), nullptr, false,
                          [&nodes](const FileNodePtr& node) { nodes.append(node); });
    QStringList names = namesOf(nodes);
    names.sort();
    EXPECT_EQ(names, QStringList({".Trash.txt", "Documents"}));
}

TEST(CopyTree, OrderedInsertionPutsLargerFirstAndTheNewerOfEqualSizes) {
    FileNodeList rootArr{fileNode("ten", 10)};
    EumeRoot::insertFileInRootArrWithFile(rootArr, fileNode("thirty", 30));
    EumeRoot::insertFileInRootArrWithFile(rootArr, fileNode("twenty", 20));
    EXPECT_EQ(namesOf(rootArr), QStringList({"thirty", "twenty", "ten"}));
    EumeRoot::insertFileInRootArrWithFile(rootArr, fileNode("other twenty", 20));
    EumeRoot::insertFileInRootArrWithFile(rootArr, fileNode("one", 1));
    EXPECT_EQ(namesOf(rootArr), QStringList({"thirty", "other twenty", "twenty", "ten", "one"}));

    // Folders come unordered (appended as met) until the array is sorted, largest first.
    auto folder = std::make_shared<FileNode>("/src/folder", "folder", true, nullptr);
    folder->size = 25;
    rootArr.append(folder);
    EumeRoot::doRootArrSort(rootArr);
    EXPECT_EQ(namesOf(rootArr), QStringList({"thirty", "folder", "other twenty", "twenty", "ten", "one"}));
}

TEST(CopyTree, RootListingThroughTheControllerTicksEverythingForCopyAll) {
    ensureApplication();
    TempDir root;
    writeFile(root / "ten", std::string(10, 'a'));
    writeFile(root / "thirty", std::string(30, 'b'));
    writeFile(root / "twenty", std::string(20, 'c'));
    mkdir((root / "folder").c_str(), 0755);
    writeFile(root / "folder/inner", std::string(1000, 'd'));
    Controller controller;
    QSignalSpy ended(&controller, &Controller::endScan);
    controller.eumeAllRootFileNodeWithRootArr(QString::fromStdString(root.path()), true, true);
    ASSERT_TRUE(ended.wait(10000));
    const FileNodeList& rootArr = controller.rootArr();
    ASSERT_EQ(rootArr.size(), 4);
    // Files by size whatever the listing order, the folder where it was met.
    QStringList files = namesOf(rootArr);
    files.removeAll("folder");
    EXPECT_EQ(files, QStringList({"thirty", "twenty", "ten"}));
    for (const FileNodePtr& node : rootArr) EXPECT_EQ(node->state, FileNode::Ticked) << node->name.toStdString();
    const auto folder = std::find_if(rootArr.begin(), rootArr.end(), [](const FileNodePtr& n) { return n->isDirectory; });
    EXPECT_EQ((*folder)->size, 1000u);
    EXPECT_FLOAT_EQ(controller.getProgress(), 100.0f);
    EXPECT_EQ(controller.selectedSize(), 1060u);
}

TEST(CopyTree, TicksSpreadDownToTheListedContentsAndUpToEveryFather) {
    ensureApplication();
    Controller controller;
    auto top = std::make_shared<FileNode>("/src/top", "top", true, nullptr);
    auto folder = std::make_shared<FileNode>("/src/top/folder", "folder", true, top.get());
    auto other = fileNode("other", 5, top.get());
    auto first = fileNode("first", 100, folder.get());
    auto second = fileNode("second", 200, folder.get());
    folder->children = {first, second};
    top->children = {folder, other};
    controller.rootArr() = {top};

    controller.changeSelectWithNode(first.get(), true);
    EXPECT_EQ(folder->state, FileNode::PartlyTicked);
    EXPECT_EQ(top->state, FileNode::PartlyTicked);  // a partly ticked child makes its father partly ticked
    EXPECT_EQ(controller.selectedSize(), 100u);
    controller.changeSelectWithNode(second.get(), true);
    EXPECT_EQ(folder->state, FileNode::Ticked);
    EXPECT_EQ(top->state, FileNode::PartlyTicked);
    EXPECT_EQ(controller.selectAllState(), FileNode::PartlyTicked);
    controller.changeSelectWithNode(first.get(), false);
    controller.changeSelectWithNode(second.get(), false);
    EXPECT_EQ(folder->state, FileNode::NotTicked);
    EXPECT_EQ(top->state, FileNode::NotTicked);
    EXPECT_FALSE(controller.hasSelection());

    QSignalSpy selectAll(&controller, &Controller::selectAllButtonStateChanged);
    controller.changeSelectWithNode(top.get(), true);
    for (const FileNode* node : {folder.get(), first.get(), second.get(), other.get()}) EXPECT_EQ(node->state, FileNode::Ticked);
    ASSERT_FALSE(selectAll.isEmpty());
    EXPECT_EQ(selectAll.last().at(0).toInt(), FileNode::Ticked);
    EXPECT_EQ(controller.selectedSize(), 305u);

    // Contents listed later take a wholly ticked folder's tick.
    TempDir real;
    writeFile(real / "a", "a");
    auto listed = std::make_shared<FileNode>(QString::fromStdString(real.path()), "real", true, nullptr);
    listed->state = FileNode::Ticked;
    controller.eumeRoot().getNodeListWithFaterNode(listed.get());
    ASSERT_EQ(listed->children.size(), 1);
    EXPECT_EQ(listed->children.first()->state, FileNode::Ticked);
    EXPECT_EQ(listed->children.first()->father, listed.get());
}

}  // namespace
}  // namespace velmora::test
