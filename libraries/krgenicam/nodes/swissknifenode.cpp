#include "nodes/swissknifenode.h"
