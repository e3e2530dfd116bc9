#include "krgenicam/krgenenumentry.h"

#include "nodes/enumentrynode.h"

using krgenicam::EnumEntryNode;

KrResult KrGenEnumEntry::GetValue(std::int64_t& aValue) const {
  aValue = static_cast<const EnumEntryNode&>(mNode).GetEntryValue();
  return {};
}

KrResult KrGenEnumEntry::GetNumericValue(double& aValue) const {
  aValue = static_cast<const EnumEntryNode&>(mNode).GetNumericValue();
  return {};
}

KrResult KrGenEnumEntry::IsSelfClearing(bool& aIsSelfClearing) const {
  aIsSelfClearing = static_cast<const EnumEntryNode&>(mNode).IsSelfClearing();
  return {};
}
