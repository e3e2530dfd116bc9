#include "nodes/stringnode.h"
