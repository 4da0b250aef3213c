#include "support/desktop.h"

#include <QDesktopServices>

namespace {

constexpr const char* schemes[] = {"file", "http", "https"};

} // namespace

Desktop::Desktop(Readers readers)
{
    const char* const slot = readers == Readers::Present ? "open" : "thereIsNoSuchSlot";
    for (const char* scheme : schemes)
        QDesktopServices::setUrlHandler(QLatin1String(scheme), this, slot);
}

Desktop::~Desktop()
{
    for (const char* scheme : schemes)
        QDesktopServices::unsetUrlHandler(QLatin1String(scheme));
}
