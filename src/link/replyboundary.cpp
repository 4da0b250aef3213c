#include "link/replyboundary.h"

#include "link/commandframe.h"
#include "link/replyforms.h"

#include <QByteArray>
#include <QIODevice>

void findReplyBoundary(QIODevice& device, const QDeadlineTimer& limit,
                       const std::function<void()>& pause)
{
    QByteArray window;
    while (!limit.hasExpired()) {
        if (window.size() < command::statusReplyLength)
            window += device.read(1);
        pause();
        if (window.size() < command::statusReplyLength)
            continue;

        if (command::isRefused(window) && window.at(1) == command::terminator)
            return;
        if (command::isAccepted(window)) {
            while (device.bytesAvailable() < command::statusReplyLength && !limit.hasExpired())
                pause();
            window = device.read(command::statusReplyLength);
            if (window.size() > 2 && window.at(2) == command::terminator)
                return;
        } else {
            window.remove(0, 1);
        }
    }
}
