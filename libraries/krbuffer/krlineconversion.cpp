#include "krbuffer/krlineconversion.h"
