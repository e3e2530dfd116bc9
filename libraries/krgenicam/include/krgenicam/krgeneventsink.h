#pragma once
// Word of changes of a parameter. What changed is for the sink to read.

#include "krbase/krexport.h"

class KrGenParameter;

/// Hears of changes of parameters it is registered with, whatever made them: a write through any parameter of the
/// array, a selector, a command. What the device changes by itself is found out when somebody asks: an application that
/// wants to hear of that, and of the end of commands that take time, calls KrGenParameterArray::Poll several times a
/// second.
///
/// Thread: called on the notification thread of the parameter's array, one call at a time, with no lock held. A sink
/// may read and write parameters, and register and unregister sinks, itself among them; it must not destroy the array.
/// Ownership: the application's; must be unregistered before it is destroyed.
class KR_EXPORT KrGenEventSink {
public:
  /// The parameter's value, range, access or entries have changed since the last call, or, before the first one, since
  /// the sink was registered. Changes that come quickly are told as one. Registering asks the device for nothing: where
  /// the parameter was not remembered then, the first word comes with the first occasion for a change (a write of what
  /// the parameter stands on, a selector, a command, an event, and, once anybody has asked for the parameter, Poll and
  /// InvalidateCache), without a difference, too.
  virtual void OnParameterUpdate(KrGenParameter* aParameter) = 0;
  virtual ~KrGenEventSink() = default;
};
