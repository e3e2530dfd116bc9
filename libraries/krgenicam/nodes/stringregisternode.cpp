#include "nodes/stringregisternode.h"
