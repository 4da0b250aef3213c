#pragma once

#include <QtGlobal>

#include <unistd.h>

/// The effective user is another one for as long as this lives; nothing for who is not root.
class AnotherUser final
{
public:
    static constexpr uid_t nobody = 65534;

    AnotherUser() { change(nobody); }
    ~AnotherUser() { change(0); }
    AnotherUser(const AnotherUser&) = delete;
    AnotherUser& operator=(const AnotherUser&) = delete;

private:
    static void change(uid_t user)
    {
        if (::getuid() == 0 && ::seteuid(user) != 0)
            qFatal("Can not change the user");
    }
};
