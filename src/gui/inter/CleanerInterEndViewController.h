#pragma once

#include "gui/widgets/MAAttachedWindow.h"

#include <QStringList>

class QLabel;
class QPushButton;

namespace velmora {

class SvgImageView;

// The end of a clean run: what was cleaned, and each category that could not
// be cleaned with its reason. The page creates it once and shows it after
// every run; "OK" or Escape closes it.
class CleanerInterEndViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    explicit CleanerInterEndViewController(QWidget* parent);
    // cleaned: categories cleaned; skipped: categories that named nothing to clean;
    // failures: "Browser / Category: reason" lines.
    void setResult(int cleaned, int skipped, const QStringList& failures);
    QString titleText() const;
    QString messageText() const;
    QPushButton* okButton() const { return m_okButton; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    SvgImageView* m_image = nullptr;
    QLabel* m_title = nullptr;
    QPushButton* m_okButton;
};

}  // namespace velmora
