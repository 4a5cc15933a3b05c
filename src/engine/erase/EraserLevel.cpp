#include "engine/erase/EraserLevel.h"

#include "engine/platform/UserDefaults.h"

namespace velmora::EraserLevel {

int stored() { return UserDefaults::integerForKey(kDefaultsKey); }

void store(int eraserTimes) { UserDefaults::setInteger(kDefaultsKey, eraserTimes); }

void writeDefaultIfUnset() {
    if (stored() == 0) store(1);
}

int clamped() { return qMax(1, stored()); }

QString displayName(int eraserTimes) {
    switch (eraserTimes) {
    case 2: return "Peter Gutmann's algorithm 2";
    case 3: return "U.S. Army AR380-19";
    case 7: return "DoD 5220.22-M ECE";
    case 35: return "Peter Gutmann's algorithm 35";
    default: return "HMG Infosec Standard 5";
    }
}

QString optionString(int eraserTimes, bool isSSD) {
    // Solid-state media gain nothing from more passes: one pass of random data.
    if (isSSD) return "-fsvrz";
    switch (eraserTimes) {
    case 3: return "-fEvrz";
    case 7: return "-fmvrz";
    case 35: return "-fvrz";
    default: return "-fsvrz";
    }
}

}  // namespace velmora::EraserLevel
