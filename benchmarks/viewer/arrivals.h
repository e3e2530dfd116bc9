#pragma once
// How many frames of a camera have reached this machine, by what the network's loopback adapter counts: the same for
// every viewer, whatever it says itself. What is made of them is left to others.

namespace benchmarks {

/// How the camera's frames are on the wire.
struct WireFrames {
  double imageBytes = 0;
  double packetBytes = 0; ///< With the headers of IP, UDP and the stream.
};

/// Frames that reached the adapter since it is there. It must carry nothing else worth counting: run in a network
/// namespace of one's own. Ends the process where the adapter's count cannot be read.
double CountArrivals(const WireFrames& aFrames);

} // namespace benchmarks
