#pragma once

class QLabel;
class QPushButton;

/// The button that switches the stabilisation of one stage, and the light that tells whether the
/// stage is active. Button text and light text are the state of record.
class StageSwitch final
{
public:
    /// The widgets have to live longer than this.
    StageSwitch(QPushButton& button, QLabel& lightIcon, QLabel& lightText);
    StageSwitch(const StageSwitch&) = delete;
    StageSwitch& operator=(const StageSwitch&) = delete;

    /// Whether the button is checked, which a click has changed already.
    bool isWantedOn() const;
    void showOn(bool on);
    void showActive(bool active);
    /// Shows the state of the controller. Touches only what differs.
    void showState(bool on, bool active);

    void setEnabled(bool enabled);
    bool hasFocus() const;
    void setFocus();

private:
    bool showsOn() const;
    bool showsActive() const;

    QPushButton& button;
    QLabel& lightIcon;
    QLabel& lightText;
};
