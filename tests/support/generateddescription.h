#pragma once
// A camera description of any size with registers to match, as cameras have them: features that stand on converters,
// formulas and registers of all sizes, in categories, with selectors, locks and availability.

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

struct GeneratedDescription {
  std::string xml;
  std::uint64_t address = 0;         ///< Of the first register.
  std::vector<std::uint8_t> memory;  ///< What the registers hold at first, from there on.
  std::vector<std::string> features; ///< Names, in the order of the categories.
  std::vector<std::string> inner;    ///< Names of the nodes with a number that features stand on.
};

/// The same description for the same arguments. "Driver" is an integer feature on which the ten features "Driven0" to
/// "Driven9" stand; "Selector" selects features.
GeneratedDescription GenerateDescription(std::size_t aFeatures, std::uint64_t aSeed);
