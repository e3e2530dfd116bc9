#include "platform/drawingsurface.h"
