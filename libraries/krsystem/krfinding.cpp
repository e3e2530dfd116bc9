#include "krsystem/krfinding.h"

#include <string>

KrString KrGetFindingSentence(const KrFinding& aFinding) {
  const bool isNamed = aFinding.text.ToUtf8().find(aFinding.subject.ToUtf8()) != std::string::npos;
  return isNamed ? aFinding.text : aFinding.subject + ": " + aFinding.text;
}
