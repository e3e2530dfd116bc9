#include "krgui/krapplication.h"

#include "platform/application.h"

KrResult KrEnsureApplication() {
  return krgui::EnsureApplication();
}
