#include "controls/exchangebuttons.h"

#include <QPointer>
#include <QPushButton>
#include <QTimer>

ExchangeButtons::ExchangeButtons(QWidget& owner, const std::vector<QPushButton*>& buttons)
    : dialog(owner)
{
    for (QPushButton* button : buttons)
        entries.push_back({button, button->isEnabledTo(&dialog)});
}

void ExchangeButtons::lock()
{
    if (isLocked)
        return;
    isLocked = true;
    const QPointer<QWidget> focused = dialog.focusWidget();
    for (const Entry& entry : entries)
        entry.button->setEnabled(false);
    // Disabling has moved the focus on. It comes back, unless the user has moved it himself.
    const QPointer<QWidget> movedTo = dialog.focusWidget();
    QTimer::singleShot(0, this, [this, focused, movedTo] {
        unlock();
        if (focused && focused->isEnabled() && dialog.focusWidget() == movedTo)
            focused->setFocus();
    });
}

void ExchangeButtons::unlock()
{
    isLocked = false;
    for (const Entry& entry : entries)
        entry.button->setEnabled(entry.isAllowed);
}

void ExchangeButtons::allow(const QPushButton& button, bool allowed)
{
    for (Entry& entry : entries) {
        if (entry.button != &button)
            continue;
        entry.isAllowed = allowed;
        entry.button->setEnabled(allowed && !isLocked);
    }
}
