#pragma once
// What of a device a window borrows from the thread that opens and closes the device: lent by the one, borrowed by the
// other, and taken back before the device ends. What is done with it is left to the borrower.

#include <condition_variable>
#include <mutex>

namespace krviewer {

/// One object at a time.
///
/// Thread: Lend and TakeBack on the lender's, the rest on the borrower's.
/// Ownership: borrows the object, which lives at least until TakeBack returns.
template <typename Object>
class Loan {
public:
  /// Offers an object; none may be lent.
  void Lend(Object& aObject) {
    const std::lock_guard lock(mMutex);
    mOffered = &aObject;
  }
  /// Ends the offer and waits until the borrower has given the object back, at once where it was not borrowed. The
  /// borrower looks at IsWantedBack often, or has given back for good.
  void TakeBack() {
    std::unique_lock lock(mMutex);
    mOffered = nullptr;
    mGivenBack.wait(lock, [this] { return !mIsBorrowed; });
  }

  /// The object that is offered, which is whole until GiveBack; null while there is none, or when it is borrowed
  /// already.
  Object* Borrow() {
    const std::lock_guard lock(mMutex);
    if (!mOffered || mIsBorrowed)
      return nullptr;
    mIsBorrowed = true;
    return mOffered;
  }
  /// The borrowed object is about to end.
  bool IsWantedBack() const {
    const std::lock_guard lock(mMutex);
    return mIsBorrowed && !mOffered;
  }
  /// The borrower does not touch the object any more. Nothing happens where none is borrowed.
  void GiveBack() {
    {
      const std::lock_guard lock(mMutex);
      mIsBorrowed = false;
    }
    mGivenBack.notify_all();
  }

private:
  mutable std::mutex mMutex; ///< Guards the offer and whether it was taken.
  std::condition_variable mGivenBack;
  Object* mOffered = nullptr;
  bool mIsBorrowed = false;
};

} // namespace krviewer
