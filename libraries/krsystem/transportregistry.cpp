#include "krsystem/transportregistry.h"

#include <algorithm>
#include <mutex>

namespace krsystem {

namespace {

struct Registry {
  std::mutex mutex; // Guards transports.
  std::vector<std::shared_ptr<ITransport>> transports;
};

Registry& GetRegistry() {
  // Never destroyed: threads may still ask while the process ends.
  static Registry& registry = *new Registry;
  return registry;
}

} // namespace

void RegisterTransport(std::shared_ptr<ITransport> aTransport) {
  Registry& registry = GetRegistry();
  const std::lock_guard lock(registry.mutex);
  if (aTransport && std::ranges::find(registry.transports, aTransport) == registry.transports.end())
    registry.transports.push_back(std::move(aTransport));
}

void UnregisterTransport(const std::shared_ptr<ITransport>& aTransport) {
  // The caller holds the transport, so that none is destroyed under the lock.
  Registry& registry = GetRegistry();
  const std::lock_guard lock(registry.mutex);
  std::erase(registry.transports, aTransport);
}

std::vector<std::shared_ptr<ITransport>> GetTransports() {
  Registry& registry = GetRegistry();
  const std::lock_guard lock(registry.mutex);
  return registry.transports;
}

} // namespace krsystem
