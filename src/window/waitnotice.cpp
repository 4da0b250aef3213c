#include "window/waitnotice.h"

#include <QGuiApplication>
#include <QScreen>

WaitNotice::WaitNotice(const QWidget& monitorWindow)
    : QLabel(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
    , window(monitorWindow)
{
    constexpr int marginPx = 24;
    constexpr int minimumWidthPx = 360;
    setObjectName(QStringLiteral("waitNotice"));
    setFrameShape(QFrame::StyledPanel);
    setMargin(marginPx);
    setMinimumWidth(minimumWidthPx);
    setAlignment(Qt::AlignCenter);
    setTextFormat(Qt::PlainText);
}

void WaitNotice::say(const QString& text)
{
    if (isVisible() && text == this->text())
        return;
    setText(text);
    adjustSize();
    const QRect around = window.isVisible() ? window.frameGeometry()
                                            : QGuiApplication::primaryScreen()->availableGeometry();
    move(around.center() - rect().center());
    show();
    repaint();
}

void WaitNotice::showConnecting(const QString& label, const QString& address, int up, int all)
{
    say(all == 1 ? tr("Connecting to %1 (%2) …").arg(label, address)
                 : tr("Connecting: %1 of %2 systems are up …").arg(up).arg(all));
}

void WaitNotice::showDisconnecting()
{
    say(tr("Disconnecting ..."));
}
