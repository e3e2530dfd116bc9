#include "simulation/serial/linefaults.h"

namespace krtransport {

void ByteOrder::SetEvery(std::uint32_t aEvery) {
  mEvery = aEvery;
  mPassed = 0;
}

bool ByteOrder::TakeByte() {
  bool isTaken = false;
  if (mEvery > 0 && ++mPassed == mEvery) {
    mPassed = 0;
    isTaken = true;
  }
  if (mNext > 0) {
    --mNext;
    isTaken = true;
  }
  return isTaken;
}

} // namespace krtransport
