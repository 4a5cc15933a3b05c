#include "engine/duplicate/DuplicateResults.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace velmora {
namespace {

using Group = DuplicateResults::Group;
using Copy = DuplicateResults::Copy;

// A result with one group per (name, number of copies): copy i of a group is
// /copy<i>/<name>, 10 bytes; names ending in ".app" make bundle groups.
std::unique_ptr<DuplicateResults> makeResults(const QList<QPair<QString, int>>& groups) {
    auto listing = std::make_shared<FileListing>();
    struct stat st {};
    std::vector<quint32> folders;
    std::vector<std::vector<quint32>> fileGroups;
    for (const auto& [name, copies] : groups) {
        std::vector<quint32> files;
        for (int i = 0; i < copies && !name.endsWith(".app"); ++i) {
            if (size_t(i) == folders.size()) folders.push_back(listing->addFolder(QString("/copy%1").arg(i).toUtf8(), st));
            st.st_size = 10;
            ++st.st_ino;
            const QByteArray bytes = name.toUtf8();
            files.push_back(quint32(listing->size()));
            listing->addFile(folders[size_t(i)], bytes.constData(), size_t(bytes.size()), st);
        }
        fileGroups.push_back(files);
    }
    auto results = std::make_unique<DuplicateResults>(listing);
    for (qsizetype g = 0; g < groups.size(); ++g) {
        const auto& [name, copies] = groups[g];
        if (!name.endsWith(".app")) {
            results->addFileGroup(fileGroups[size_t(g)]);
            continue;
        }
        QList<DuplicateResults::Bundle> bundles;
        for (int i = 0; i < copies; ++i) bundles.append({QString("/copy%1/%2").arg(i).arg(name), name, 10, {}});
        results->addBundleGroup(bundles);
    }
    results->finishGroups();
    return results;
}

QStringList namesIn(const DuplicateResults& results, DuplicateResults::Category category) {
    QStringList names;
    for (Group group : results.groups(category)) names.append(results.groupName(group));
    return names;
}

TEST(Results, CategoryPlacement) {
    const auto results = makeResults({{"report.PDF", 2}, {"song.mp3", 2}, {"clip.mov", 2}, {"backup.tar.gz", 2},
                                      {"photo.jpg", 3}, {"data.zip", 2}, {"Tool.app", 2}, {"README", 2}});
    EXPECT_EQ(namesIn(*results, DuplicateResults::Documents), QStringList{"report.PDF"});
    EXPECT_EQ(namesIn(*results, DuplicateResults::Music), QStringList{"song.mp3"});
    EXPECT_EQ(namesIn(*results, DuplicateResults::Videos), QStringList{"clip.mov"});
    EXPECT_EQ(namesIn(*results, DuplicateResults::Archives), QStringList{"data.zip"});
    EXPECT_EQ(namesIn(*results, DuplicateResults::Pictures), QStringList{"photo.jpg"});
    EXPECT_EQ(namesIn(*results, DuplicateResults::Others), (QStringList{"backup.tar.gz", "Tool.app", "README"}));
    EXPECT_EQ(results->categorySize(DuplicateResults::Pictures), 30u);
    EXPECT_EQ(results->groups(DuplicateResults::None).size(), 8u);
    // Tabs cross the numbers of Music and Videos.
    EXPECT_EQ(&results->groupsForTab(2), &results->groups(DuplicateResults::Videos));
    EXPECT_EQ(&results->groupsForTab(3), &results->groups(DuplicateResults::Music));
    EXPECT_EQ(&results->groupsForTab(0), &results->groups(DuplicateResults::None));
    const Group photo = results->groups(DuplicateResults::Pictures).front();
    EXPECT_EQ(results->groupExtension(photo), "jpg");
    EXPECT_EQ(results->path(results->copyAt(photo, 2)), "/copy2/photo.jpg");
    const Group tool = results->groups(DuplicateResults::Others)[1];
    EXPECT_EQ(results->groupExtension(tool), "APP");
    EXPECT_EQ(results->path(results->copyAt(tool, 1)), "/copy1/Tool.app");
}

TEST(Results, SelectAllKeepsTheLastCopyOfEachGroup) {
    auto results = makeResults({{"a.txt", 3}, {"b.jpg", 2}});
    results->setAllSelectOrNoSelect(DuplicateResults::None, true);
    const Group group = results->groups(DuplicateResults::None)[0];
    const QList<Copy> copies = results->copies(group);
    EXPECT_EQ(results->groupLabel(group), "2/3");
    EXPECT_EQ(results->groupState(group), DuplicateResults::PartlySelected);
    EXPECT_FALSE(results->isSelected(copies[2]));
    ASSERT_EQ(results->allSelectNumArr().size(), 3);
    EXPECT_EQ(results->allSelectNumArr()[0], copies[0]);
    EXPECT_EQ(results->allSelectNumArr()[2], results->copyAt(results->groups(DuplicateResults::None)[1], 0));

    // Ticking the last unselected copy needs confirmation.
    EXPECT_FALSE(results->setSelectState(copies[2], true));
    EXPECT_FALSE(results->isSelected(copies[2]));
    EXPECT_TRUE(results->setSelectState(copies[2], true, true));
    EXPECT_EQ(results->groupState(group), DuplicateResults::Selected);
    EXPECT_EQ(results->groupLabel(group), "3/3");
    EXPECT_TRUE(results->setSelectState(copies[0], false));
    EXPECT_EQ(results->groupLabel(group), "2/3");
    // The selection keeps the order of ticking: the copy ticked again comes last.
    EXPECT_TRUE(results->setSelectState(copies[0], true, true));
    EXPECT_EQ(results->allSelectNumArr().last(), copies[0]);

    results->setAllSelectOrNoSelect(DuplicateResults::None, false);
    EXPECT_TRUE(results->allSelectNumArr().isEmpty());
    EXPECT_EQ(results->groupState(group), DuplicateResults::NotSelected);
    EXPECT_EQ(results->groupLabel(group), "0/3");
}

TEST(Results, RemovalBookkeeping) {
    auto results = makeResults({{"a.txt", 3}, {"b.jpg", 3}, {"c.txt", 4}});
    results->setAllSelectOrNoSelect(DuplicateResults::None, true);
    const QList<Copy> selected = results->allSelectNumArr();
    ASSERT_EQ(selected.size(), 7);
    const Group first = results->groupOf(selected[0]);

    // Removing both selected copies of a select-all group drops the group
    // from every list of groups.
    results->refreshOutlineView({selected[0]});
    EXPECT_EQ(results->copyCount(first), 2);
    EXPECT_EQ(results->rowOfCopy(selected[1]), 0);
    EXPECT_EQ(results->copyAt(first, 0), selected[1]);
    EXPECT_EQ(results->groupSize(first), 20u);
    EXPECT_EQ(results->groupLabel(first), "1/2");
    results->refreshOutlineView({selected[1]});
    EXPECT_TRUE(results->isDropped(first));
    EXPECT_EQ(namesIn(*results, DuplicateResults::None), (QStringList{"b.jpg", "c.txt"}));
    EXPECT_EQ(namesIn(*results, DuplicateResults::Documents), QStringList{"c.txt"});

    // Only one copy of the picture could be removed: it stays, with a label
    // that says whether any copy is still selected, not how many.
    results->refreshOutlineView({selected[2], selected[4]});
    EXPECT_EQ(results->groupLabel(results->groupOf(selected[2])), "1/2");
    EXPECT_EQ(results->groupLabel(results->groupOf(selected[4])), "1/3");
    EXPECT_EQ(results->groups(DuplicateResults::Pictures).size(), 1u);
    EXPECT_EQ(results->forgetRemoved({selected[0], selected[1], selected[2], selected[4]}), 3);
    EXPECT_EQ(results->allSelectNumArr(), (QList<Copy>{selected[3], selected[5], selected[6]}));
}

}  // namespace
}  // namespace velmora
