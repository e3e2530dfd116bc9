#include "nodes/valuenode.h"
