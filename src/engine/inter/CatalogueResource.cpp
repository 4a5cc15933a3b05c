#include "engine/inter/CatalogueResource.h"

#include "engine/platform/StandardPaths.h"

#include <QFile>
#include <plist/plist.h>

namespace velmora::CatalogueResource {
namespace {

// Read through libplist rather than into a QVariantMap, which would sort the keys:
// the catalogue's order is the order of the rows.
class Resource {
public:
    explicit Resource(const QString& name) {
        QFile file(":/browsers/" + name);
        if (!file.open(QIODevice::ReadOnly)) qFatal("the resource %s is missing", qPrintable(name));
        const QByteArray bytes = file.readAll();
        plist_from_memory(bytes.constData(), uint32_t(bytes.size()), &m_root);
        if (!m_root || plist_get_node_type(m_root) != PLIST_DICT) qFatal("the resource %s is not a dictionary", qPrintable(name));
    }
    ~Resource() { plist_free(m_root); }
    Resource(const Resource&) = delete;
    Resource& operator=(const Resource&) = delete;

    plist_t root() const { return m_root; }

private:
    plist_t m_root = nullptr;
};

template <typename Visit>
void forEachItem(plist_t dictionary, Visit visit) {
    plist_dict_iter it = nullptr;
    plist_dict_new_iter(dictionary, &it);
    for (;;) {
        char* key = nullptr;
        plist_t value = nullptr;
        plist_dict_next_item(dictionary, it, &key, &value);
        if (!value) break;
        visit(QString::fromUtf8(key), value);
        free(key);
    }
    free(it);
}

QString text(plist_t node) {
    if (!node || plist_get_node_type(node) != PLIST_STRING) return {};
    uint64_t length = 0;
    const char* value = plist_get_string_ptr(node, &length);
    return QString::fromUtf8(value, qsizetype(length));
}

// A string, or an array of strings.
QStringList texts(plist_t node) {
    if (!node) return {};
    if (plist_get_node_type(node) != PLIST_ARRAY) return {text(node)};
    QStringList list;
    for (uint32_t i = 0; i < plist_array_get_size(node); ++i) list.append(text(plist_array_get_item(node, i)));
    return list;
}

}  // namespace

QList<Browser> eraserHistory() {
    const bool macOS = StandardPaths::layout() == StandardPaths::Layout::MacOS;
    const Resource resource(macOS ? "EraserHistory-macos.plist" : "EraserHistory-linux.plist");
    QList<Browser> browsers;
    forEachItem(resource.root(), [&](const QString& key, plist_t categories) {
        Browser browser{key, {}};
        forEachItem(categories, [&](const QString& name, plist_t paths) { browser.categories.append({name, texts(paths)}); });
        browsers.append(browser);
    });
    return browsers;
}

QList<Programs> browserPrograms() {
    const Resource resource("BrowserPrograms-linux.plist");
    QList<Programs> list;
    forEachItem(resource.root(), [&](const QString& key, plist_t entry) {
        list.append({key, text(plist_dict_get_item(entry, "Rules")), text(plist_dict_get_item(entry, "Profile")),
                     texts(plist_dict_get_item(entry, "Programs")), texts(plist_dict_get_item(entry, "Executables")),
                     texts(plist_dict_get_item(entry, "DesktopEntries")), text(plist_dict_get_item(entry, "Icon"))});
    });
    return list;
}

}  // namespace velmora::CatalogueResource
