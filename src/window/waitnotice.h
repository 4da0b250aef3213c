#pragma once

#include <QLabel>

/// Says on the screen what is being waited for while an exchange blocks the window, or before the
/// window shows. It paints its text at once.
class WaitNotice final : public QLabel
{
    Q_OBJECT

public:
    WaitNotice();

    /// Shows the notice in the middle of the screen.
    void say(const QString& text);

public slots:
    void showConnecting(const QString& label, const QString& address);
    void showDisconnecting();
};
