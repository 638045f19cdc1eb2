#include "resources/Resources.h"

#include <QtCore/qglobal.h>

// Outside any namespace, as Q_INIT_RESOURCE declares a global function.
void loadResources()
{
    Q_INIT_RESOURCE(resources);
}
