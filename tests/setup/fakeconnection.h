#pragma once

#include "link/connection.h"
#include "model/connectionsettings.h"

#include <cstddef>
#include <new>
#include <utility>

/// A connection without port and thread, which is up when it is told so. An address may be written
/// with blanks around it. One that is made after another was deleted stands in the same memory.
class FakeConnection final : public Connection
{
public:
    explicit FakeConnection(ConnectionType connectionType)
        : type(connectionType)
    {
        ++alive;
    }
    ~FakeConnection() override
    {
        releaseInPlace();
        --alive;
    }
    /// How many exist.
    static int count() { return alive; }

    static void* operator new(std::size_t size)
    {
        void* const memory = std::exchange(spare, nullptr);
        return memory ? memory : ::operator new(size);
    }
    static void operator delete(void* memory) { ::operator delete(std::exchange(spare, memory)); }

    QString address() const override { return name; }
    int connectionType() const override { return int(type); }
    bool init(const QString& address, int baudOrPort) override
    {
        name = address.trimmed();
        number = baudOrPort;
        return usable;
    }
    int portOrBaud() const override { return number; }
    void releaseInPlace() override { release("fake"); }
    void resync() override {}

    /// Whether `init` takes what it is given.
    void setUsable(bool on) { usable = on; }
    void comeUp() { publishConnected(); }
    void goDown() { disconnectController(); }

protected:
    void discardInput() override {}

private:
    static inline void* spare = nullptr;
    static inline int alive = 0;

    ConnectionType type;
    QString name;
    int number = 0;
    bool usable = true;
};
