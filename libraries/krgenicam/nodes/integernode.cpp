#include "nodes/integernode.h"
