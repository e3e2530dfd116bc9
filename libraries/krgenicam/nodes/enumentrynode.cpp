#include "nodes/enumentrynode.h"
