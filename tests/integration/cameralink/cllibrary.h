#pragma once
// The library of the Camera Link functions in a test's own process.

#include "krclserial/clserkrg.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include <dlfcn.h>

inline constexpr CLUINT32 kForEverMs = 4'000'000'000;

/// The library, loaded as a program loads it.
class CLLibrary {
public:
  CLLibrary() : mLibrary(::dlopen(KR_CL_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
    EXPECT_NE(mLibrary, nullptr) << ::dlerror();
    Load("clSerialInit", init);
    Load("clSerialClose", close);
    Load("clSerialRead", read);
    Load("clSerialWrite", write);
    Load("clGetNumBytesAvail", countAvailable);
    Load("clSetBaudRate", setSpeed);
  }
  ~CLLibrary() { ::dlclose(mLibrary); }
  CLLibrary(const CLLibrary&) = delete;
  CLLibrary& operator=(const CLLibrary&) = delete;

  hSerRef Open(CLUINT32 aIndex) const {
    hSerRef reference = nullptr;
    EXPECT_EQ(init(aIndex, &reference), CL_ERR_NO_ERR);
    return reference;
  }
  CLINT32 Read(hSerRef aReference, CLUINT32 aCount, CLUINT32 aLimitMs) const {
    std::vector<char> bytes(aCount + 1);
    return read(aReference, bytes.data(), &aCount, aLimitMs);
  }
  CLINT32 Write(hSerRef aReference, std::vector<std::uint8_t> aBytes) const {
    auto count = static_cast<CLUINT32>(aBytes.size());
    return write(aReference, reinterpret_cast<char*>(aBytes.data()), &count, kForEverMs);
  }

  decltype(&clSerialInit) init = nullptr;
  decltype(&clSerialClose) close = nullptr;
  decltype(&clSerialRead) read = nullptr;
  decltype(&clSerialWrite) write = nullptr;
  decltype(&clGetNumBytesAvail) countAvailable = nullptr;
  decltype(&clSetBaudRate) setSpeed = nullptr;

private:
  template <typename Function>
  void Load(const char* aName, Function& aFunction) {
    aFunction = reinterpret_cast<Function>(::dlsym(mLibrary, aName));
    EXPECT_NE(aFunction, nullptr) << aName;
  }

  void* mLibrary;
};
