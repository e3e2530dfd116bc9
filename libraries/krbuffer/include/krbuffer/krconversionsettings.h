#pragma once
// What a conversion to BGRa8 may do with the colours besides. How a converter takes these settings stands in
// krbufferconverter.h.

/// Factors by which the components of a colour are multiplied, each from 0 to 16.
struct KrWhiteBalance {
  double red = 1;   ///< What red is multiplied by.
  double green = 1; ///< What green is multiplied by.
  double blue = 1;  ///< What blue is multiplied by.
};

/// The samples that are shown from black to white, in units of the format's own samples.
struct KrSampleWindow {
  double low = 0;  ///< This and all below becomes black.
  double high = 0; ///< This and all above becomes white; greater than low.
};
