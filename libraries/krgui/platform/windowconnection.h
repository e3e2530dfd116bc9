#pragma once
// A connection of our own to the X server that has a window, and what drawing into that window needs: a graphics
// context and the certainty that its pixels are laid out as ours. How pixels get there is left to the surfaces.

#include "platform/x11connection.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace krgui {

/// Thread: any. Its end is the end of everything that the server keeps for it.
class WindowConnection {
public:
  using TimePoint = std::chrono::steady_clock::time_point;

  /// aDisplayName as FindX11DisplayName gives it. Null when there is no such server or window, when the window's pixels
  /// are laid out otherwise, or when the server does not answer until aEnd.
  static std::unique_ptr<WindowConnection> Open(const std::string& aDisplayName, std::uint32_t aWindow, TimePoint aEnd);
  ~WindowConnection();
  WindowConnection(const WindowConnection&) = delete;
  WindowConnection& operator=(const WindowConnection&) = delete;

  xcb_connection_t* Get() const { return mConnection; }
  std::uint32_t GetWindow() const { return mWindow; }
  std::uint32_t GetContext() const { return mContext; }
  std::uint8_t GetDepth() const { return mDepth; }
  /// True when the server has ended, or ended the connection.
  bool HasEnded() const;
  /// Ends the connection, so that nobody waits for the server any more; for all threads.
  void End();

private:
  WindowConnection(xcb_connection_t* aConnection, std::uint32_t aWindow);
  bool LearnDepth(TimePoint aEnd);
  void MakeContext();

  xcb_connection_t* mConnection;
  const std::uint32_t mWindow;
  std::uint32_t mContext = 0;
  std::uint8_t mDepth = 0;
};

} // namespace krgui
