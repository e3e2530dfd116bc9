#include "cameralinkprogram.h"

#include "await.h"

#include <chrono>
#include <dlfcn.h>
#include <stdexcept>

namespace {

constexpr CLUINT32 kStepMs = 100; // After which it is looked whether the exchange was stopped.
const std::chrono::milliseconds kLimit = krtest::GetGenerousLimit();

} // namespace

CameraLinkProgram::CameraLinkProgram() : mLibrary(::dlopen(KR_CL_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
  if (!mLibrary)
    throw std::runtime_error(::dlerror());
}

CameraLinkProgram::~CameraLinkProgram() {
  Close();
  ::dlclose(mLibrary);
}

template <typename Function>
Function* CameraLinkProgram::Find(const char* aName) const {
  void* const function = ::dlsym(mLibrary, aName);
  if (!function)
    throw std::runtime_error(::dlerror());
  return reinterpret_cast<Function*>(function);
}

bool CameraLinkProgram::Open() {
  CLUINT32 count = 0;
  return Find<decltype(clGetNumSerialPorts)>("clGetNumSerialPorts")(&count) == CL_ERR_NO_ERR && count == 1 &&
         Find<decltype(clSerialInit)>("clSerialInit")(0, &mSession) == CL_ERR_NO_ERR;
}

void CameraLinkProgram::Close() {
  if (mSession)
    Find<decltype(clSerialClose)>("clSerialClose")(mSession);
  mSession = nullptr;
}

std::string CameraLinkProgram::Exchange(const std::string& aBlock, const std::stop_token& aStop) {
  const auto end = std::chrono::steady_clock::now() + kLimit;
  const auto mayGoOn = [&](CLINT32 aResult) {
    return aResult == CL_ERR_TIMEOUT && !aStop.stop_requested() && std::chrono::steady_clock::now() < end;
  };
  std::string bytes = aBlock;
  std::size_t sent = 0;
  CLINT32 result = CL_ERR_TIMEOUT;
  while (mayGoOn(result)) {
    auto size = static_cast<CLUINT32>(bytes.size() - sent);
    result = Find<decltype(clSerialWrite)>("clSerialWrite")(mSession, bytes.data() + sent, &size, kStepMs);
    sent += size;
  }
  if (result != CL_ERR_NO_ERR)
    return {};
  result = CL_ERR_TIMEOUT;
  while (mayGoOn(result)) {
    auto size = static_cast<CLUINT32>(bytes.size());
    result = Find<decltype(clSerialRead)>("clSerialRead")(mSession, bytes.data(), &size, kStepMs);
  }
  return result == CL_ERR_NO_ERR ? bytes : std::string();
}
