#include "logic/display/scrollbarmodel.h"
