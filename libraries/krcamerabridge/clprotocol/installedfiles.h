#pragma once
// Where files are that were installed beside the libraries: the program that runs drivers, and our own driver.

#include <string>

namespace krcamerabridge {

/// The program that runs drivers: what KRGUI_CLPROTOCOL_HOST names, else the one installed beside the running library
/// or program, else the one of the place that was set when all was built. Empty where there is none. Thread: any.
std::string FindCLHost();
/// The directory of installed drivers, whose sub-directories have the systems' names. Empty where there is none.
/// Thread: any.
std::string FindInstalledCLDrivers();

} // namespace krcamerabridge
