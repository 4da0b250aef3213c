// Reads one setup file and prints how many records it holds, for tests of what ends the process.

#include "setup/settings.h"

#include <cstdio>

int main(int count, char** arguments)
{
    if (count != 2)
        return 2;
    Settings settings;
    const bool ok = settings.read(QString::fromLocal8Bit(arguments[1]));
    QList<ConnectionSettings> list;
    settings.getList(list);
    std::printf("%d\n", ok ? int(list.size()) : -1);
    return 0;
}
