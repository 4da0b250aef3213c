#include "plots/thermoslider.h"

#include <QBrush>
#include <QEvent>
#include <QFont>

namespace {

/// As long as it lives, requests to paint the widget are ignored. Nothing is painted at its end, as
/// `QWidget::setUpdatesEnabled` would do with the whole widget. Requests made before are kept.
class IgnoredUpdates final
{
public:
    explicit IgnoredUpdates(QWidget& ignored)
        : widget(ignored)
        , wereOff(ignored.testAttribute(Qt::WA_UpdatesDisabled))
    {
        widget.setAttribute(Qt::WA_UpdatesDisabled);
    }
    ~IgnoredUpdates() { widget.setAttribute(Qt::WA_UpdatesDisabled, wereOff); }
    IgnoredUpdates(const IgnoredUpdates&) = delete;
    IgnoredUpdates& operator=(const IgnoredUpdates&) = delete;

private:
    QWidget& widget;
    const bool wereOff;
};

} // namespace

ThermoSlider::ThermoSlider(QWidget* parent)
    : QwtThermo(parent)
{
    setOrientation(Qt::Vertical);
    setScalePosition(QwtThermo::TrailingScale);
    setFillBrush(QBrush(Qt::darkCyan));
    setScale(0.0, 10.0);
    setPipeWidth(4);
    setSpacing(0);
    QwtThermo::setValue(0.0);
    setFont(QFont(QStringLiteral("Sans Serif"), 8));
    setScaleMaxMinor(0);
}

void ThermoSlider::setValue(double value)
{
    const QRect before = level();
    {
        const IgnoredUpdates ignored(*this);
        QwtThermo::setValue(value);
    }
    if (level() != before)
        update(paintedPipe);
}

/// The filled part of the pipe.
QRect ThermoSlider::level() const
{
    return fillRect(paintedPipe) & paintedPipe;
}

void ThermoSlider::drawLiquid(QPainter* painter, const QRect& pipe) const
{
    // The library works it out anew for each painting, from the sizes of all numbers of the scale.
    paintedPipe = pipe;
    QwtThermo::drawLiquid(painter, pipe);
}

/// The library leaves the scale of a bar that is enabled or disabled to the next value.
void ThermoSlider::changeEvent(QEvent* event)
{
    QwtThermo::changeEvent(event);
    update();
}
