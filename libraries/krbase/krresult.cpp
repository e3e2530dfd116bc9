#include "krbase/krresult.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

struct CodeName {
  KrResult::Code code;
  std::string_view name;
};

constexpr std::array kCodeNames = {
    CodeName{KrResult::Code::OK, "OK"},
    CodeName{KrResult::Code::NotFound, "NotFound"},
    CodeName{KrResult::Code::AccessDenied, "AccessDenied"},
    CodeName{KrResult::Code::ConnectionLost, "ConnectionLost"},
    CodeName{KrResult::Code::Aborted, "Aborted"},
    CodeName{KrResult::Code::Busy, "Busy"},
    CodeName{KrResult::Code::ProtocolError, "ProtocolError"},
    CodeName{KrResult::Code::SystemError, "SystemError"},
    CodeName{KrResult::Code::BadData, "BadData"},
    CodeName{KrResult::Code::NotSupported, "NotSupported"},
    CodeName{KrResult::Code::WrongState, "WrongState"},
    CodeName{KrResult::Code::TimeLimitExceeded, "TimeLimitExceeded"},
    CodeName{KrResult::Code::InvalidInput, "InvalidInput"},
    CodeName{KrResult::Code::NotOffered, "NotOffered"},
    CodeName{KrResult::Code::Failed, "Failed"},
    CodeName{KrResult::Code::OutOfRange, "OutOfRange"},
    CodeName{KrResult::Code::Cancelled, "Cancelled"},
};

} // namespace

KrResult::KrResult(Code aCode) : mCode(aCode) {}

KrResult::KrResult(Code aCode, const KrString& aDescription)
    : mCode(aCode), mDescription(aCode == Code::OK ? KrString() : aDescription) {}

KrString KrResult::GetCodeString() const {
  const auto row =
      std::find_if(kCodeNames.begin(), kCodeNames.end(), [this](const CodeName& aRow) { return aRow.code == mCode; });
  return row != kCodeNames.end() ? KrString(row->name) : KrString("Unknown");
}
