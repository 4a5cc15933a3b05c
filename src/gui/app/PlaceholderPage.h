#pragma once

#include <QWidget>

class QLabel;

namespace velmora {

// The honest page of a tool that is not built yet: its title and
// "Not available yet". Pages with two modes change their title with the mode.
class PlaceholderPage : public QWidget {
    Q_OBJECT
public:
    PlaceholderPage(const QStringList& modeTitles, QWidget* parent = nullptr);
    QString title() const;

    // The mode hooks the main window sends to the two-mode pages.
    Q_INVOKABLE void changeFormatOrFreeSpaceView(int tag);  // 1 whole drive, 2 free space
    Q_INVOKABLE void setIsFormatOrRename(int isFormat);     // 1 "Disk Format", 0 "Disk Tool"

private:
    QStringList m_modeTitles;
    QLabel* m_title;
};

}  // namespace velmora
