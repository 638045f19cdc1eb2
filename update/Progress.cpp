#include "update/Progress.h"

ProgressRecord g_Progress;
