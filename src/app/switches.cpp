#include "app/switches.h"

#include "app/logging.h"

#include <cstring>

namespace switches {

QDir configDir = QDir::current();
bool serviceMode = false;
bool sensitivityTuning = false;
bool anySerialDevice = false;
bool autoSerialSearch = true;
bool fileLogging = false;

namespace {

struct Option
{
    const char* name;
    bool* variable;
    bool value;
    const char* text;
    /// The text is logged before the variable is set, not after it.
    bool logFirst;
};

const Option options[] = {
    {"-s", &serviceMode, true, "Activated service mode", false},
    {"-d", &sensitivityTuning, true, "Activated settings for tuning the detector sensitivity",
     false},
    {"-e", &anySerialDevice, true, "Activated support for serial devices other than FTDI", true},
    {"-a", &autoSerialSearch, false, "Deactivated automatic search for serial devices", true},
    {"-l", &fileLogging, true, "Activated logging", false},
};

void apply(const Option& option)
{
    if (option.logFirst) {
        logMessage().info() << option.text;
        *option.variable = option.value;
    } else {
        *option.variable = option.value;
        logMessage().info() << option.text;
    }
}

} // namespace

void readArgument(const char* argument)
{
    for (const Option& option : options) {
        if (std::strcmp(argument, option.name) == 0) {
            apply(option);
            return;
        }
    }
    logMessage().info() << "Unrecognized command line argument" << argument;
}

} // namespace switches
