#include "nodes/converternode.h"
