#pragma once
// A program that talks to a published port by the Camera Link serial functions, in this process: loads the library by
// its name, as such programs do.

#include <krclserial/clserkrg.h>

#include <stop_token>
#include <string>

/// Thread: one at a time.
class CameraLinkProgram {
public:
  CameraLinkProgram();
  ~CameraLinkProgram();
  CameraLinkProgram(const CameraLinkProgram&) = delete;
  CameraLinkProgram& operator=(const CameraLinkProgram&) = delete;

  /// Opens the only port that is published; false where it cannot be had.
  bool Open();
  void Close();
  /// As SerialTraffic::Exchange.
  std::string Exchange(const std::string& aBlock, const std::stop_token& aStop);

private:
  template <typename Function>
  Function* Find(const char* aName) const;

  void* const mLibrary;
  hSerRef mSession = nullptr;
};
