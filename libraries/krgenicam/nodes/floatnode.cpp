#include "nodes/floatnode.h"
