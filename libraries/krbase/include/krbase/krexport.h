#pragma once
// The one macro of the public headers: marks what the libraries show to an application.
// An attribute of the standard's form, as it must stand beside [[nodiscard]]; before a function it comes first.

#define KR_EXPORT [[gnu::visibility("default")]]
