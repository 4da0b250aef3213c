#include "controls/stagelook.h"

#include <QIcon>

QPalette stabilisationPalette(bool on)
{
    QPalette palette;
    palette.setColor(QPalette::Button, QColor(QLatin1String(on ? "lightgreen" : "lightcoral")));
    // The text has to stay legible on a dark desktop, where it would be light.
    palette.setColor(QPalette::ButtonText, Qt::black);
    return palette;
}

QPixmap stageLight(bool active, QSize size)
{
    // Only an icon finds the picture that is made for a screen of twice the density.
    const QIcon picture(active ? QStringLiteral(":/images/green_light.png")
                               : QStringLiteral(":/images/red_light.png"));
    return picture.pixmap(size);
}
