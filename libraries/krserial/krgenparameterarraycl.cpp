#include "krserial/krgenparameterarraycl.h"

#include "krbase/krclsockets.h"

#include <vector>

KrResult KrGenParameterArrayCL::GetPortIDs(KrStringList& aPortIDs) {
  std::vector<KrCLPort> ports;
  if (KrResult listed = KrListCLPorts(ports); !listed.IsOK())
    return listed;
  KrStringList ids;
  for (const KrCLPort& port : ports)
    ids.Add(port.name);
  aPortIDs = ids;
  return {};
}
