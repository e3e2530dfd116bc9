#include "nodes/enumerationnode.h"
