#include "diskutil/PropertyList.h"

#include <utility>

namespace velmora::diskutil {

PropertyList PropertyList::dictionary() {
    return PropertyList(plist_new_dict());
}

PropertyList PropertyList::array() {
    return PropertyList(plist_new_array());
}

PropertyList::~PropertyList() {
    if (m_node) plist_free(m_node);
}

PropertyList::PropertyList(PropertyList&& other) noexcept : m_node(std::exchange(other.m_node, nullptr)) {}

plist_t PropertyList::release() {
    return std::exchange(m_node, nullptr);
}

void PropertyList::setString(const char* key, const std::string& value) {
    plist_dict_set_item(m_node, key, plist_new_string(value.c_str()));
}

void PropertyList::setBool(const char* key, bool value) {
    plist_dict_set_item(m_node, key, plist_new_bool(value ? 1 : 0));
}

void PropertyList::setInteger(const char* key, uint64_t value) {
    plist_dict_set_item(m_node, key, plist_new_uint(value));
}

void PropertyList::setChild(const char* key, PropertyList child) {
    plist_dict_set_item(m_node, key, child.release());
}

void PropertyList::appendString(const std::string& value) {
    plist_array_append_item(m_node, plist_new_string(value.c_str()));
}

void PropertyList::appendChild(PropertyList child) {
    plist_array_append_item(m_node, child.release());
}

std::string PropertyList::toXml() const {
    char* xml = nullptr;
    uint32_t length = 0;
    plist_to_xml(m_node, &xml, &length);
    std::string text(xml ? xml : "", length);
    plist_to_xml_free(xml);
    if (!text.ends_with('\n')) text += '\n';
    return text;
}

PropertyList errorDictionary(const std::string& message, int exitCode) {
    PropertyList error = PropertyList::dictionary();
    error.setBool("Error", true);
    error.setString("ErrorMessage", message);
    error.setInteger("ExitCode", static_cast<uint64_t>(exitCode));
    return error;
}

}  // namespace velmora::diskutil
