#pragma once

#include "window/axisid.h"
#include "window/stageview.h"

#include <QHash>
#include <QObject>

class QwtScaleWidget;

/// Tells which axis of the time plots was clicked, and shows a hand over the axes that can be. The
/// hand is the cursor of the axes themselves: it ends where they end, whatever opens in front.
class AxisClicks final : public QObject
{
    Q_OBJECT

public:
    explicit AxisClicks(const Stages& stages);

signals:
    /// 1 to 6, see `axisOfId`. Emitted when the left button goes down; each press of a double click
    /// counts.
    void clicked(int axisId);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void watch(QwtScaleWidget& scale, const StageAxis& axis);

    QHash<const QObject*, int> axisIds;
};
