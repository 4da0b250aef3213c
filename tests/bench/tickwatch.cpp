#include "tickwatch.h"

#include "window/ticktimer.h"

#include <QCoreApplication>
#include <QEvent>

#include <algorithm>

TickWatch::TickWatch()
{
    clock.start();
}

void TickWatch::start()
{
    beginsS.clear();
    endS.reset();
    clock.start();
    QCoreApplication::instance()->installEventFilter(this);
}

void TickWatch::stop()
{
    QCoreApplication::instance()->removeEventFilter(this);
    endS = elapsedS();
}

double TickWatch::elapsedS() const
{
    constexpr double nsPerS = 1e9;
    return endS.value_or(double(clock.nsecsElapsed()) / nsPerS);
}

int TickWatch::ticksOfWorstSecond() const
{
    // The last second is not over.
    std::vector<int> counts(std::size_t(elapsedS()) + 1, 0);
    for (const double begin : beginsS)
        ++counts[std::size_t(begin)];
    counts.pop_back();
    return counts.empty() ? 0 : *std::min_element(counts.begin(), counts.end());
}

double TickWatch::intervalMs(double share) const
{
    constexpr double msPerS = 1000.0;
    if (beginsS.size() < 2)
        return 0.0;
    std::vector<double> intervals;
    for (std::size_t i = 1; i < beginsS.size(); ++i)
        intervals.push_back((beginsS[i] - beginsS[i - 1]) * msPerS);
    const auto rank = std::ptrdiff_t(share * double(intervals.size() - 1));
    std::nth_element(intervals.begin(), intervals.begin() + rank, intervals.end());
    return intervals[std::size_t(rank)];
}

bool TickWatch::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::SockAct && qobject_cast<const TickTimer*>(object->parent()))
        beginsS.push_back(elapsedS());
    return QObject::eventFilter(object, event);
}
