#pragma once

#include <QString>

namespace velmora {

// The global erasure level ("EraserTimes" in the user defaults): the number of
// overwrite passes, one of 1, 2, 3, 7, 35. A stored 0 means never set.
namespace EraserLevel {

constexpr const char* kDefaultsKey = "EraserTimes";

int stored();                  // the raw stored integer
void store(int eraserTimes);   // written and synchronised at once
void writeDefaultIfUnset();    // start-up: a stored 0 becomes 1
int clamped();                 // what the engines run at: values below 1 read as 1
QString displayName(int eraserTimes);
// Option string of the secure-remove tool for one file at this level.
QString optionString(int eraserTimes, bool isSSD);

}  // namespace EraserLevel
}  // namespace velmora
