#include "aravis/aravisfeatures.h"

#include "aravis/araviserror.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace krtransport {
namespace {

// What a job makes is shared with it, as it may outlive a caller who left.
constexpr std::uint32_t kTimeoutMs = 5000;

using Names = std::vector<std::string>;

std::string Quote(const std::string& aName) {
  return "\"" + aName + "\"";
}

// The node of a feature that is there and can be used at the moment.
KrResult FindUsable(ArvDevice& aDevice, const std::string& aName, ArvGcFeatureNode*& aNode) {
  ArvGcNode* node = arv_device_get_feature(&aDevice, aName.c_str());
  if (node == nullptr || !ARV_IS_GC_FEATURE_NODE(node))
    return {KrResult::Code::NotFound, "The device has no feature " + Quote(aName) + "."};
  auto* feature = ARV_GC_FEATURE_NODE(node);
  const std::string attempt = "Asking whether the feature " + Quote(aName) + " can be used";
  GErrorHolder implementedError;
  const bool isImplemented = arv_gc_feature_node_is_implemented(feature, implementedError.Out()) != FALSE;
  if (KrResult result = ToResult(implementedError, attempt); !result.IsOK())
    return result;
  GErrorHolder availableError;
  const bool isAvailable = arv_gc_feature_node_is_available(feature, availableError.Out()) != FALSE;
  if (KrResult result = ToResult(availableError, attempt); !result.IsOK())
    return result;
  if (!isImplemented || !isAvailable)
    return {KrResult::Code::AccessDenied, "The feature " + Quote(aName) + " is not available at the moment."};
  aNode = feature;
  return {};
}

// Refuses a feature whose access mode is the one that rules the access out.
KrResult CheckAccess(ArvGcFeatureNode* aNode, const std::string& aName, ArvGcAccessMode aForbidden,
                     const char* aAccess) {
  if (arv_gc_feature_node_get_actual_access_mode(aNode) != aForbidden)
    return {};
  return {KrResult::Code::AccessDenied, "The feature " + Quote(aName) + " cannot be " + aAccess + " now."};
}

KrResult CheckReadable(ArvGcFeatureNode* aNode, const std::string& aName) {
  return CheckAccess(aNode, aName, ARV_GC_ACCESS_MODE_WO, "read");
}

KrResult CheckWritable(ArvGcFeatureNode* aNode, const std::string& aName) {
  return CheckAccess(aNode, aName, ARV_GC_ACCESS_MODE_RO, "written");
}

KrResult FindEnumeration(ArvDevice& aDevice, const std::string& aName, ArvGcEnumeration*& aNode) {
  ArvGcFeatureNode* feature = nullptr;
  if (KrResult result = FindUsable(aDevice, aName, feature); !result.IsOK())
    return result;
  if (!ARV_IS_GC_ENUMERATION(feature))
    return {KrResult::Code::InvalidInput, "The feature " + Quote(aName) + " is no enumeration."};
  aNode = ARV_GC_ENUMERATION(feature);
  return {};
}

KrResult FindBoolean(ArvDevice& aDevice, const std::string& aName, ArvGcBoolean*& aNode) {
  ArvGcFeatureNode* feature = nullptr;
  if (KrResult result = FindUsable(aDevice, aName, feature); !result.IsOK())
    return result;
  if (!ARV_IS_GC_BOOLEAN(feature))
    return {KrResult::Code::InvalidInput, "The feature " + Quote(aName) + " is no boolean."};
  aNode = ARV_GC_BOOLEAN(feature);
  return {};
}

KrResult ReadEntries(ArvGcEnumeration* aNode, const std::string& aName, Names& aEntries) {
  GErrorHolder error;
  guint count = 0;
  const char** values = arv_gc_enumeration_dup_available_string_values(aNode, &count, error.Out());
  if (KrResult result = ToResult(error, "Reading the entries of " + Quote(aName)); !result.IsOK()) {
    g_free(values);
    return result;
  }
  aEntries.assign(values, values + (values != nullptr ? count : 0));
  g_free(values);
  return {};
}

KrResult WriteEntry(ArvGcEnumeration* aNode, const std::string& aName, const std::string& aEntry) {
  if (KrResult result = CheckWritable(ARV_GC_FEATURE_NODE(aNode), aName); !result.IsOK())
    return result;
  Names entries;
  if (KrResult result = ReadEntries(aNode, aName, entries); !result.IsOK())
    return result;
  if (std::find(entries.begin(), entries.end(), aEntry) == entries.end())
    return {KrResult::Code::InvalidInput,
            "The feature " + Quote(aName) + " cannot be set to " + Quote(aEntry) + " at the moment."};
  GErrorHolder error;
  arv_gc_enumeration_set_string_value(aNode, aEntry.c_str(), error.Out());
  return ToResult(error, "Setting " + Quote(aName) + " to " + Quote(aEntry));
}

} // namespace

