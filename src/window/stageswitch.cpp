#include "window/stageswitch.h"

#include "controls/stagelook.h"
#include "window/windowtext.h"

#include <QLabel>
#include <QPushButton>

namespace {

QString onText()
{
    return WindowText::tr("ON");
}

QString activeText()
{
    return WindowText::tr("Active");
}

} // namespace

StageSwitch::StageSwitch(QPushButton& switchButton, QLabel& icon, QLabel& text)
    : button(switchButton)
    , lightIcon(icon)
    , lightText(text)
{
    showOn(false);
    showActive(false);
}

bool StageSwitch::isWantedOn() const
{
    return button.isChecked();
}

bool StageSwitch::showsOn() const
{
    return button.text() == onText();
}

bool StageSwitch::showsActive() const
{
    return lightText.text() == activeText();
}

void StageSwitch::showOn(bool on)
{
    button.setPalette(stabilisationPalette(on));
    button.setText(on ? onText() : WindowText::tr("OFF"));
    button.setChecked(on);
}

void StageSwitch::showActive(bool active)
{
    lightIcon.setPixmap(stageLight(active, lightIcon.maximumSize()));
    lightText.setText(active ? activeText() : WindowText::tr("Inactive"));
}

void StageSwitch::showState(bool on, bool active)
{
    if (showsOn() != on || button.isChecked() != on)
        showOn(on);
    if (showsActive() != active)
        showActive(active);
}

void StageSwitch::setEnabled(bool enabled)
{
    button.setEnabled(enabled);
}

bool StageSwitch::hasFocus() const
{
    return button.hasFocus();
}

void StageSwitch::setFocus()
{
    button.setFocus();
}
