#include "gigevision/adaptermembership.h"

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

namespace krtransport {
namespace {

// The process's streaming cameras.
struct Members {
  // Guards the list, and is held while members are told.
  std::mutex mutex;
  std::vector<const AdapterMembership*> list;
};

Members& GetMembers() {
  // Never destroyed: control is given back after static objects are gone, too.
  static Members* const members = new Members;
  return *members;
}

} // namespace

AdapterMembership::AdapterMembership(std::string aAdapterName, std::function<void()> aOnChange)
    : mAdapterName(std::move(aAdapterName)), mOnChange(std::move(aOnChange)) {
  Members& members = GetMembers();
  const std::lock_guard lock(members.mutex);
  members.list.push_back(this);
  TellOthers();
}

AdapterMembership::~AdapterMembership() {
  Members& members = GetMembers();
  const std::lock_guard lock(members.mutex);
  std::erase(members.list, this);
  TellOthers();
}

std::uint32_t AdapterMembership::CountCameras() const {
  Members& members = GetMembers();
  const std::lock_guard lock(members.mutex);
  return static_cast<std::uint32_t>(
      std::count_if(members.list.begin(), members.list.end(),
                    [this](const AdapterMembership* aMember) { return aMember->mAdapterName == mAdapterName; }));
}

void AdapterMembership::TellOthers() const {
  for (const AdapterMembership* member : GetMembers().list)
    if (member != this && member->mAdapterName == mAdapterName)
      member->mOnChange();
}

} // namespace krtransport
