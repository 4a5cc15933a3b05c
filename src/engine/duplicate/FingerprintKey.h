#pragma once

#include <QHash>
#include <QList>
#include <QtGlobal>

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

}  // namespace velmora
