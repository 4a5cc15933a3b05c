#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace velmora {

class MLCircularIndicator;

// The search under way: a circular indicator (turning until the first
// progress arrives, then the percentage), the path being examined and "Stop".
class DuplicateSearchingView : public QWidget {
    Q_OBJECT
public:
    explicit DuplicateSearchingView(QWidget* parent = nullptr);

    // Back to the look of a search just started.
    void reset(const QString& searchPath);
    void setProgress(int percent);
    void setCurrentPath(const QString& path);
    // Shown once Stop was clicked, until the search has ended.
    void showStopping();

    MLCircularIndicator* indicator() const { return m_indicator; }
    QString currentPath() const { return m_path; }
    QPushButton* stopButton() const { return m_stopButton; }

signals:
    void stopScanBtnClicked();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void showPath();

    MLCircularIndicator* m_indicator;
    QLabel* m_titleLabel;
    QLabel* m_pathLabel;
    QPushButton* m_stopButton;
    QString m_path;
};

}  // namespace velmora
