// A shared library that is no CL Protocol driver.

extern "C" __attribute__((visibility("default"))) int NobodyCallsThis() {
  return 0;
}
