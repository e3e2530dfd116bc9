#include "clprotocol/clerrors.h"

#include <algorithm>
#include <iterator>

namespace krcamerabridge {

namespace {

struct Row {
  std::int32_t code;
  std::string_view words;
};

constexpr Row kErrors[] = {
    {-10001, "the buffer is too small"},
    {-10002, "there is no serial library of this manufacturer"},
    {-10003, "the port is in use"},
    {-10004, "the camera did not answer in time"},
    {-10005, "there is no port of this number"},
    {-10006, "the port is not open"},
    {-10007, "the error has no words"},
    {-10008, "the baud rate is not supported"},
    {-10009, "there is no memory left"},
    {-10011, "a pointer is missing"},
    {-10012, "it is in use"},
    {-10098, "the library cannot be loaded"},
    {-10099, "the library lacks the function"},
    {-20100, "the identifier of the camera is none that the driver knows"},
    {-20101, "no camera was found"},
    {-20102, "there is no description"},
    {-20103, "the driver does not know the connection"},
    {-20104, "the driver has kept what went wrong to itself"},
    {-20105, "the parameter is not supported"},
    {-20106, "the parameter can only be read"},
    {-20107, "the parameter's size is wrong"},
    {-20108, "the parameter's value is wrong"},
};

} // namespace

std::string_view GetCLErrorWords(std::int32_t aCode) {
  const auto* const row = std::ranges::find(kErrors, aCode, &Row::code);
  return row != std::end(kErrors) ? row->words : std::string_view();
}

} // namespace krcamerabridge
