#pragma once

#include "engine/inter/BrowserCleanJob.h"

namespace velmora::BrowserDeletion {

// One ticked category, copied out of the entries so that the work needs none of them.
struct CategoryTask {
    QString browserName;
    QString categoryName;
    BrowserRules rules = BrowserRules::None;
    QString urlStr;
    QString size;  // the text shown before, which some categories keep
    BrowerObj* category = nullptr;
};

// The per-browser deletion of one category. Cleaned only when the deletion is verified
// (every statement done and the table empty, or the files gone); Skipped when the category
// held nothing (no Firefox profile, no database, no file); else Failed with the reason.
CleanOutcome deleteGoogleWithBrower(const CategoryTask& task, const CleanOptions& options);
CleanOutcome deleteFirefoxWithBrower(const CategoryTask& task, const CleanOptions& options);
CleanOutcome deleteOpearWithBrower(const CategoryTask& task, const CleanOptions& options);
CleanOutcome deleteSafariWithBrower(const CategoryTask& task, const CleanOptions& options);
// Chooses by the task's rules.
CleanOutcome deleteCategory(const CategoryTask& task, const CleanOptions& options);

}  // namespace velmora::BrowserDeletion
