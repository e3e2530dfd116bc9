#include "nodes/numbernode.h"
