#pragma once

#include <QLabel>

/// Says on the screen what is being waited for while an exchange blocks the window, or before the
/// window shows. It paints its text at once.
class WaitNotice final : public QLabel
{
    Q_OBJECT

public:
    /// The window has to live longer than this.
    explicit WaitNotice(const QWidget& window);

    /// Shows the notice in the middle of the window, or of the screen while that is hidden.
    void say(const QString& text);

public slots:
    /// Says whom the program connects, or how many of several systems are up.
    void showConnecting(const QString& label, const QString& address, int up, int all);
    void showDisconnecting();

private:
    const QWidget& window;
};
