#include "krgenicam/ikrregisterport.h"
