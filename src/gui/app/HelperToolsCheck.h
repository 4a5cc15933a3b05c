#pragma once

#include <QStringList>

class QWidget;

namespace velmora {

// The helper tools the application runs that are not where it looks for them
// (StandardPaths::toolPath), as their paths; empty when the installation is whole.
QStringList missingHelperTools();

// Says in a panel over `parent` (and in the velmora.app log) which helper tools are
// missing, so an incomplete installation is told at launch instead of failing in
// the middle of an erasure; answers the panel. Does nothing when none is missing.
QWidget* warnAboutMissingHelperTools(QWidget* parent);

}  // namespace velmora
