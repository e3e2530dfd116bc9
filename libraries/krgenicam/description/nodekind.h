#pragma once
// The elements of GenApi's schemas 1.0 and 1.1 as numbers. How elements are spelled is left to elementnames.

#include <cstdint>

namespace krgenicam {

/// The elements that are nodes. StructEntry becomes MaskedIntReg. ConfRom, AdvFeatureLock, SmartFeature and the like
/// are read as Node: they are there by name, without a value.
enum class NodeKind : std::uint8_t {
  Node,
  Category,
  Integer,
  IntReg,
  MaskedIntReg,
  Boolean,
  Command,
  Enumeration,
  EnumEntry,
  Float,
  FloatReg,
  String,
  StringReg,
  Register,
  Converter,
  IntConverter,
  SwissKnife,
  IntSwissKnife,
  Port,
};

/// The elements inside nodes that mean something; all others are skipped.
enum class PropertyKind : std::uint8_t {
  // Of every node
  ToolTip,
  Description,
  DisplayName,
  Visibility,
  ImposedVisibility,
  DocuURL,
  IsDeprecated,
  EventID,
  pIsImplemented,
  pIsAvailable,
  pIsLocked,
  pBlockPolling,
  AccessMode,
  ImposedAccessMode,
  pError,
  pAlias,
  pCastAlias,
  pInvalidator,
  Streamable,
  PollingTime,
  Cachable,
  // Values
  Value,
  pValue,
  pValueCopy,
  pIndex, ///< Of a value or an address.
  ValueIndexed,
  pValueIndexed,
  ValueDefault,
  pValueDefault,
  Min,
  pMin,
  Max,
  pMax,
  Inc,
  pInc,
  ValidValueSet, ///< ValidValuesSet, too.
  Unit,
  Representation,
  DisplayNotation,
  DisplayPrecision,
  pSelected,
  OnValue,
  OffValue,
  CommandValue,
  pCommandValue,
  EnumEntry, ///< An entry, in place (1.1) or by name (pEnumEntry, 1.0): target is the entry's node.
  NumericValue,
  Symbolic,
  IsSelfClearing,
  pFeature,
  // Registers
  Address,
  pAddress,
  IntSwissKnife, ///< Inside a register: target is its node.
  Length,
  pLength,
  pPort,
  Sign,
  Endianess,
  Bit,
  LSB,
  MSB,
  // Formulas
  pVariable,
  Constant,
  Expression,
  Formula,
  FormulaTo,
  FormulaFrom,
  Slope,
  IsLinear,
  // Ports
  ChunkID,
  pChunkID,
  SwapEndianess,
  CacheChunkData,
};

} // namespace krgenicam
