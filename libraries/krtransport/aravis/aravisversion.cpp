#include "aravis/aravisversion.h"

#include <arv.h>

#include <string>

namespace krtransport {

KrString GetAravisVersion() {
  return "Aravis " + std::to_string(arv_get_major_version()) + "." + std::to_string(arv_get_minor_version()) + "." +
         std::to_string(arv_get_micro_version());
}

} // namespace krtransport
