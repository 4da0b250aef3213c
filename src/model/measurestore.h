#pragma once

#include "model/measuresample.h"

#include <QObject>

#include <memory>
#include <mutex>
#include <vector>

/// Ring of samples between a connection's thread, which stores, and the GUI thread, which takes.
/// It never grows and never makes the writer wait: when the reader falls behind, the oldest
/// samples are lost. A store of capacity N holds at most N - 1 samples. Every operation may be
/// called on any thread, as long as one thread stores and one takes.
class measureStore final : public QObject
{
    Q_OBJECT

public:
    /// `capacity` is the number of slots and at least 2.
    explicit measureStore(int capacity);

    /// Adds a sample, dropping the oldest if the ring is full.
    void storeSample(const MeasureSample& sample);
    /// Moves the oldest sample to `out` and returns 1; returns 0 and leaves `out` alone if the
    /// store is empty.
    int takeSample(MeasureSample& out);
    /// Moves at most `most` samples, the oldest ones, behind those of `out` in their order.
    void takeSamples(std::vector<MeasureSample>& out, std::size_t most);
    int sampleCount() const;
    /// Throws the samples away. They are not counted as dropped: nobody wants them.
    void clearSamples();

    /// How many samples were stored since this store was made, which numbers them from 1 on.
    /// Clearing does not begin anew.
    quint64 storedCount() const;
    /// How many of them were lost to newer ones because nobody took them in time.
    quint64 droppedCount() const;

private:
    /// Whoever calls holds the mutex.
    int count() const { return (head + capacity - tail) % capacity; }

    const int capacity;
    std::unique_ptr<MeasureSample[]> samples;
    mutable std::mutex mutex;
    /// Slot to write next.
    int head = 0;
    /// Oldest slot that was not taken yet.
    int tail = 0;
    quint64 stored = 0;
    quint64 dropped = 0;
};
