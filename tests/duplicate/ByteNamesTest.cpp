#include "CliRun.h"
#include "engine/duplicate/DuplicateFilesOpt.h"
#include "engine/duplicate/DuplicateRemover.h"
#include "engine/duplicate/DuplicateResults.h"
#include "engine/platform/NativePath.h"
#include "support/TestFiles.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <climits>
#include <set>
#include <sys/stat.h>

// File names are bytes: names that are not text, hold a line break or start with a dash,
// names of the longest length, and trees deeper than PATH_MAX are searched and cleaned.
namespace velmora {
namespace {

using Paths = std::set<std::string>;

struct Found {
    std::unique_ptr<DuplicateResults> results;
    QStringList unreadable;
};

Found searchIn(const std::string& folder) {
    DuplicateFilesOpt finder;
    finder.beginSearchAtPath(pathFromNative(QByteArray::fromStdString(folder)), 0);
    Found found;
    EXPECT_TRUE(finder.getDuplicateFiles(found.results));
    found.unreadable = finder.unreadablePaths();
    return found;
}

// Each group as the byte paths of its copies.
std::vector<Paths> groupsOf(const DuplicateResults& results) {
    std::vector<Paths> groups;
    for (DuplicateResults::Group group : results.groups(DuplicateResults::None)) {
        Paths paths;
        for (DuplicateResults::Copy copy : results.copies(group)) paths.insert(results.nativePath(copy).toStdString());
        groups.push_back(paths);
    }
    return groups;
}

QList<QStringList> jsonGroups(const QByteArray& json) {
    QList<QStringList> groups;
    for (const QJsonValue& group : QJsonDocument::fromJson(json).object()["groups"].toArray()) {
        QStringList files;
        for (const QJsonValue& file : group["files"].toArray()) files.append(file.toString());
        groups.append(files);
    }
    return groups;
}

TEST(ByteNames, OddNamesAreOneGroupInTheEngineAndTheCliAndAreRemoved) {
    const test::TempDir dir;
    const std::string content = test::randomBytes(5000);
    const std::vector<std::string> names = {"bad\xff\xfename", "line\nbreak", "-dash", std::string(255, 'n')};
    Paths copies;
    for (const std::string& name : names) copies.insert(dir / name);
    for (const std::string& path : copies) test::writeFile(path, content);

    const Found found = searchIn(dir.path());
    ASSERT_TRUE(found.results);
    EXPECT_EQ(groupsOf(*found.results), std::vector<Paths>{copies});
    EXPECT_TRUE(found.unreadable.isEmpty()) << found.unreadable.join(' ').toStdString();

    // Names that are not plain text come back in the shell's $'...' form, the rest as they are.
    const QString folder = QString::fromStdString(dir.path());
    const QStringList expected = {"$'" + folder + "/bad\\xff\\xfename'", "$'" + folder + "/line\\nbreak'",
                                  folder + "/-dash", folder + '/' + QString(255, 'n')};
    const test::CliRun json = test::runCli({"dupes", "--json", folder});
    EXPECT_EQ(json.exitCode, 0) << json.err.toStdString();
    const QList<QStringList> groups = jsonGroups(json.out);
    ASSERT_EQ(groups.size(), 1) << json.out.toStdString();
    EXPECT_EQ(QSet<QString>(groups[0].begin(), groups[0].end()), QSet<QString>(expected.begin(), expected.end()));

    const test::CliRun plain = test::runCli({"dupes", folder});
    EXPECT_EQ(plain.exitCode, 0);
    for (const QString& line : expected) EXPECT_TRUE(plain.out.contains(("  " + line).toUtf8())) << plain.out.toStdString();

    // Removal acts on the real bytes: every copy but the kept (last listed) one goes.
    const test::CliRun removed = test::runCli({"dupes", "--delete", "--yes", folder});
    EXPECT_EQ(removed.exitCode, 0) << removed.err.toStdString();
    const qsizetype keptIndex = expected.indexOf(groups[0].last());
    ASSERT_GE(keptIndex, 0);
    for (size_t i = 0; i < names.size(); ++i) EXPECT_EQ(test::exists(dir / names[i]), qsizetype(i) == keptIndex) << i;
}

// 40 folders of 120-byte names: about 4,850 bytes of path, beyond PATH_MAX.
TEST(ByteNames, TreeDeeperThanPathMaxIsSearchedWithFewDescriptorsAndACopyRemoved) {
    const test::TempDir dir;
    const std::string name(120, 'd');
    const std::string deepest = test::makeDeepFolders(dir.path(), 40, name);
    ASSERT_GT(deepest.size(), size_t(PATH_MAX));
    std::string middle = dir.path();
    for (int level = 0; level < 20; ++level) middle += "/" + name;
    const std::string content = test::randomBytes(3000);
    const std::string top = dir / "top.bin", mid = middle + "/mid.bin", deep = deepest + "/deep.bin";
    for (const std::string& path : {top, mid, deep}) test::writeFile(path, content);
    // A copy in a folder 31 levels down that cannot be entered: named, not silently missing.
    std::string level30 = middle;
    for (int level = 20; level < 30; ++level) level30 += "/" + name;
    const std::string lockedFolder = test::makeDeepFolders(level30, 1, "locked");
    test::writeFile(lockedFolder + "/hidden.bin", content);
    ASSERT_EQ(chmod(lockedFolder.c_str(), 0), 0);

    // The CLI with 40 descriptors in all: a walk holding one per level could not get down.
    const test::CliRun run =
        test::runCli({"dupes", "--json", QString::fromStdString(dir.path())}, {"prlimit", "--nofile=40:40", "--"});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QList<QStringList> groups = jsonGroups(run.out);
    ASSERT_EQ(groups.size(), 1) << run.out.toStdString() << run.err.toStdString();
    EXPECT_EQ(QSet<QString>(groups[0].begin(), groups[0].end()),
              (QSet<QString>{QString::fromStdString(top), QString::fromStdString(mid), QString::fromStdString(deep)}));
    EXPECT_TRUE(run.err.contains(QByteArray::fromStdString("could not read \"" + lockedFolder + "\"")))
        << run.err.toStdString();
    ASSERT_EQ(chmod(lockedFolder.c_str(), 0755), 0);
    test::writeFile(lockedFolder + "/hidden.bin", "other");

    // The engine finds the same group and the remover takes the deepest copy away.
    const Found found = searchIn(dir.path());
    ASSERT_TRUE(found.results);
    DuplicateResults& results = *found.results;
    ASSERT_EQ(groupsOf(results), (std::vector<Paths>{{top, mid, deep}}));
    QList<DuplicateResults::Copy> deepCopy;
    for (DuplicateResults::Copy copy : results.copies(results.groups(DuplicateResults::None).front()))
        if (results.nativePath(copy).toStdString() == deep) deepCopy.append(copy);
    ASSERT_EQ(deepCopy.size(), 1);
    results.setSelectState(deepCopy.first(), true, true);
    DuplicateRemover remover;
    const DuplicateRemover::Verdict verdict = remover.remove(DuplicateRemover::plan(results, deepCopy).first());
    EXPECT_TRUE(verdict.removed()) << verdict.reason.toStdString();
    EXPECT_FALSE(test::exists(deep));
    EXPECT_TRUE(test::exists(top) && test::exists(mid));
}

}  // namespace
}  // namespace velmora
