#pragma once

#include <QString>

namespace velmora {

// Whether the browser data may be read. Status: 0 undetermined, 1 denied, 2 granted.
// macOS: the probe of "Library/Safari" in the user's home. Linux: 2 when every browser
// profile folder that exists can be listed, else 1 with that folder in unreadableFolder().
class FullDiskAccessAuthorizer {
public:
    static FullDiskAccessAuthorizer& sharedInstance();

    int authorizationStatus();
    int getAuthorization();  // 1 and 2 pass through, anything else becomes 0
    // The folder that made the last status 1 ("" otherwise).
    QString unreadableFolder() const { return m_unreadableFolder; }
    QString unreadableReason() const { return m_unreadableReason; }  // the system's reason
    // Whether the panel is shown instead of going on: macOS from 10.14 when the
    // status is not 2; Linux when a profile folder cannot be read.
    bool needsPanel();
    // The address of the Full Disk Access list in the system settings ("" on Linux);
    // the page opens it.
    static QString settingsUrl();
    // The system version as major * 100 + minor (0 on Linux).
    static int systemVersion();

private:
    FullDiskAccessAuthorizer() = default;
    int macStatus();
    int linuxStatus();

    QString m_unreadableFolder;
    QString m_unreadableReason;
};

}  // namespace velmora
