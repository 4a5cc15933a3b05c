#pragma once

#include <stdexcept>

namespace velmora::diskutil {

// A failure that ends the command; main prints it as the error dictionary.
class DiskUtilError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace velmora::diskutil
