#include "emulator/identity.h"

#include "emulator/noisesource.h"

namespace emulator {

namespace {

constexpr int makerLength = 3;
constexpr char keyPadding = '0';
constexpr char tailPadding = ' ';

} // namespace

QByteArray derivedKey(quint64 seed, quint64 number)
{
    // The number stays readable at the end, so that two keys of a process always differ.
    constexpr int numberDigits = 5;
    constexpr int mixedDigits = keyLength - 1 - numberDigits;
    constexpr int base = 36;
    constexpr quint64 mixedRange = Q_UINT64_C(60466176); // 36^5
    static_assert(mixedDigits == 5);
    const QByteArray mixed = QByteArray::number(derivedSeed(seed, number) % mixedRange, base);
    const QByteArray counted = QByteArray::number(number % mixedRange, base);
    return 'E'
           + (mixed.rightJustified(mixedDigits, keyPadding)
              + counted.rightJustified(numberDigits, keyPadding))
                 .toUpper();
}

QByteArray idText(const ControllerOptions& options, const QByteArray& key)
{
    // The character in front of the key is no '-', so that a key that begins with "V" can not be
    // taken for the version mark "-V".
    QByteArray text = options.maker.leftJustified(makerLength, ' ', true);
    text += "-Qor-";
    text += options.triggerCapable ? 'A' : 'N';
    text += "-DIG:";
    Q_ASSERT(text.size() == keyPosition);
    text += key.leftJustified(keyLength, keyPadding, true);
    text += options.vm ? "-VM" : "-V";
    text += QByteArray::number(options.firmware);
    text += "-Emulator";
    return text.leftJustified(idLength, tailPadding, true);
}

} // namespace emulator
