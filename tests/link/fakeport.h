#pragma once

#include <QByteArrayList>
#include <QIODevice>

#include <algorithm>

/// A port without another side: what is to be read is put there by the test, what is written is
/// kept.
class FakePort final : public QIODevice
{
public:
    FakePort() { open(QIODevice::ReadWrite | QIODevice::Unbuffered); }

    QByteArray input;
    QByteArrayList written;
    /// How often somebody looked for what has come.
    mutable int looks = 0;

    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override
    {
        ++looks;
        return input.size();
    }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        const int count = int(std::min<qint64>(maxSize, input.size()));
        std::copy_n(input.constData(), count, data);
        input.remove(0, count);
        return count;
    }
    qint64 writeData(const char* data, qint64 size) override
    {
        written.append(QByteArray(data, int(size)));
        return size;
    }
};
