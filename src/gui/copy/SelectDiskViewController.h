#pragma once

#include "engine/volumes/VolumeObj.h"

#include <QList>
#include <QWidget>

class QLabel;
class QScrollArea;
class QVBoxLayout;

namespace velmora {

class DiskListViewController;

// A drive-copy picker: a heading and one DiskListViewController row per volume, stacked
// in the order of the list. The chosen volume (by its path) is marked; a click on a row
// hands its record on through doSelectDiskWithVolume. Up and Down in the focused list
// choose the volume above or below, as in a group of radio buttons.
class SelectDiskViewController : public QWidget {
    Q_OBJECT
public:
    SelectDiskViewController(const QString& heading, QWidget* parent = nullptr);

    void setVolumes(const VolumeList& volumes);
    // Marks the volume with this path; an empty path marks none.
    void setChosenPath(const QString& volumePath);
    const QList<DiskListViewController*>& rows() const { return m_rows; }
    DiskListViewController* rowOfPath(const QString& volumePath) const;

signals:
    void doSelectDiskWithVolume(const velmora::VolumeObj& volume);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QScrollArea* m_scrollArea;
    QWidget* m_list;
    QVBoxLayout* m_listLayout;
    QLabel* m_emptyLabel;
    QList<DiskListViewController*> m_rows;
    QString m_chosenPath;
};

}  // namespace velmora
