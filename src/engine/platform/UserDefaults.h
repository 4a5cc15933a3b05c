#pragma once

#include <QString>

namespace velmora {

// The application's user-defaults domain (integers only are needed). With
// VELMORA_DATA_DIR set the store is a file in that folder, so tests and scripts
// never touch the real user's defaults.
class UserDefaults {
public:
    static int integerForKey(const QString& key);
    static void setInteger(const QString& key, int value);  // synchronised at once
};

}  // namespace velmora
