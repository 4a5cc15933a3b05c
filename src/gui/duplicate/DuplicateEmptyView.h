#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace velmora {

// Shown when a search found no duplicate: which folder was searched, and
// the way to search it again or to choose another folder.
class DuplicateEmptyView : public QWidget {
    Q_OBJECT
public:
    explicit DuplicateEmptyView(QWidget* parent = nullptr);

    void setSearchPath(const QString& path);
    QString messageText() const;
    QPushButton* chooseButton() const { return m_chooseButton; }
    QPushButton* searchButton() const { return m_searchButton; }

signals:
    void chooseFolder();
    void searchAgain();

private:
    QLabel* m_messageLabel;
    QPushButton* m_chooseButton;
    QPushButton* m_searchButton;
};

}  // namespace velmora
