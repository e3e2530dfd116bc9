#pragma once
// A serial line as features of a maker: a count and data of what came, data and a length of what goes, with commands
// where the device has them. Texts cannot carry zero bytes: what stands before one is sent, or received, and the rest
// is told as an error.

#include "featurefinder.h"
#include "featuresteps.h"
#include "ifeatureline.h"
#include "serialmap.h"

#include <memory>

namespace krserial {

class RegisterLine final : public IFeatureLine {
public:
  /// Null where the device lacks a feature or the entry; aFinder says which of both, and whether it could be asked.
  static std::unique_ptr<RegisterLine> Find(FeatureFinder& aFinder, const RegisterNames& aNames,
                                            const KrString& aEntry);

  KrResult Open() override { return {}; }
  KrResult Close() override;
  KrResult Receive(std::vector<std::uint8_t>& aBytes) override;
  KrResult GetLoss() const override { return mLoss; }
  KrResult Transmit(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aTaken) override;
  void Rest() override { mSelector.PutBack(); }

private:
  /// Bytes are a register or a text; of the two the one that is there.
  struct Data {
    KrGenRegister* bytes;
    KrGenString* text;
  };
  struct Features {
    KrGenParameterArray* array;
    KrGenEnum* selector;
    KrGenCommand* receiveCommand;
    KrGenInteger* receivedCount;
    Data receiveData;
    KrGenCommand* takenCommand;
    KrGenInteger* transmitRoom;
    Data transmitData;
    KrGenInteger* transmitLength;
    KrGenCommand* transmitCommand;
  };

  static Data FindData(FeatureFinder& aFinder, const KrString& aName);
  RegisterLine(const Features& aFeatures, KrString aEntry);
  KrResult TakeData(std::size_t aCount, std::vector<std::uint8_t>& aBytes);
  KrResult FindMost(std::size_t& aMost);
  KrResult CutAtZero(const std::uint8_t* aBytes, std::size_t& aSize) const;
  KrResult PutData(const std::uint8_t* aBytes, std::size_t aSize);

  const Features mFeatures;
  const KrString mEntry;
  SelectorHold mSelector;
  KrResult mLoss; // Of the last Receive.
};

} // namespace krserial
