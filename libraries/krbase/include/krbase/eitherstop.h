#pragma once
// One stop of two, for who can ask a single token alone.

#include <optional>
#include <stop_token>

namespace krbase {

/// Its token is stopped when either of two is, for as long as it lives; most operations have one alone.
/// Thread: any; the two may be stopped on others.
class EitherStop {
public:
  /// Of two tokens, of which either may be one that nobody can stop.
  EitherStop(const std::stop_token& aOne, const std::stop_token& aOther) : mToken(aOne) {
    if (aOther.stop_possible())
      mToken = mBoth.emplace(aOne, aOther).GetToken();
  }
  EitherStop(const EitherStop&) = delete;
  EitherStop& operator=(const EitherStop&) = delete;

  /// Stopped with the first of the two.
  const std::stop_token& GetToken() const { return mToken; }

private:
  class Both {
  public:
    Both(const std::stop_token& aOne, const std::stop_token& aOther)
        : mOfOne(aOne, Request{mStop}), mOfOther(aOther, Request{mStop}) {}
    std::stop_token GetToken() const { return mStop.get_token(); }

  private:
    struct Request {
      void operator()() const { stop.request_stop(); }
      // Shares the state, which another thread may be stopping.
      mutable std::stop_source stop;
    };

    const std::stop_source mStop;
    const std::stop_callback<Request> mOfOne;
    const std::stop_callback<Request> mOfOther;
  };

  std::stop_token mToken;
  std::optional<Both> mBoth;
};

} // namespace krbase
