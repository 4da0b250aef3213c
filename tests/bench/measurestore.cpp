#include "model/measurestore.h"

#include "link/connection.h"

#include <benchmark/benchmark.h>
#include <thread>

namespace {

void measureStoreInOneThread(benchmark::State& state)
{
    measureStore store(Connection::storeCapacity);
    MeasureSample sample;
    for ([[maybe_unused]] auto _ : state) {
        ++sample.timeMs;
        store.storeSample(sample);
        store.takeSample(sample);
        benchmark::DoNotOptimize(sample);
    }
    state.SetItemsProcessed(state.iterations());
}

/// Stores numbered samples as fast as the reader makes room for them.
void storeNumbered(measureStore& store, quint64 count)
{
    constexpr int keptFree = 16;
    MeasureSample sample;
    while (sample.timeMs < count) {
        while (store.sampleCount() > Connection::storeCapacity - keptFree)
            std::this_thread::yield();
        ++sample.timeMs;
        store.storeSample(sample);
    }
}

void measureStoreBetweenThreads(benchmark::State& state)
{
    constexpr quint64 count = 200000;
    measureStore store(Connection::storeCapacity);
    for ([[maybe_unused]] auto _ : state) {
        std::thread writer([&store] { storeNumbered(store, count); });
        MeasureSample sample;
        quint64 taken = 0;
        while (sample.timeMs < count) {
            if (store.takeSample(sample) != 0)
                ++taken;
            else
                std::this_thread::yield();
        }
        writer.join();
        if (taken != count)
            state.SkipWithError("samples were lost");
    }
    state.SetItemsProcessed(state.iterations() * qint64(count));
}

BENCHMARK(measureStoreInOneThread);
BENCHMARK(measureStoreBetweenThreads)->UseRealTime();

} // namespace
