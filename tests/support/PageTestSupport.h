#pragma once

#include <functional>

// What the page tests share: the look the pages are laid out for, and serving the
// event loop while a page or the engine behind it works.
namespace velmora::test {

// A 12-point application font and the product's style, so that layout checks and
// screenshots measure the pages as users see them.
void usePageFontAndStyle();

// Serves the event loop until the condition holds; false after the timeout.
bool waitUntil(const std::function<bool()>& condition, int timeoutMs = 60000);

// Serves the event loop for a while (animations, deferred deletes).
void serveEventsFor(int ms);

}  // namespace velmora::test
