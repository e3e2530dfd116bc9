/* The library's own header is read by a C compiler, and its constants are the standard's. */
#include "krclserial/clserkrg.h"

_Static_assert(CL_ERR_PORT_IN_USE == -10003 && CL_ERR_IN_USE == -10012 && CL_ERR_FUNCTION_NOT_FOUND == -10099, "codes");
_Static_assert(CL_BAUDRATE_9600 == 1 && CL_BAUDRATE_921600 == 128, "speeds");
_Static_assert(CL_DLL_VERSION_1_1 == 3, "version");

CLINT32 (*const theInit)(CLUINT32, hSerRef*) = &clSerialInit;
