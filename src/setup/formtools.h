#pragma once

#include <QList>
#include <QString>

class QDialog;
class QLabel;
class QLineEdit;
class QWidget;

/// What the connection dialog does to the widgets of its form.
namespace formtools {

/// A field that is to be corrected has a red border.
void markInvalid(QLineEdit& edit);
void markValid(QLineEdit& edit);

/// Shows a message.
void say(QLabel& info, const QString& text);
/// Hides a message. The label keeps its room, so that nothing moves when it appears.
void hideInPlace(QLabel& label);

/// Makes a dialog as wide as it may be and as high as the screen, in the middle of it.
void fillScreenHeight(QDialog& dialog);

/// Lets Tab reach the widgets one after another, behind `before`.
void setTabOrderBehind(QWidget& before, const QList<QWidget*>& widgets);

} // namespace formtools
