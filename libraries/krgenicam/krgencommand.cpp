#include "krgenicam/krgencommand.h"

#include "map/nodemap.h"
#include "nodes/commandnode.h"

using krgenicam::CommandNode;
using krgenicam::Evaluation;

KrResult KrGenCommand::Execute() {
  return mMap.Run([&](Evaluation& aEvaluation) { return static_cast<CommandNode&>(mNode).Execute(aEvaluation); });
}

KrResult KrGenCommand::IsDone(bool& aIsDone) {
  return mMap.Run([&](Evaluation& aEvaluation) {
    bool isDone = false;
    KrResult result = static_cast<CommandNode&>(mNode).IsDone(aEvaluation, isDone);
    if (result.IsOK())
      aIsDone = isDone;
    return result;
  });
}
