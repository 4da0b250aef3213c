#include "model/measurestore.h"

#include <algorithm>

measureStore::measureStore(int slotCount)
    : capacity(slotCount)
    , samples(std::make_unique<MeasureSample[]>(static_cast<std::size_t>(slotCount)))
{
    Q_ASSERT(slotCount >= 2);
}

void measureStore::storeSample(const MeasureSample& sample)
{
    const std::lock_guard<std::mutex> lock(mutex);
    const bool full = (tail - head + capacity) % capacity == 1;
    if (full) {
        tail = (tail + 1) % capacity;
        ++dropped;
    }
    ++stored;
    samples[static_cast<std::size_t>(head)] = sample;
    head = (head + 1) % capacity;
}

int measureStore::takeSample(MeasureSample& out)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (head == tail)
        return 0;
    out = samples[static_cast<std::size_t>(tail)];
    tail = (tail + 1) % capacity;
    return 1;
}

void measureStore::takeSamples(std::vector<MeasureSample>& out, std::size_t most)
{
    const std::lock_guard<std::mutex> lock(mutex);
    const int taken = int(std::min(most, std::size_t(count())));
    // Up to the end of the ring, and what lies behind its beginning.
    const int unbroken = std::min(taken, capacity - tail);
    out.insert(out.end(), &samples[std::size_t(tail)], &samples[std::size_t(tail)] + unbroken);
    out.insert(out.end(), samples.get(), samples.get() + (taken - unbroken));
    tail = (tail + taken) % capacity;
}

int measureStore::sampleCount() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return count();
}

void measureStore::clearSamples()
{
    const std::lock_guard<std::mutex> lock(mutex);
    head = 0;
    tail = 0;
}

quint64 measureStore::storedCount() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return stored;
}

quint64 measureStore::droppedCount() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return dropped;
}
