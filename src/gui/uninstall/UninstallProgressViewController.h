#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QLabel;
class QListWidget;
class QProgressBar;
class QPushButton;
class QStackedWidget;

namespace velmora {

class SvgImageView;

// The progress of an uninstall: a bar and the path of the item just removed; at 100 the
// end view replaces it with the closing message, the items that could not be removed
// with their reasons, and "OK" (okButtonAction). Escape and Enter do nothing before the
// end view; there they press "OK".
class UninstallProgressViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    explicit UninstallProgressViewController(QWidget* parent);

    void changeProgressValue(int percent, const QString& path);
    void changeLabel(const QString& message);
    // "name: reason" lines of the items that were not removed.
    void setFailures(const QStringList& failures);

    int progressValue() const;
    QString pathText() const { return m_path; }
    QString messageText() const;
    bool isEndViewShown() const;
    QListWidget* failureList() const { return m_failureList; }
    QPushButton* okButton() const { return m_okButton; }

signals:
    void okButtonAction();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QWidget* createProgressView();
    QWidget* createEndView();

    QString m_path;
    QStackedWidget* m_views;
    QProgressBar* m_bar = nullptr;
    QLabel* m_pathLabel = nullptr;
    SvgImageView* m_endImage = nullptr;
    QLabel* m_endTitle = nullptr;
    QLabel* m_messageLabel = nullptr;
    QListWidget* m_failureList = nullptr;
    QPushButton* m_okButton = nullptr;
};

}  // namespace velmora
