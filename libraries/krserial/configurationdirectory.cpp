#include "configurationdirectory.h"

#include <cstdlib>

namespace krserial {

std::filesystem::path GetConfigurationDirectory() {
  const char* const configured = ::secure_getenv("XDG_CONFIG_HOME");
  if (configured && std::filesystem::path(configured).is_absolute())
    return configured;
  const char* const home = ::secure_getenv("HOME");
  return home && *home ? std::filesystem::path(home) / ".config" : std::filesystem::path();
}

} // namespace krserial
