#pragma once

#include "engine/duplicate/FileIdentity.h"
#include "engine/duplicate/DuplicateResults.h"

#include <QList>
#include <QPair>
#include <QSet>
#include <QString>

namespace velmora {

// Removes chosen copies from duplicate groups, and only what is safe to
// remove: the copy must still be the file the search found (same device,
// inode, size and modification time, in the same folder), another copy of
// its group must still be on the disk unchanged, and the two must be equal
// byte for byte now. Anything else is left where it is and reported. The
// removal goes through the folder opened without following a link, so a
// folder swapped for a link cannot redirect it. Application bundles (folders)
// are compared file by file and removed by a walk that follows no link and
// stays on the bundle's file system.
class DuplicateRemover {
public:
    enum class Outcome { Removed, CopyChanged, KeptCopyChanged, LastCopy, Failed };

    struct Verdict {
        Outcome outcome = Outcome::Failed;
        QString reason;  // empty when removed
        bool removed() const { return outcome == Outcome::Removed; }
    };

    struct Copy {
        QString path;
        FileIdentity identity;
    };

    // One selected copy and the other copies of its group, those not
    // selected first: they are the ones meant to be kept.
    struct Removal {
        Copy copy;
        QList<Copy> others;
        bool isBundle = false;
    };

    // The removals for copies of a result, in their order.
    static QList<Removal> plan(const DuplicateResults& results, const QList<DuplicateResults::Copy>& selected);

    // Removes one copy if it is safe (see above). Copies this remover has
    // removed no longer count as copies of their group.
    Verdict remove(const Removal& removal);

private:
    using Inode = QPair<quint64, quint64>;

    // The checks and the removal; remove() keeps the record.
    Verdict removeChecked(const Removal& removal);

    QSet<Inode> m_removed;
};

}  // namespace velmora
