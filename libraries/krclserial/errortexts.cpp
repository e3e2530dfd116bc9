#include "errortexts.h"

#include <algorithm>
#include <iterator>

namespace krclserial {

namespace {

constexpr struct {
  CLINT32 code;
  std::string_view text;
} kTexts[] = {
    {CL_ERR_NO_ERR, "No error."},
    {CL_ERR_BUFFER_TOO_SMALL, "The buffer is too small for the text."},
    {CL_ERR_MANU_DOES_NOT_EXIST, "There is no such manufacturer."},
    {CL_ERR_PORT_IN_USE, "The port is in use."},
    {CL_ERR_TIMEOUT, "The time limit passed."},
    {CL_ERR_INVALID_INDEX, "There is no port of this index."},
    {CL_ERR_INVALID_REFERENCE, "The port is not open, or its device is no longer published."},
    {CL_ERR_ERROR_NOT_FOUND, "There is no error of this code."},
    {CL_ERR_BAUD_RATE_NOT_SUPPORTED, "The port does not have this baud rate."},
    {CL_ERR_OUT_OF_MEMORY, "The system is out of memory or of another resource."},
    {CL_ERR_REGISTRY_KEY_NOT_FOUND, "A setting of the installation is missing."},
    {CL_ERR_INVALID_PTR, "A pointer is null."},
    {CL_ERR_IN_USE, "The library is in use."},
    {CL_ERR_UNABLE_TO_LOAD_DLL, "The serial library cannot be loaded."},
    {CL_ERR_FUNCTION_NOT_FOUND, "The serial library lacks the function."},
};

} // namespace

std::string_view FindErrorText(CLINT32 aCode) {
  const auto* found =
      std::find_if(std::begin(kTexts), std::end(kTexts), [aCode](const auto& aRow) { return aRow.code == aCode; });
  return found == std::end(kTexts) ? std::string_view() : found->text;
}

} // namespace krclserial
