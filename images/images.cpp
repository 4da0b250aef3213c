#include "images/images.h"

#include <QDir>

void initImages()
{
    Q_INIT_RESOURCE(images);
    Q_INIT_RESOURCE(qr);
}
