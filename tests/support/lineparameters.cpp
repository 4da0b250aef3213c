#include "support/lineparameters.h"

// Not together with <termios.h>, which can not tell arbitrary rates.
#include <asm/termbits.h>
#include <sys/ioctl.h>

namespace {

bool get(int descriptor, termios2& parameters)
{
    return ::ioctl(descriptor, TCGETS2, &parameters) == 0;
}

} // namespace

namespace lineparameters {

void makeRaw(int descriptor)
{
    termios2 parameters{};
    if (!get(descriptor, parameters))
        return;
    parameters.c_iflag = 0;
    parameters.c_oflag = 0;
    parameters.c_lflag = 0;
    ::ioctl(descriptor, TCSETS2, &parameters);
}

int baudRate(int descriptor)
{
    termios2 parameters{};
    return get(descriptor, parameters) ? int(parameters.c_ospeed) : -1;
}

bool hasHardwareFlowControl(int descriptor)
{
    termios2 parameters{};
    return get(descriptor, parameters) && (parameters.c_cflag & CRTSCTS) != 0;
}

} // namespace lineparameters
