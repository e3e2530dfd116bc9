#pragma once
// A formula as Aravis evaluates it.

#include <arv.h>

#include "aravismap.h"
#include "number.h"

#include <string>
#include <string_view>

class AravisFormula {
public:
  explicit AravisFormula(std::string_view aText) : mEvaluator(arv_evaluator_new(std::string(aText).c_str())) {}

  void SetVariable(const std::string& aName, const krgenicam::Number& aValue) {
    if (aValue.IsFloat())
      arv_evaluator_set_double_variable(mEvaluator.get(), aName.c_str(), aValue.ToFloat());
    else
      arv_evaluator_set_int64_variable(mEvaluator.get(), aName.c_str(), aValue.ToInteger());
  }
  double EvaluateFloat() { return Evaluate(arv_evaluator_evaluate_as_double); }
  std::int64_t EvaluateInteger() { return Evaluate(arv_evaluator_evaluate_as_int64); }
  bool HasFailed() const { return mHasFailed; }

private:
  template <typename Value>
  Value Evaluate(Value (*aEvaluate)(ArvEvaluator*, GError**)) {
    GError* error = nullptr;
    const Value value = aEvaluate(mEvaluator.get(), &error);
    mHasFailed = error != nullptr;
    g_clear_error(&error);
    return value;
  }

  AravisPointer<ArvEvaluator> mEvaluator;
  bool mHasFailed = false;
};
