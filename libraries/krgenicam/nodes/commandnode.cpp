#include "nodes/commandnode.h"
