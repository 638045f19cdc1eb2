#include "resources/Resources.h"

#include <QtCore/qglobal.h>

// Outside any namespace, as Q_INIT_RESOURCE declares a global function.
void loadResources()
{
    Q_INIT_RESOURCE(resources);
    Q_INIT_RESOURCE(small_pictures);
}

void loadLargePictures()
{
    Q_CLEANUP_RESOURCE(small_pictures);
    Q_INIT_RESOURCE(large_pictures);
}
