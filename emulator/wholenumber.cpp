#include "emulator/wholenumber.h"

#include "emulator/text.h"

namespace emulator {

int wholeNumber(const QString& text, int least, int greatest, QString& error)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    if (!ok || number < least || number > greatest) {
        error = Text::tr("\"%1\" is not a whole number from %2 to %3")
                    .arg(text, QString::number(least), QString::number(greatest));
    }
    return number;
}

} // namespace emulator
