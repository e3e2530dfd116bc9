#include "nodes/formulanode.h"
