#pragma once

#include <QTabBar>

namespace velmora {

// The seven tabs over the results: 0 All (labelled with the searched
// folder's name), then "Documents", "Videos", "Music", "Archives",
// "Pictures" and "Others".
class DuplicateTabBar : public QTabBar {
    Q_OBJECT
public:
    static constexpr int kTabCount = 7;

    explicit DuplicateTabBar(QWidget* parent = nullptr);
    // Names tab 0 after the searched folder (its last path component).
    void setAllTabLabel(const QString& searchPath);
    // A tab's label in full (the tab itself may show the folder's name shortened).
    QString label(int tab) const;

private:
    QString m_allLabel = "All";
};

}  // namespace velmora
