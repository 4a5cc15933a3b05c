#pragma once

#include "engine/volumes/VolumeObj.h"

#include <QWidget>

namespace velmora {

// One volume of the drive-copy pickers: the disk icon, the name (also as tool tip), the
// used space over the capacity, the file-system type and a usage bar. A click, or Space
// or Return while it has the keyboard focus, chooses it.
class DiskListViewController : public QWidget {
    Q_OBJECT
public:
    static constexpr int kRowHeight = 64;

    DiskListViewController(const VolumeObj& volume, QWidget* parent = nullptr);

    const VolumeObj& volume() const { return m_volume; }
    void setChosen(bool chosen);
    bool isChosen() const { return m_chosen; }
    // The texts as shown, for the page's tests.
    QString usedText() const;
    // 100 - free * 100 / total, the quotient in whole numbers; 0 for a volume of no size.
    int usagePercent() const;

signals:
    void chosen(const velmora::VolumeObj& volume);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    VolumeObj m_volume;
    bool m_chosen = false;
    bool m_hovered = false;
};

}  // namespace velmora
