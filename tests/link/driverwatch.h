#pragma once

#include <atomic>
#include <functional>
#include <utility>

/// Sees what is asked of the driver of a serial port, whose kernel side a pseudo terminal leaves
/// out, and acts when a certain request passes. One at a time. It can be told on any thread.
struct DriverWatch
{
    using Act = std::function<void()>;

    static std::atomic<DriverWatch*> present;

    explicit DriverWatch(unsigned long watchedRequest = 0, Act onRequest = {})
        : request(watchedRequest)
        , act(std::move(onRequest))
    {
        present = this;
    }
    ~DriverWatch() { present = nullptr; }
    DriverWatch(const DriverWatch&) = delete;
    DriverWatch& operator=(const DriverWatch&) = delete;

    void note(unsigned long passing, const void* argument);

    const unsigned long request;
    const Act act;
    /// Of the last setting of the driver that was asked for.
    std::atomic<int> flags{0};
    /// Of the last setting of the line that was asked for: size of a byte, parity, stop bits.
    std::atomic<unsigned int> lineModes{0};
};
