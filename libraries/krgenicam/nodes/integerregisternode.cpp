#include "nodes/integerregisternode.h"
