#include "engine/uninstall/LeftoverMatch.h"

namespace velmora::LeftoverMatch {
namespace {

bool isSeparator(QChar c) { return c == '.' || c == ' ' || c == '-' || c == '_'; }

// The longest exact match length of an entry for an application's name and identifier.
qsizetype exactLength(const QString& entryName, const QString& name, const QString& bundleID) {
    qsizetype best = -1;
    for (const QString& term : {name, bundleID})
        if (!term.trimmed().isEmpty() && isExactMatch(entryName, term)) best = qMax(best, matchedLength(entryName, term));
    return best;
}

}  // namespace

qsizetype matchedLength(const QString& entryName, const QString& term) {
    if (term.isEmpty()) return -1;
    if (entryName.startsWith(term, Qt::CaseInsensitive)) return term.size();
    const QString squeezed = QString(term).remove(' ');
    if (!squeezed.isEmpty() && entryName.startsWith(squeezed, Qt::CaseInsensitive)) return squeezed.size();
    return -1;
}

bool isExactMatch(const QString& entryName, const QString& term) {
    const qsizetype length = matchedLength(entryName, term);
    return length >= 0 && (length == entryName.size() || isSeparator(entryName.at(length)));
}

void markTicks(AMAppItemList& related, const QString& name, const QString& bundleID, const AMAppItemList& installed) {
    if (related.isEmpty()) return;
    const QString ownPath = related.first()->path;
    for (qsizetype i = 1; i < related.size(); ++i) {
        AMAppItem& item = *related[i];
        const QString entryName = item.path.section('/', -1);
        const qsizetype ours = exactLength(entryName, name, bundleID);
        item.isPossibleMatch = item.isPossibleMatch && ours < 0;
        for (const AMAppItemPtr& other : installed) {
            if (other->path == ownPath) continue;
            if (exactLength(entryName, other->name, other->bundleID) >= qMax<qsizetype>(ours, 0)) {
                item.sharedWith = other->name;
                break;
            }
        }
        item.preTicked = !item.isPossibleMatch && item.sharedWith.isEmpty();
    }
}

}  // namespace velmora::LeftoverMatch
