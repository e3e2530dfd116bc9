#include "simulation/serial/lineloss.h"

namespace krtransport {

void LineLoss::LoseEvery(std::uint32_t aEvery) {
  mEvery = aEvery;
  mPassed = 0;
}

void LineLoss::End() {
  *this = LineLoss();
}

bool LineLoss::TakeByte() {
  bool isLost = false;
  if (mEvery > 0 && ++mPassed == mEvery) {
    mPassed = 0;
    isLost = true;
  }
  if (mNext > 0) {
    --mNext;
    isLost = true;
  }
  return isLost;
}

} // namespace krtransport