AravisFeatures::AravisFeatures(IoThread& aIoThread, ISilence& aSilence, std::shared_ptr<AravisDeviceBase> aDevice)
    : mCalls(aIoThread, aSilence), mDevice(std::move(aDevice)) {}

KrResult AravisFeatures::Run(std::function<KrResult(ArvDevice&)> aJob) {
  return mCalls.Run(
      [device = mDevice, job = std::move(aJob)](const std::atomic<bool>&) { return job(*device->GetArvDevice()); },
      kTimeoutMs);
}

bool AravisFeatures::HasFeature(const KrString& aName) {
  {
    const std::lock_guard lock(mMutex);
    if (const auto known = mKnownNames.find(aName); known != mKnownNames.end())
      return known->second;
  }
  const KrResult found = Run([name = aName.ToUtf8()](ArvDevice& aDevice) {
    return arv_device_get_feature(&aDevice, name.c_str()) != nullptr ? KrResult() : KrResult(KrResult::Code::NotFound);
  });
  // Only what the description said is worth remembering, not that it could not be asked.
  if (found.IsOK() || found == KrResult::Code::NotFound) {
    const std::lock_guard lock(mMutex);
    mKnownNames.emplace(aName, found.IsOK());
  }
  return found.IsOK();
}

bool AravisFeatures::IsFeatureAvailable(const KrString& aName) {
  return Run([name = aName.ToUtf8()](ArvDevice& aDevice) {
           ArvGcFeatureNode* node = nullptr;
           return FindUsable(aDevice, name, node);
         })
      .IsOK();
}

KrResult AravisFeatures::GetEnumerationEntries(const KrString& aName, KrStringList& aEntries) {
  const auto entries = std::make_shared<Names>();
  KrResult result = Run([name = aName.ToUtf8(), entries](ArvDevice& aDevice) {
    ArvGcEnumeration* node = nullptr;
    KrResult found = FindEnumeration(aDevice, name, node);
    return found.IsOK() ? ReadEntries(node, name, *entries) : found;
  });
  if (!result.IsOK())
    return result;
  aEntries.Clear();
  for (const std::string& entry : *entries)
    aEntries.Add(KrString(entry));
  return {};
}

KrResult AravisFeatures::GetEnumeration(const KrString& aName, KrString& aEntry) {
  const auto entry = std::make_shared<std::string>();
  KrResult result = Run([name = aName.ToUtf8(), entry](ArvDevice& aDevice) {
    ArvGcEnumeration* node = nullptr;
    if (KrResult found = FindEnumeration(aDevice, name, node); !found.IsOK())
      return found;
    if (KrResult readable = CheckReadable(ARV_GC_FEATURE_NODE(node), name); !readable.IsOK())
      return readable;
    GErrorHolder error;
    const char* text = arv_gc_enumeration_get_string_value(node, error.Out());
    if (text != nullptr)
      *entry = text;
    return ToResult(error, "Reading " + Quote(name));
  });
  if (result.IsOK())
    aEntry = KrString(*entry);
  return result;
}

KrResult AravisFeatures::SetEnumeration(const KrString& aName, const KrString& aEntry) {
  return Run([name = aName.ToUtf8(), entry = aEntry.ToUtf8()](ArvDevice& aDevice) {
    ArvGcEnumeration* node = nullptr;
    KrResult found = FindEnumeration(aDevice, name, node);
    return found.IsOK() ? WriteEntry(node, name, entry) : found;
  });
}

KrResult AravisFeatures::GetBoolean(const KrString& aName, bool& aValue) {
  const auto value = std::make_shared<bool>();
  KrResult result = Run([name = aName.ToUtf8(), value](ArvDevice& aDevice) {
    ArvGcBoolean* node = nullptr;
    if (KrResult found = FindBoolean(aDevice, name, node); !found.IsOK())
      return found;
    if (KrResult readable = CheckReadable(ARV_GC_FEATURE_NODE(node), name); !readable.IsOK())
      return readable;
    GErrorHolder error;
    *value = arv_gc_boolean_get_value(node, error.Out()) != FALSE;
    return ToResult(error, "Reading " + Quote(name));
  });
  if (result.IsOK())
    aValue = *value;
  return result;
}

KrResult AravisFeatures::SetBoolean(const KrString& aName, bool aValue) {
  return Run([name = aName.ToUtf8(), aValue](ArvDevice& aDevice) {
    ArvGcBoolean* node = nullptr;
    if (KrResult found = FindBoolean(aDevice, name, node); !found.IsOK())
      return found;
    if (KrResult writable = CheckWritable(ARV_GC_FEATURE_NODE(node), name); !writable.IsOK())
      return writable;
    GErrorHolder error;
    arv_gc_boolean_set_value(node, aValue ? TRUE : FALSE, error.Out());
    return ToResult(error, "Setting " + Quote(name));
  });
}

} // namespace krtransport
