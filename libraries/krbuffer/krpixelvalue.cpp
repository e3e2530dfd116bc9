#include "krbuffer/krpixelvalue.h"
