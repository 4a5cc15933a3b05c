#pragma once

#include <QList>
#include <QSize>
#include <QString>

class QLabel;
class QPushButton;
class QVBoxLayout;
class QWidget;

namespace velmora {

// The face of the duplicate finder's message panels: an image beside a bold
// title and a wrapped message, and a row of buttons at the bottom right.
namespace DuplicatePanelContent {

// An image of the application drawn at `size`, for the panels and the views.
QLabel* image(const QString& name, QSize size, QWidget* parent);
// Lays out image, title and message on `panel`; answers the panel's layout so
// that more content can go in before the buttons.
QVBoxLayout* addMessage(QWidget* panel, const QString& image, const QString& title, const QString& message);
void addButtons(QVBoxLayout* layout, const QList<QPushButton*>& buttons);
// The message label laid out by addMessage().
QLabel* messageLabel(const QWidget* panel);

}  // namespace DuplicatePanelContent
}  // namespace velmora
