#include "logic/display/framerenderer.h"
