#pragma once
// What most tests of windows include, compiled once. QtTest is none of it: it differs by the folder of the test.

#include "testheaders.h"

#include <QtWidgets>
