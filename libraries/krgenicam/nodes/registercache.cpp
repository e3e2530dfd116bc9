#include "nodes/registercache.h"
