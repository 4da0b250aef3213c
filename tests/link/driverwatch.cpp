#include "driverwatch.h"

#include <cstdarg>
#include <dlfcn.h>
#include <linux/serial.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <termios.h>
#include <unistd.h>

std::atomic<DriverWatch*> DriverWatch::present{nullptr};

void DriverWatch::note(unsigned long passing, const void* argument)
{
    if (passing == TIOCSSERIAL)
        flags = static_cast<const serial_struct*>(argument)->flags;
    if (passing == request && act)
        act();
}

// In place of the library's.

extern "C" int ioctl(int descriptor, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    if (DriverWatch* watch = DriverWatch::present)
        watch->note(request, argument);
    return static_cast<int>(::syscall(SYS_ioctl, descriptor, request, argument));
}

extern "C" int tcsetattr(int descriptor, int moment, const termios* parameters) noexcept
{
    if (DriverWatch* watch = DriverWatch::present)
        watch->lineModes = parameters->c_cflag & (CSIZE | PARENB | CSTOPB);
    using Original = int (*)(int, int, const termios*);
    static const auto original = reinterpret_cast<Original>(::dlsym(RTLD_NEXT, "tcsetattr"));
    return original(descriptor, moment, parameters);
}
