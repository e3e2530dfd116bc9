#include "nodes/booleannode.h"
