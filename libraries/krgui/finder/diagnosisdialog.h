#pragma once
// The answer to "Why is my camera not here?": what a diagnosis found, as text to read, select and copy. What counts as
// a reason is decided by discovery.

#include "krbase/krresult.h"
#include "krsystem/krfinding.h"
#include "platform/modalloop.h"

#include <vector>

namespace krgui {

class DiagnosisDialog final : public ModalLoop {
public:
  /// aResult: what the diagnosis ended with; its text is shown where it failed.
  DiagnosisDialog(QWidget* aOwner, const KrResult& aResult, const std::vector<KrFinding>& aFindings);
  ~DiagnosisDialog();

  ModalResult Run() { return RunLoop(); }

private:
  void OnAccept() override;
  void OnCancel() override;
};

} // namespace krgui
