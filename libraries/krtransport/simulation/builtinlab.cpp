#include "simulation/lab.h"

#include "krbase/krlogger.h"
#include "simulation/builtinlabtext.h"
#include "simulation/labfile/labreader.h"

namespace krtransport {

Lab GetBuiltInLab() {
  Lab lab;
  // The text is the library's own, and a test reads it.
  if (const KrResult read = ParseLab(kBuiltInLabText, "builtinlab.yaml", lab); !read.IsOK())
    KrLogger("KrTransport").Log(KrLogLevel::Error, {"GetBuiltInLab", "builtinlab"}, read.GetDescription());
  return lab;
}

} // namespace krtransport
