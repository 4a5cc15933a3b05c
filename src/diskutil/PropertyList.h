#pragma once

#include <cstdint>
#include <plist/plist.h>
#include <string>

namespace velmora::diskutil {

// An owned property-list node (dictionary or array) that is filled and then printed
// as XML, the format the application reads.
class PropertyList {
public:
    static PropertyList dictionary();
    static PropertyList array();
    ~PropertyList();
    PropertyList(PropertyList&& other) noexcept;
    PropertyList& operator=(PropertyList&&) = delete;
    PropertyList(const PropertyList&) = delete;
    PropertyList& operator=(const PropertyList&) = delete;

    void setString(const char* key, const std::string& value);
    void setBool(const char* key, bool value);
    void setInteger(const char* key, uint64_t value);
    void setChild(const char* key, PropertyList child);

    void appendString(const std::string& value);
    void appendChild(PropertyList child);

    std::string toXml() const;

private:
    explicit PropertyList(plist_t node) : m_node(node) {}
    plist_t release();

    plist_t m_node;
};

// The error dictionary {Error, ErrorMessage, ExitCode} of the disk utility.
PropertyList errorDictionary(const std::string& message, int exitCode);

}  // namespace velmora::diskutil
