#include "nodes/floatregisternode.h"
