#pragma once
// What the terminal sends for what the user has typed and chosen.

#include "logic/serial/hexbytes.h"

#include <string>
#include <string_view>

namespace krgui {

/// The "Send as" choices, by their control ids.
enum class SendFormat { ASCII = 1055, Hexadecimal = 1056 };

/// The "Append" choices.
struct TrailerChoice {
  bool cr = true;
  bool lf = false;
  bool null = false;
  bool other = false;
  std::u16string otherText;
};

/// The bytes of the "Data" field: in ASCII the low eight bits of each UTF-16 unit, in hexadecimal as ParseHexString
/// reads the text in upper case. Thread: any.
ParsedBytes EncodeSendData(std::u16string_view aText, SendFormat aFormat);
/// The bytes behind the data, in the order CR, LF, NULL, other. Not ok where the other text is no good; the bytes are
/// those before it then. Thread: any.
ParsedBytes BuildTrailer(const TrailerChoice& aChoice);

/// What is told of bad data, and of a bad other trailer; lines end in CR LF.
extern const std::u16string_view kSendDataError;
extern const std::u16string_view kOtherTrailerError;

} // namespace krgui
