#pragma once

#include <QHash>
#include <QList>
#include <QtGlobal>
#include <algorithm>
#include <vector>

namespace velmora {

// What two files must share to be equal: size, first-block and whole-file
// CRC-64. Earlier stages leave the later fields 0.
struct FingerprintKey {
    quint64 size = 0;
    quint64 firstBlock = 0;
    quint64 whole = 0;

    friend bool operator==(const FingerprintKey&, const FingerprintKey&) = default;
    friend auto operator<=>(const FingerprintKey&, const FingerprintKey&) = default;
};

inline size_t qHash(const FingerprintKey& key, size_t seed = 0) {
    return qHashMulti(seed, key.size, key.firstBlock, key.whole);
}

// Splits `indices` into classes of equal key, each class in the order of
// `indices`, the classes in the order of their first member.
template <typename Key, typename KeyOf>
QList<QList<qsizetype>> classesByKey(const QList<qsizetype>& indices, KeyOf keyOf) {
    QHash<Key, qsizetype> classOfKey;
    classOfKey.reserve(indices.size());
    QList<QList<qsizetype>> classes;
    for (qsizetype index : indices) {
        const Key key = keyOf(index);
        auto slot = classOfKey.constFind(key);
        if (slot == classOfKey.constEnd()) {
            slot = classOfKey.insert(key, classes.size());
            classes.append(QList<qsizetype>());
        }
        classes[slot.value()].append(index);
    }
    return classes;
}

// The classes of two or more members among `indices`, found by sorting
// rather than hashing and left in place: `indices` ends up sorted by key
// (ascending within a key) and the answer tells where each class begins and
// ends in it, in the order of the classes' first members. For the lists of
// every listed file, where most classes have one member, this costs 8 bytes
// per class and nothing per member.
template <typename Key, typename KeyOf>
std::vector<std::pair<quint32, quint32>> sharedRunsBySorting(std::vector<quint32>& indices, KeyOf keyOf) {
    std::sort(indices.begin(), indices.end(), [&](quint32 x, quint32 y) {
        const Key kx = keyOf(x), ky = keyOf(y);
        return kx < ky || (kx == ky && x < y);
    });
    std::vector<std::pair<quint32, quint32>> runs;
    for (size_t start = 0; start < indices.size();) {
        const Key key = keyOf(indices[start]);
        size_t end = start + 1;
        while (end < indices.size() && keyOf(indices[end]) == key) ++end;
        if (end - start > 1) runs.emplace_back(quint32(start), quint32(end));
        start = end;
    }
    std::sort(runs.begin(), runs.end(), [&](const auto& x, const auto& y) { return indices[x.first] < indices[y.first]; });
    return runs;
}

}  // namespace velmora
