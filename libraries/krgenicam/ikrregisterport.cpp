// Only shows that the header needs no other one; the interface has no code.
#include "krgenicam/ikrregisterport.h"
