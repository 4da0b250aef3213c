// Two threads touch one number without an order. The thread sanitizer has to say so: if it does
// not, the whole lane is blind.

#include <cstdio>
#include <thread>

int main()
{
    int shared = 0;
    std::thread other([&shared] { ++shared; });
    ++shared;
    other.join();
    std::printf("%d\n", shared);
    return 0;
}
