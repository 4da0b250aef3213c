#pragma once

#include <QObject>

class QTimer;

/// A timer for intervals beyond the range of `QTimer`: it runs the interval as a sequence of chunks
/// and emits `timeout()` at the end of the last one. It repeats unless it is a single shot.
class LargeTimer final : public QObject
{
    Q_OBJECT

public:
    /// The longest chunk that a `QTimer` takes, in milliseconds: some 24.8 days.
    static constexpr quint32 longestChunkMs = 2147483647;

    /// `interval` and `maxChunk` are milliseconds; the chunk is held to 1 .. `longestChunkMs`.
    LargeTimer(QObject* parent, quint64 interval, quint32 maxChunk);

    void start();
    void start(quint64 ms);
    void stop();
    bool isRunning() const;

    /// A running timer starts the new interval from its beginning.
    void setInterval(quint64 ms);
    quint64 totalInterval() const { return interval; }
    void setSingleShot(bool on) { singleShot = on; }

    /// Milliseconds until the next `timeout()`. For a stopped timer: the part of the interval that
    /// follows the chunk in which it was stopped.
    quint64 remainingTime() const;

signals:
    void timeout();

private slots:
    void timerTimeout();

private:
    void nextChunk();

    quint64 maxChunk;
    quint64 interval;
    quint64 currentChunk = longestChunkMs;
    /// The part of the interval that follows the current chunk.
    quint64 remaining = 0;
    bool singleShot = false;
    QTimer* timer;
};
