#pragma once

#include "support/DuplicateTestTree.h"
#include "engine/duplicate/getFileList.h"

#include <algorithm>
#include <unistd.h>

namespace velmora::test {

// A tree with every kind of near-duplicate, and the groups a correct search
// reports on it. Group order and leaf order follow the enumeration order,
// which the file system decides, so the expectation is derived from it.
struct TrickyTree {
    struct Group {
        QString name;
        QStringList leaves;  // absolute paths, the kept copy last
        bool operator==(const Group&) const = default;
    };

    TestTree tree;
    QList<QStringList> fileClasses;    // true duplicate sets (absolute paths)
    QList<QStringList> bundleClasses;  // true duplicate bundle sets
    QString unreadable;                // a copy of the "small" files, made unreadable by the caller

    TrickyTree() {
        const QByteArray a = randomBytes(3000, 1);
        fileClasses.append({tree.write("triple/one.txt", a), tree.write("triple/two.txt", a), tree.write("three.txt", a)});
        tree.write("same-size-1.bin", randomBytes(3000, 2));  // same size as the triple, other content
        tree.write("same-size-2.bin", randomBytes(3000, 3));
        QByteArray head = randomBytes(5000, 4), otherTail = head;
        otherTail.replace(1024, 3976, randomBytes(3976, 5));
        tree.write("same-head-1.dat", head);  // same first 1 KiB, other tail
        tree.write("same-head-2.dat", otherTail);
        // Two copies and a third file of their size sharing their first 2 KiB.
        const QByteArray copy = randomBytes(10000, 12);
        QByteArray sameStart = copy;
        sameStart.replace(2048, 7952, randomBytes(7952, 13));
        fileClasses.append({tree.write("near/x.dat", copy), tree.write("near/y.dat", copy)});
        tree.write("near/z.dat", sameStart);
        QByteArray lastByte = randomBytes(70000, 6), changed = lastByte;
        changed[changed.size() - 1] = char(changed.back() ^ 1);
        tree.write("last-byte-1.dat", lastByte);
        tree.write("last-byte-2.dat", changed);
        tree.write("empty-1", {});
        tree.write("empty-2", {});
        // Two names of one file are that file once, beside a real copy.
        const QString linked = tree.write("links/original.pdf", randomBytes(9000, 7));
        EXPECT_EQ(link(qPrintable(linked), qPrintable(tree.path("links/hard-link.pdf"))), 0);
        fileClasses.append({linked, tree.path("links/hard-link.pdf"), tree.write("links/copy.pdf", randomBytes(9000, 7))});
        unreadable = tree.write("small/locked.mp3", "hello world");
        fileClasses.append({tree.write("small/a.mp3", "hello world"), tree.write("small/b/c.mp3", "hello world"), unreadable});
        const QByteArray big = randomBytes(5 << 20, 8);  // more than one read chunk
        fileClasses.append({tree.write("big/1.mov", big), tree.write("big/2.mov", big)});

        // Bundles: equal files under other names pair up; an extra empty file
        // (same total size, one file more) or one changed file does not.
        const QByteArray bin = randomBytes(2000, 9), res = randomBytes(500, 10);
        tree.write("A.app/Contents/bin", bin);
        tree.write("A.app/Contents/res", res);
        tree.write("apps/B.app/x/other-name", bin);
        tree.write("apps/B.app/y", res);
        tree.write("C.app/bin", bin);
        tree.write("C.app/res", res);
        tree.write("C.app/extra", {});
        tree.write("D.app/bin", bin);
        tree.write("D.app/res", randomBytes(500, 11));
        bundleClasses.append({tree.path("A.app"), tree.path("apps/B.app")});
    }

    // The groups as the result tree must show them: bundle groups first.
    QList<Group> expectedGroups(const QStringList& unreadablePaths = {}) const {
        getFileList enumerator;
        FileListing files;
        QStringList bundles;
        enumerator.getListAtPath(tree.path(), files, bundles, 0);
        QStringList fileOrder;
        for (qsizetype i = 0; i < files.size(); ++i) fileOrder.append(files.path(i));

        QList<Group> groups;
        auto ordered = [](QStringList members, const QStringList& order) {
            std::sort(members.begin(), members.end(),
                      [&](const QString& x, const QString& y) { return order.indexOf(x) < order.indexOf(y); });
            return members;
        };
        QList<QStringList> bundleSets;
        for (const QStringList& set : bundleClasses) bundleSets.append(ordered(set, bundles));
        std::sort(bundleSets.begin(), bundleSets.end(),
                  [&](const QStringList& x, const QStringList& y) { return bundles.indexOf(x[0]) < bundles.indexOf(y[0]); });
        for (const QStringList& set : bundleSets)  // later bundles, then the first one found
            groups.append({QFileInfo(set[0]).fileName(), set.mid(1) + QStringList{set[0]}});

        QList<QStringList> fileSets;
        for (QStringList set : fileClasses) {
            for (const QString& path : unreadablePaths) set.removeAll(path);
            set.removeIf([&](const QString& path) { return !fileOrder.contains(path); });  // a further hard link
            fileSets.append(ordered(set, fileOrder));
        }
        std::sort(fileSets.begin(), fileSets.end(),
                  [&](const QStringList& x, const QStringList& y) { return fileOrder.indexOf(x[0]) < fileOrder.indexOf(y[0]); });
        // The run is "later copies, then the first found"; the tree then
        // moves the run's first entry to the end.
        for (const QStringList& set : fileSets) {
            const QStringList run = set.mid(1) + QStringList{set[0]};
            groups.append({QFileInfo(run[0]).fileName(), run.mid(1) + QStringList{run[0]}});
        }
        return groups;
    }
};

}  // namespace velmora::test
