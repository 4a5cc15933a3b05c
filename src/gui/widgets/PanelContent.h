#pragma once

#include <QList>
#include <QString>

class QLabel;
class QPushButton;
class QVBoxLayout;
class QWidget;

namespace velmora {

// The common face of the message panels (confirmations, results, notices):
// an image beside a bold title and a wrapped message, with the buttons in a
// row at the bottom right.
namespace PanelContent {

// Lays out image, title and message on `panel` and returns the panel's layout,
// so that the caller can add more content before the buttons.
QVBoxLayout* addMessage(QWidget* panel, const QString& image, const QString& title, const QString& message);
void addButtons(QVBoxLayout* layout, const QList<QPushButton*>& buttons);
// The message label laid out by addMessage().
QLabel* messageLabel(const QWidget* panel);

}  // namespace PanelContent
}  // namespace velmora
