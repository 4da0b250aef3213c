#include "window/connectingnotice.h"

#include <QGuiApplication>
#include <QScreen>

ConnectingNotice::ConnectingNotice()
    : QLabel(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint)
{
    constexpr int marginPx = 24;
    constexpr int minimumWidthPx = 360;
    setObjectName(QStringLiteral("connectingNotice"));
    setFrameShape(QFrame::StyledPanel);
    setMargin(marginPx);
    setMinimumWidth(minimumWidthPx);
    setAlignment(Qt::AlignCenter);
    setTextFormat(Qt::PlainText);
}

void ConnectingNotice::showSystem(const QString& label, const QString& address)
{
    setText(tr("Connecting to %1 (%2) …").arg(label, address));
    adjustSize();
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    move(available.center() - rect().center());
    show();
    raise();
    repaint();
}
