#pragma once

#include <string>

namespace velmora {

// Lines on standard output (progress) and standard error (failures, warnings).
// The application hands the tool a pipe that it never reads, so a line is dropped
// rather than written when the pipe is full: progress must never stall the erasure.
void printProgress(const std::string& line);
// Each line ends with NUL instead of a line break from now on (the -0 option).
void endLinesWithNul();
void printProblem(const std::string& path, const std::string& reason);

} // namespace velmora
