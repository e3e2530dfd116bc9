#pragma once
// Cameras behind the Camera Link serial functions.

#include "krbase/krresult.h"
#include "krbase/krstringlist.h"

/// What can be reached by the Camera Link serial functions.
class KR_EXPORT KrGenParameterArrayCL {
public:
  /// The names of the ports that are published at the moment by bridges of any process of this user, in their order.
  /// Names of bridges whose process has died are taken away. SystemError as the system says, AccessDenied when others
  /// could enter the directory of sockets; aPortIDs is set on success only. Thread: any.
  static KrResult GetPortIDs(KrStringList& aPortIDs);
};
