#pragma once
// The parameters of a device between the thread that opens and closes it and the window that shows them: lent by the
// one, borrowed by the other, and taken back before the device ends. What is done with them is left to the borrower.

#include "krgenicam/krgenparameterarray.h"

#include <condition_variable>
#include <mutex>

namespace krviewer {

/// One array at a time.
///
/// Thread: Lend and TakeBack on the lender's, the rest on the borrower's.
/// Ownership: borrows the array, which lives at least until TakeBack returns.
class LentParameters {
public:
  /// Offers an array; none may be lent.
  void Lend(KrGenParameterArray& aArray);
  /// Ends the offer and waits until the borrower has given the array back, at once where it was not borrowed. The
  /// borrower looks at IsWantedBack often, or has given back for good.
  void TakeBack();

  /// The array that is offered, which is whole until GiveBack; null while there is none, or when it is borrowed
  /// already.
  KrGenParameterArray* Borrow();
  /// The borrowed array is about to end.
  bool IsWantedBack() const;
  /// The borrower does not touch the array any more. Nothing happens where none is borrowed.
  void GiveBack();

private:
  mutable std::mutex mMutex; ///< Guards the offer and whether it was taken.
  std::condition_variable mGivenBack;
  KrGenParameterArray* mOffered = nullptr;
  bool mIsBorrowed = false;
};

} // namespace krviewer
