#include "nodes/portnode.h"
