#include "engine/platform/PropertyList.h"

#include <QDateTime>
#include <QFile>
#include <QSaveFile>
#include <QTimeZone>
#include <cstring>
#include <plist/plist.h>

namespace velmora {
namespace {

// Seconds between the Unix epoch and the property-list epoch (2001-01-01 UTC).
constexpr qint64 kPlistEpochOffset = 978307200;

// The text of a dictionary key, up to a NUL byte if it holds one. libplist's key getter
// aborts the process on such a key (a binary list can encode one), so the key is read
// from the XML that the writer makes of it.
QString keyText(plist_t key) {
    char* xml = nullptr;
    uint32_t length = 0;
    plist_to_xml(key, &xml, &length);
    const QByteArray text(xml, qsizetype(length));
    free(xml);
    const qsizetype start = text.indexOf("<key>") + 5;
    const qsizetype end = text.lastIndexOf("</key>");
    if (start < 5 || end < start) return {};
    // The writer escapes exactly these three characters.
    QByteArray bytes = text.mid(start, end - start);
    if (const qsizetype nul = bytes.indexOf('\0'); nul >= 0) bytes.truncate(nul);
    return QString::fromUtf8(bytes.replace("&lt;", "<").replace("&gt;", ">").replace("&amp;", "&"));
}

QVariant fromNode(plist_t node) {
    switch (plist_get_node_type(node)) {
    case PLIST_DICT: {
        QVariantMap map;
        plist_dict_iter it = nullptr;
        plist_dict_new_iter(node, &it);
        plist_t value = nullptr;
        for (plist_dict_next_item(node, it, nullptr, &value); value; plist_dict_next_item(node, it, nullptr, &value))
            map.insert(keyText(plist_dict_item_get_key(value)), fromNode(value));
        free(it);
        return map;
    }
    case PLIST_ARRAY: {
        QVariantList list;
        const uint32_t count = plist_array_get_size(node);
        for (uint32_t i = 0; i < count; ++i) list.append(fromNode(plist_array_get_item(node, i)));
        return list;
    }
    case PLIST_STRING: {
        // Through the pointer: libplist's copying getter aborts the process on a string
        // that holds a NUL byte, which any file may contain. The text ends at that byte.
        uint64_t length = 0;
        const char* text = plist_get_string_ptr(node, &length);
        return text ? QString::fromUtf8(text, qsizetype(strnlen(text, length))) : QString();
    }
    case PLIST_BOOLEAN: {
        uint8_t value = 0;
        plist_get_bool_val(node, &value);
        return bool(value);
    }
    case PLIST_UINT: {
        uint64_t value = 0;
        plist_get_uint_val(node, &value);
        // libplist keeps negative integers as their two's complement in a uint node.
        return qint64(value);
    }
    case PLIST_REAL: {
        double value = 0;
        plist_get_real_val(node, &value);
        return value;
    }
    case PLIST_DATA: {
        char* bytes = nullptr;
        uint64_t length = 0;
        plist_get_data_val(node, &bytes, &length);
        QByteArray result(bytes, qsizetype(length));
        free(bytes);
        return result;
    }
    case PLIST_DATE: {
        int32_t sec = 0, usec = 0;
        plist_get_date_val(node, &sec, &usec);
        return QDateTime::fromMSecsSinceEpoch((qint64(sec) + kPlistEpochOffset) * 1000 + usec / 1000, QTimeZone::utc());
    }
    default:
        return {};
    }
}

plist_t toNode(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::QVariantMap: {
        plist_t dict = plist_new_dict();
        const QVariantMap map = value.toMap();
        for (auto it = map.cbegin(); it != map.cend(); ++it)
            plist_dict_set_item(dict, it.key().toUtf8().constData(), toNode(it.value()));
        return dict;
    }
    case QMetaType::QVariantList:
    case QMetaType::QStringList: {
        plist_t array = plist_new_array();
        for (const QVariant& item : value.toList()) plist_array_append_item(array, toNode(item));
        return array;
    }
    case QMetaType::Bool:
        return plist_new_bool(value.toBool());
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        return plist_new_uint(value.toULongLong());
    case QMetaType::Double:
        return plist_new_real(value.toDouble());
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        return plist_new_data(bytes.constData(), uint64_t(bytes.size()));
    }
    case QMetaType::QDateTime: {
        const qint64 ms = value.toDateTime().toMSecsSinceEpoch() - kPlistEpochOffset * 1000;
        return plist_new_date(int32_t(ms / 1000), int32_t((ms % 1000) * 1000));
    }
    default:
        return plist_new_string(value.toString().toUtf8().constData());
    }
}

}  // namespace

QVariant propertyListFromData(const QByteArray& bytes) {
    if (bytes.isEmpty()) return {};
    plist_t root = nullptr;
    if (bytes.startsWith("bplist00"))
        plist_from_bin(bytes.constData(), uint32_t(bytes.size()), &root);
    else
        plist_from_xml(bytes.constData(), uint32_t(bytes.size()), &root);
    if (!root) return {};
    QVariant result = fromNode(root);
    plist_free(root);
    return result;
}

QVariant propertyListFromFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    return propertyListFromData(file.readAll());
}

QByteArray propertyListToXml(const QVariant& value) {
    plist_t root = toNode(value);
    char* xml = nullptr;
    uint32_t length = 0;
    plist_to_xml(root, &xml, &length);
    QByteArray result(xml, qsizetype(length));
    free(xml);
    plist_free(root);
    return result;
}

bool writePropertyListAtomically(const QString& path, const QVariant& value) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return false;
    file.write(propertyListToXml(value));
    return file.commit();
}

}  // namespace velmora
