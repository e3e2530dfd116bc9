#include "nodes/registernode.h"
