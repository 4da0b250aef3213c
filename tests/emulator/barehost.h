#pragma once

#include <QByteArray>
#include <QtTest>

#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

/// A host that reads only what it is told to, and that tells the end of its input from the end of
/// the connection, which the library's socket does not.
class BareHost final
{
public:
    explicit BareHost(quint16 controllerPort)
    {
        const timeval limit{limitSeconds, 0};
        setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        sockaddr_in place{};
        place.sin_family = AF_INET;
        place.sin_port = htons(controllerPort);
        place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        QCOMPARE(::connect(descriptor, reinterpret_cast<sockaddr*>(&place), sizeof place), 0);
    }
    ~BareHost() { ::close(descriptor); }
    BareHost(const BareHost&) = delete;
    BareHost& operator=(const BareHost&) = delete;

    void send(const QByteArray& bytes)
    {
        QCOMPARE(::send(descriptor, bytes.constData(), size_t(bytes.size()), MSG_NOSIGNAL),
                 ssize_t(bytes.size()));
    }

    /// The next `count` bytes; fewer if the input ends or nothing comes in time.
    QByteArray read(int count)
    {
        QByteArray bytes(count, '\0');
        int got = 0;
        ssize_t piece = 1;
        while (got < count && piece > 0) {
            piece = ::recv(descriptor, bytes.data() + got, size_t(count - got), 0);
            got += int(std::max<ssize_t>(0, piece));
        }
        return bytes.left(got);
    }

    /// Reads on; false if the input does not come to its end.
    bool readsToTheEnd()
    {
        QByteArray bytes(65536, '\0');
        ssize_t piece = 1;
        while (piece > 0)
            piece = ::recv(descriptor, bytes.data(), size_t(bytes.size()), 0);
        return piece == 0;
    }

private:
    static constexpr int limitSeconds = 5;

    const int descriptor = ::socket(AF_INET, SOCK_STREAM, 0);
};
