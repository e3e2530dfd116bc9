#pragma once
// For how long the feature browser keeps the user-interface thread: while thousands of rows scroll, and with a camera
// whose registers are slow; beside a plain tree view of the same features.

namespace benchmarks {

/// Prints the figures. The application must be there.
void MeasureBrowserHeartbeat();

} // namespace benchmarks
