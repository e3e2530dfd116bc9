#include "nodes/categorynode.h"
