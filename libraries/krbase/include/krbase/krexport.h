#pragma once
// The one macro of the public headers: marks what the libraries show to an application.

#define KR_EXPORT __attribute__((visibility("default")))
