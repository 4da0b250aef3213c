#include "controls/exchangebuttons.h"

#include <QPushButton>

#include <algorithm>

namespace {

/// Time in which clicks that were made during an exchange arrive and are lost.
constexpr int settleMs = 20;

} // namespace

ExchangeButtons::ExchangeButtons(QWidget& owner, const std::vector<QPushButton*>& buttons)
    : dialog(owner)
{
    for (QPushButton* button : buttons)
        entries.push_back({button, button->isEnabledTo(&dialog)});
    // No event is taken during an exchange, so the first timer is the first thing behind it. What
    // the window system held back comes a little later.
    behindExchange.setSingleShot(true);
    settling.setSingleShot(true);
    settling.setTimerType(Qt::PreciseTimer);
    connect(&behindExchange, &QTimer::timeout, this, [this] { settling.start(settleMs); });
    connect(&settling, &QTimer::timeout, this, &ExchangeButtons::unlock);
}

void ExchangeButtons::lock()
{
    // Another exchange may begin before the buttons are back from the one before. This begins the
    // settling anew: it is due first, however long the exchange takes.
    behindExchange.start(0);
    if (isLocked)
        return;
    isLocked = true;
    takeFocus();
    for (const Entry& entry : entries)
        entry.button->setEnabled(false);
}

/// Disabled buttons would hand the focus on, and a key meant for them would press another one.
void ExchangeButtons::takeFocus()
{
    QWidget* const before = dialog.focusWidget();
    focused = has(before) ? before : nullptr;
    if (focused)
        before->clearFocus();
}

bool ExchangeButtons::has(const QWidget* widget) const
{
    return std::any_of(entries.begin(), entries.end(),
                       [widget](const Entry& entry) { return entry.button == widget; });
}

void ExchangeButtons::unlock()
{
    isLocked = false;
    for (const Entry& entry : entries)
        entry.button->setEnabled(entry.isAllowed);
    // Who has moved the focus meanwhile keeps it.
    QWidget* const before = focused;
    if (before && before->isEnabled() && !dialog.focusWidget())
        before->setFocus();
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
