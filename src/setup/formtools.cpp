#include "setup/formtools.h"

#include "controls/roomwhenhidden.h"

#include <QDialog>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <QStyle>

namespace formtools {

void markInvalid(QLineEdit& edit)
{
    edit.setStyleSheet(QStringLiteral("border: 1px solid red"));
}

void markValid(QLineEdit& edit)
{
    edit.setStyleSheet(QString());
}

void say(QLabel& info, const QString& text)
{
    info.setText(text);
    info.show();
}

BusyNote::BusyNote(QLabel& label, const QString& note)
    : info(label)
    , text(note)
    , textBefore(label.text())
    , wasHidden(label.isHidden())
{
    say(info, text);
    info.repaint();
}

BusyNote::~BusyNote()
{
    if (info.text() != text)
        return;
    info.setText(textBefore);
    info.setHidden(wasHidden);
}

void hideInPlace(QLabel& label)
{
    keepRoomWhenHidden(label);
    label.hide();
}

void fillScreenHeight(QDialog& dialog)
{
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    QSize border = dialog.frameGeometry().size() - dialog.size();
    // The frame is not known before the dialog was shown for the first time.
    if (border.isNull())
        border.setHeight(dialog.style()->pixelMetric(QStyle::PM_TitleBarHeight));
    const QSize room = available.size() - border;
    const QSize wanted(dialog.maximumWidth(), room.height());
    dialog.resize(wanted.boundedTo(room).expandedTo(dialog.minimumSizeHint()));
    QRect frame(QPoint(), dialog.size() + border);
    frame.moveCenter(available.center());
    dialog.move(frame.topLeft());
}

void setTabOrderBehind(QWidget& before, const QList<QWidget*>& widgets)
{
    QWidget* previous = &before;
    for (QWidget* widget : widgets) {
        QWidget::setTabOrder(previous, widget);
        previous = widget;
    }
}

} // namespace formtools
