#pragma once

#include "controls/waitcursor.h"

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
/// Shows a message and the pointer that tells to wait while something blocks. It is painted at
/// once, as no events are taken. At the end the message goes, unless another one replaced it, and
/// the label is as it was.
class BusyNote final
{
public:
    BusyNote(QLabel& info, const QString& text);
    ~BusyNote();
    BusyNote(const BusyNote&) = delete;
    BusyNote& operator=(const BusyNote&) = delete;

private:
    QLabel& info;
    QString text;
    QString textBefore;
    bool wasHidden;
    WaitCursor waiting;
};

/// Hides a message. The label keeps its room, so that nothing moves when it appears.
void hideInPlace(QLabel& label);

/// Makes a dialog as wide as it may be and as high as the screen, in the middle of it.
void fillScreenHeight(QDialog& dialog);

/// Lets Tab reach the widgets one after another, behind `before`.
void setTabOrderBehind(QWidget& before, const QList<QWidget*>& widgets);

} // namespace formtools
