#pragma once
// A finder without window and threads: reports are taken and messages handled in turn, at times that the test states.

#include "foundsystem.h"
#include "logic/finder/findermodel.h"
#include "recordingtree.h"

#include <vector>

class FinderBench {
public:
  explicit FinderBench(std::vector<krsystem::InterfaceFields> aInterfaces)
      : found(std::move(aInterfaces)), model(found.Get(), kinds, [this] { return nowMs; }) {}

  /// As the window does when it opens.
  void Build() { model.BuildInterfaces(tree); }
  void Rebuild() {
    model.Clear(tree);
    model.BuildInterfaces(tree);
    for (std::size_t i = 0; i < found.Get().GetDeviceCount(); ++i)
      model.TakeReport(found.GetDevice(i)->GetInterface(), found.GetDevice(i));
  }
  krgui::FinderModel::Next Report(std::size_t aDeviceIndex) {
    const KrDeviceInfo* const device = found.GetDevice(aDeviceIndex);
    return model.TakeReport(device->GetInterface(), device);
  }
  void Refresh(bool aShowUnreachable = false) { model.Refresh(tree, aShowUnreachable); }
  /// One round of discovery whose devices are reported, and one pass.
  void Round(bool aShowUnreachable = false) {
    found.Find();
    for (std::size_t i = 0; i < found.Get().GetDeviceCount(); ++i)
      Report(i);
    Refresh(aShowUnreachable);
  }
  /// The answers from now on.
  void SetAnswers(std::vector<std::pair<std::size_t, krsystem::AnyDeviceFields>> aAnswers) {
    found.GetTransport().answers = std::move(aAnswers);
  }

  FoundSystem found;
  krgui::FinderKinds kinds;
  std::uint32_t nowMs = 10000;
  krgui::FinderModel model;
  RecordingTree tree;
};

inline krsystem::GEVFields MakeUnreachableCamera(const KrString& aID) {
  krsystem::GEVFields fields = MakeCamera(aID, "172.16.0.9");
  fields.configurationValid = false;
  return fields;
}
