#pragma once

#include "link/connection.h"
#include "model/connectionsettings.h"

#include <cstddef>
#include <new>
#include <utility>

/// A connection without port and thread, which is up when it is told so. One that is made after
/// another was deleted stands in the same memory.
class FakeConnection final : public Connection
{
public:
    explicit FakeConnection(ConnectionType connectionType)
        : type(connectionType)
    {}
    ~FakeConnection() override { releaseInPlace(); }

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
        name = address;
        number = baudOrPort;
        return true;
    }
    int portOrBaud() const override { return number; }
    void releaseInPlace() override { releaseCore(); }
    void resync() override {}

    void comeUp() { publishConnected(); }
    void goDown() { disconnectController(); }

protected:
    void discardInput() override {}

private:
    static inline void* spare = nullptr;

    ConnectionType type;
    QString name;
    int number = 0;
};
