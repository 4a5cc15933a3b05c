#pragma once

#include "engine/volumes/VolumeObj.h"

#include <QFuture>
#include <QObject>
#include <QVariantMap>

namespace velmora {

// The disk-utility scan of the mounted volumes, for the erase screens and (in
// its own variant) the disk tool. Each volume is queried with
// "diskutil info -plist BSDNAME"; EFI volumes and exact duplicates are left out.
// The list is rebuilt on the background queue and handed over on the thread
// that owns the scanner.
class VolumeScanner : public QObject {
    Q_OBJECT

public:
    enum class Screen {
        Erase,     // fills volumeType (both fill diskUUID)
        DiskTool,  // fills diskType and parentWholeDisk instead, with its own runner
    };

    explicit VolumeScanner(Screen screen = Screen::Erase, QObject* parent = nullptr);
    ~VolumeScanner() override;  // waits for a scan under way

    const VolumeList& allVolumeArr() const { return m_allVolumeArr; }
    bool isScanV() const { return m_isScanV; }

    // Rebuilds the list unless a scan runs: empties it and emits scanBegan at
    // once, then scans in the background and emits scanEnded with the new list in place.
    void getallVolumes();
    // The background part, callable on its own: every mounted volume in discovery order.
    VolumeList scanAllVolumes() const;
    // Appends the volume behind a BSD name to the list when it qualifies.
    void getVolumeAllObjWithVolumeName(const QString& bsdName, VolumeList& list) const;
    QVariantMap getDisjInfo(const char* name) const;

    // Size text of the erase and disk-tool screens: "%.0f byte", then "%.2f" KB,
    // MB, GB, TB in powers of 1,000, from the value in single precision.
    static QString byteToSizeWithByte(qint64 bytes);

signals:
    void scanBegan();
    void scanEnded();

private:
    // The BSD names to query: the disks behind the entries of the volumes root on
    // the macOS layout, the mounted block devices on Linux.
    static QStringList bsdNamesOfMountedVolumes();

    const Screen m_screen;
    VolumeList m_allVolumeArr;
    bool m_isScanV = false;
    QFuture<VolumeList> m_scan;
};

}  // namespace velmora
