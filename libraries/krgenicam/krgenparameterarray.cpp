#include "krgenicam/krgenparameterarray.h"

#include "map/nodemap.h"

#include <optional>
#include <span>
#include <string>
#include <utility>

KrGenParameterArray::Turn::Turn(KrGenParameterArray& aArray) : mMap(*aArray.mMap) {
  mMap.KeepTurn();
}

KrGenParameterArray::Turn::~Turn() {
  mMap.ReleaseTurn();
}

KrResult KrGenParameterArray::Open(const KrGenDescription& aDescription, IKrRegisterPort& aPort,
                                   const KrGenArrayOptions& aOptions, std::unique_ptr<KrGenParameterArray>& aArray) {
  std::unique_ptr<krgenicam::NodeMap> map;
  KrResult result = krgenicam::NodeMap::Open(aDescription, aPort, aOptions, map);
  if (result.IsOK())
    aArray.reset(new KrGenParameterArray(std::move(map)));
  return result;
}

KrGenParameterArray::KrGenParameterArray(std::unique_ptr<krgenicam::NodeMap> aMap) : mMap(std::move(aMap)) {}

KrGenParameterArray::~KrGenParameterArray() = default;

std::size_t KrGenParameterArray::GetCount() const {
  return mMap->GetFeatures().size();
}

KrGenParameter* KrGenParameterArray::operator[](std::size_t aIndex) const {
  return aIndex < GetCount() ? mMap->GetFeatures()[aIndex] : nullptr;
}

KrGenParameter* KrGenParameterArray::Get(const KrString& aName) const {
  return mMap->FindParameter(aName.ToUtf8());
}

KrGenCategory* KrGenParameterArray::GetCategory(const KrString& aName) const {
  return mMap->FindCategory(aName.ToUtf8());
}

KrString KrGenParameterArray::GetVendorName() const {
  return mMap->GetDescription().GetVendorName();
}

KrString KrGenParameterArray::GetModelName() const {
  return mMap->GetDescription().GetModelName();
}

KrResult KrGenParameterArray::GetFaults(KrStringList& aFaults) const {
  aFaults.Clear();
  for (const krgenicam::DescriptionFault& fault : mMap->GetFaults()) {
    std::string place = fault.line > 0 ? "line " + std::to_string(fault.line) : std::string();
    if (!fault.node.empty())
      place += (place.empty() ? "node " : ", node ") + fault.node;
    aFaults.Add(place.empty() ? fault.text : place + ": " + fault.text);
  }
  return {};
}

KrGenArrayAccess KrGenParameterArray::GetAccessMode() const {
  return mMap->IsClosed() ? KrGenArrayAccess::Closed : KrGenArrayAccess::Open;
}

void KrGenParameterArray::InvalidateCache() {
  mMap->InvalidateCache();
}

KrResult KrGenParameterArray::Invalidate(const KrString& aName) {
  return mMap->InvalidateByName(aName.ToUtf8());
}

KrResult KrGenParameterArray::Poll(const std::stop_token& aStop) {
  return mMap->Poll(aStop);
}

void KrGenParameterArray::DeliverEvent(std::uint64_t aEventID, const void* aData, std::size_t aLength) {
  mMap->DeliverEvent(aEventID, std::span(static_cast<const std::uint8_t*>(aData), aData ? aLength : 0));
}

void KrGenParameterArray::SetChunkData(std::uint64_t aChunkID, const void* aData, std::size_t aLength) {
  std::optional<std::span<const std::uint8_t>> data;
  if (aData)
    data = std::span(static_cast<const std::uint8_t*>(aData), aLength);
  mMap->SetChunkData(aChunkID, data);
}

void KrGenParameterArray::Cancel() {
  mMap->Cancel();
}

void KrGenParameterArray::Close() {
  mMap->Close();
}
