#pragma once

#include <unistd.h>
#include <utility>

namespace emulator {

/// Owns an open file of the system, or none.
class FileDescriptor final
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int opened)
        : number(opened)
    {}
    ~FileDescriptor() { reset(); }
    FileDescriptor(FileDescriptor&& other) noexcept
        : number(std::exchange(other.number, none))
    {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        reset();
        number = std::exchange(other.number, none);
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    bool isOpen() const { return number != none; }
    int get() const { return number; }
    void reset()
    {
        if (isOpen())
            close(std::exchange(number, none));
    }

private:
    static constexpr int none = -1;
    int number = none;
};

} // namespace emulator
