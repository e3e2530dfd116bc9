#include "description/elementnames.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace krgenicam {

namespace {

template <typename Kind>
struct Row {
  std::string_view name;
  Kind kind{};
};

// One row of each kind in the order of the kinds, then other spellings.
constexpr std::array kNodeRows{
    Row<NodeKind>{"Node", NodeKind::Node},
    Row<NodeKind>{"Category", NodeKind::Category},
    Row<NodeKind>{"Integer", NodeKind::Integer},
    Row<NodeKind>{"IntReg", NodeKind::IntReg},
    Row<NodeKind>{"MaskedIntReg", NodeKind::MaskedIntReg},
    Row<NodeKind>{"Boolean", NodeKind::Boolean},
    Row<NodeKind>{"Command", NodeKind::Command},
    Row<NodeKind>{"Enumeration", NodeKind::Enumeration},
    Row<NodeKind>{"EnumEntry", NodeKind::EnumEntry},
    Row<NodeKind>{"Float", NodeKind::Float},
    Row<NodeKind>{"FloatReg", NodeKind::FloatReg},
    Row<NodeKind>{"String", NodeKind::String},
    Row<NodeKind>{"StringReg", NodeKind::StringReg},
    Row<NodeKind>{"Register", NodeKind::Register},
    Row<NodeKind>{"Converter", NodeKind::Converter},
    Row<NodeKind>{"IntConverter", NodeKind::IntConverter},
    Row<NodeKind>{"SwissKnife", NodeKind::SwissKnife},
    Row<NodeKind>{"IntSwissKnife", NodeKind::IntSwissKnife},
    Row<NodeKind>{"Port", NodeKind::Port},
    Row<NodeKind>{"ConfRom", NodeKind::Node},
    Row<NodeKind>{"TextDesc", NodeKind::Node},
    Row<NodeKind>{"IntKey", NodeKind::Node},
    Row<NodeKind>{"AdvFeatureLock", NodeKind::Node},
    Row<NodeKind>{"SmartFeature", NodeKind::Node},
};

constexpr std::array kPropertyRows{
    Row<PropertyKind>{"ToolTip", PropertyKind::ToolTip},
    Row<PropertyKind>{"Description", PropertyKind::Description},
    Row<PropertyKind>{"DisplayName", PropertyKind::DisplayName},
    Row<PropertyKind>{"Visibility", PropertyKind::Visibility},
    Row<PropertyKind>{"ImposedVisibility", PropertyKind::ImposedVisibility},
    Row<PropertyKind>{"DocuURL", PropertyKind::DocuURL},
    Row<PropertyKind>{"IsDeprecated", PropertyKind::IsDeprecated},
    Row<PropertyKind>{"EventID", PropertyKind::EventID},
    Row<PropertyKind>{"pIsImplemented", PropertyKind::pIsImplemented},
    Row<PropertyKind>{"pIsAvailable", PropertyKind::pIsAvailable},
    Row<PropertyKind>{"pIsLocked", PropertyKind::pIsLocked},
    Row<PropertyKind>{"pBlockPolling", PropertyKind::pBlockPolling},
    Row<PropertyKind>{"AccessMode", PropertyKind::AccessMode},
    Row<PropertyKind>{"ImposedAccessMode", PropertyKind::ImposedAccessMode},
    Row<PropertyKind>{"pError", PropertyKind::pError},
    Row<PropertyKind>{"pAlias", PropertyKind::pAlias},
    Row<PropertyKind>{"pCastAlias", PropertyKind::pCastAlias},
    Row<PropertyKind>{"pInvalidator", PropertyKind::pInvalidator},
    Row<PropertyKind>{"Streamable", PropertyKind::Streamable},
    Row<PropertyKind>{"PollingTime", PropertyKind::PollingTime},
    Row<PropertyKind>{"Cachable", PropertyKind::Cachable},
    Row<PropertyKind>{"Value", PropertyKind::Value},
    Row<PropertyKind>{"pValue", PropertyKind::pValue},
    Row<PropertyKind>{"pValueCopy", PropertyKind::pValueCopy},
    Row<PropertyKind>{"pIndex", PropertyKind::pIndex},
    Row<PropertyKind>{"ValueIndexed", PropertyKind::ValueIndexed},
    Row<PropertyKind>{"pValueIndexed", PropertyKind::pValueIndexed},
    Row<PropertyKind>{"ValueDefault", PropertyKind::ValueDefault},
    Row<PropertyKind>{"pValueDefault", PropertyKind::pValueDefault},
    Row<PropertyKind>{"Min", PropertyKind::Min},
    Row<PropertyKind>{"pMin", PropertyKind::pMin},
    Row<PropertyKind>{"Max", PropertyKind::Max},
    Row<PropertyKind>{"pMax", PropertyKind::pMax},
    Row<PropertyKind>{"Inc", PropertyKind::Inc},
    Row<PropertyKind>{"pInc", PropertyKind::pInc},
    Row<PropertyKind>{"ValidValueSet", PropertyKind::ValidValueSet},
    Row<PropertyKind>{"Unit", PropertyKind::Unit},
    Row<PropertyKind>{"Representation", PropertyKind::Representation},
    Row<PropertyKind>{"DisplayNotation", PropertyKind::DisplayNotation},
    Row<PropertyKind>{"DisplayPrecision", PropertyKind::DisplayPrecision},
    Row<PropertyKind>{"pSelected", PropertyKind::pSelected},
    Row<PropertyKind>{"OnValue", PropertyKind::OnValue},
    Row<PropertyKind>{"OffValue", PropertyKind::OffValue},
    Row<PropertyKind>{"CommandValue", PropertyKind::CommandValue},
    Row<PropertyKind>{"pCommandValue", PropertyKind::pCommandValue},
    Row<PropertyKind>{"EnumEntry", PropertyKind::EnumEntry},
    Row<PropertyKind>{"NumericValue", PropertyKind::NumericValue},
    Row<PropertyKind>{"Symbolic", PropertyKind::Symbolic},
    Row<PropertyKind>{"IsSelfClearing", PropertyKind::IsSelfClearing},
    Row<PropertyKind>{"pFeature", PropertyKind::pFeature},
    Row<PropertyKind>{"Address", PropertyKind::Address},
    Row<PropertyKind>{"pAddress", PropertyKind::pAddress},
    Row<PropertyKind>{"IntSwissKnife", PropertyKind::IntSwissKnife},
    Row<PropertyKind>{"Length", PropertyKind::Length},
    Row<PropertyKind>{"pLength", PropertyKind::pLength},
    Row<PropertyKind>{"pPort", PropertyKind::pPort},
    Row<PropertyKind>{"Sign", PropertyKind::Sign},
    Row<PropertyKind>{"Endianess", PropertyKind::Endianess},
    Row<PropertyKind>{"Bit", PropertyKind::Bit},
    Row<PropertyKind>{"LSB", PropertyKind::LSB},
    Row<PropertyKind>{"MSB", PropertyKind::MSB},
    Row<PropertyKind>{"pVariable", PropertyKind::pVariable},
    Row<PropertyKind>{"Constant", PropertyKind::Constant},
    Row<PropertyKind>{"Expression", PropertyKind::Expression},
    Row<PropertyKind>{"Formula", PropertyKind::Formula},
    Row<PropertyKind>{"FormulaTo", PropertyKind::FormulaTo},
    Row<PropertyKind>{"FormulaFrom", PropertyKind::FormulaFrom},
    Row<PropertyKind>{"Slope", PropertyKind::Slope},
    Row<PropertyKind>{"IsLinear", PropertyKind::IsLinear},
    Row<PropertyKind>{"ChunkID", PropertyKind::ChunkID},
    Row<PropertyKind>{"pChunkID", PropertyKind::pChunkID},
    Row<PropertyKind>{"SwapEndianess", PropertyKind::SwapEndianess},
    Row<PropertyKind>{"CacheChunkData", PropertyKind::CacheChunkData},
    Row<PropertyKind>{"pEnumEntry", PropertyKind::EnumEntry},
    Row<PropertyKind>{"ValidValuesSet", PropertyKind::ValidValueSet},
    Row<PropertyKind>{"Endianness", PropertyKind::Endianess},
    Row<PropertyKind>{"SwapEndianness", PropertyKind::SwapEndianess},
    Row<PropertyKind>{"Cacheable", PropertyKind::Cachable},
};

template <typename Rows>
constexpr bool IsInOrder(const Rows& aRows) {
  std::size_t expected = 0;
  for (const auto& row : aRows) {
    if (static_cast<std::size_t>(row.kind) == expected)
      ++expected;
    else if (static_cast<std::size_t>(row.kind) > expected)
      return false;
  }
  return true;
}
static_assert(IsInOrder(kNodeRows) && IsInOrder(kPropertyRows));

constexpr std::uint32_t Hash(std::string_view aName) {
  std::uint32_t hash = 2166136261U;
  for (const char character : aName)
    hash = (hash ^ static_cast<unsigned char>(character)) * 16777619U;
  return hash ^ (hash >> 15);
}

// Open addressing, made when compiling: a description has a hundred thousand elements, and each is looked up here.
template <typename Kind, std::size_t kSlots>
struct NameTable {
  template <typename Rows>
  explicit constexpr NameTable(const Rows& aRows) {
    for (const Row<Kind>& row : aRows) {
      std::size_t slot = Hash(row.name) % kSlots;
      while (!slots[slot].name.empty())
        slot = (slot + 1) % kSlots;
      slots[slot] = row;
    }
  }
  std::optional<Kind> Find(std::string_view aName) const {
    for (std::size_t slot = Hash(aName) % kSlots; !slots[slot].name.empty(); slot = (slot + 1) % kSlots) {
      if (slots[slot].name == aName)
        return slots[slot].kind;
    }
    return std::nullopt;
  }

