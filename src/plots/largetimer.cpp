#include "plots/largetimer.h"

#include <QTimer>

LargeTimer::LargeTimer(QObject* parent, quint64 intervalMs, quint32 maxChunkMs)
    : QObject(parent)
    , maxChunk(qBound(quint32(1), maxChunkMs, longestChunkMs))
    , interval(intervalMs)
    , timer(new QTimer(this))
{
    // A coarse timer is up to 5 % off, which is minutes for the intervals this class is made for.
    timer->setTimerType(Qt::PreciseTimer);
    connect(timer, &QTimer::timeout, this, &LargeTimer::timerTimeout);
}

void LargeTimer::setInterval(quint64 ms)
{
    interval = ms;
    if (timer->isActive()) {
        stop();
        start();
    }
}

void LargeTimer::start()
{
    remaining = interval;
    nextChunk();
    timer->start();
}

void LargeTimer::start(quint64 ms)
{
    setInterval(ms);
    start();
}

void LargeTimer::stop()
{
    timer->stop();
}

bool LargeTimer::isRunning() const
{
    return timer->isActive();
}

quint64 LargeTimer::remainingTime() const
{
    return quint64(qMax(timer->remainingTime(), 0)) + remaining;
}

void LargeTimer::nextChunk()
{
    currentChunk = qMin(maxChunk, remaining);
    remaining -= currentChunk;
    timer->setInterval(int(currentChunk));
}

void LargeTimer::timerTimeout()
{
    if (remaining > 0) {
        nextChunk();
        return;
    }
    if (singleShot)
        timer->stop();
    else
        remaining = interval;
    nextChunk();
    // The last statement, because a slot may delete this timer.
    emit timeout();
}