  std::array<Row<Kind>, kSlots> slots{};
};

constexpr NameTable<NodeKind, 128> kNodeNames(kNodeRows);
constexpr NameTable<PropertyKind, 512> kPropertyNames(kPropertyRows);

} // namespace

std::optional<NodeKind> FindNodeKind(std::string_view aElement) {
  return kNodeNames.Find(aElement);
}

std::optional<PropertyKind> FindPropertyKind(std::string_view aElement) {
  return kPropertyNames.Find(aElement);
}

std::string_view GetElementName(PropertyKind aKind) {
  return kPropertyRows[static_cast<std::size_t>(aKind)].name;
}

std::string_view GetElementName(NodeKind aKind) {
  return kNodeRows[static_cast<std::size_t>(aKind)].name;
}

bool NamesNode(PropertyKind aKind) {
  // The schemas call all of them so, and no other element.
  return aKind == PropertyKind::EnumEntry || GetElementName(aKind).front() == 'p';
}

bool IsAddressTerm(PropertyKind aKind) {
  return aKind == PropertyKind::Address || aKind == PropertyKind::pAddress || aKind == PropertyKind::pIndex ||
         aKind == PropertyKind::IntSwissKnife;
}

bool IsRegister(NodeKind aKind) {
  return aKind == NodeKind::IntReg || aKind == NodeKind::MaskedIntReg || aKind == NodeKind::FloatReg ||
         aKind == NodeKind::StringReg || aKind == NodeKind::Register;
}

} // namespace krgenicam
