#pragma once
// Nodes of register kinds over memory without a node map: for what a user cannot tell apart, such as reading around the
// cache and being told of changes.

#include "describedcamera.h"
#include "description/description.h"
#include "nodes/integerregisternode.h"
#include "nodes/portnode.h"
#include "recordingport.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

/// Makes ports, registers of bytes and, of all else, integer registers of a description, and writes down which nodes
/// are invalidated.
class RegisterBench final : public krgenicam::INodeHost, public krgenicam::INodeIndex {
public:
  explicit RegisterBench(const std::string& aNodes) {
    KrGenDescription text;
    EXPECT_TRUE(KrGenDescription::ReadFromMemory(MakeDescription(aNodes), "test", text).IsOK());
    EXPECT_TRUE(krgenicam::Description::Read(text, mDescription).IsOK());
    for (const krgenicam::NodeDescription& node : mDescription.GetNodes()) {
      if (node.kind == krgenicam::NodeKind::Port)
        mNodes.push_back(std::make_unique<krgenicam::PortNode>(mDescription, node));
      else if (node.kind == krgenicam::NodeKind::Register)
        mNodes.push_back(std::make_unique<krgenicam::RegisterNode>(mDescription, node));
      else
        mNodes.push_back(std::make_unique<krgenicam::IntegerRegisterNode>(mDescription, node));
    }
    for (const auto& node : mNodes)
      node->Link(*this);
  }

  krgenicam::Node& Get(const char* aName) const { return *FindNode(aName); }
  /// The value as one evaluation of its own finds it.
  std::int64_t Read(const char* aName) {
    krgenicam::Evaluation evaluation(*this);
    return Read(evaluation, aName);
  }
  std::int64_t Read(krgenicam::Evaluation& aEvaluation, const char* aName) const {
    krgenicam::Number value;
    const KrResult result = Get(aName).GetValue(aEvaluation, value);
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    return value.ToInteger();
  }
  void Write(const char* aName, std::int64_t aValue) {
    krgenicam::Evaluation evaluation(*this);
    const KrResult result = Get(aName).SetValue(evaluation, krgenicam::Number(aValue));
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  }
  void Poke(std::uint64_t aAddress, std::uint8_t aByte) { EXPECT_TRUE(memory.Write(aAddress, &aByte, 1, 1000).IsOK()); }
  void Forget(const char* aName) {
    krgenicam::Node* const node = &Get(aName);
    Invalidate(std::span(&node, 1));
  }
  /// The names of the nodes that were invalidated since the last call.
  std::set<std::string> TakeInvalidated() { return std::exchange(mInvalidated, {}); }

  // INodeHost
  IKrRegisterPort& GetPort() override { return port; }
  bool IsReadOnly() const override { return false; }
  std::uint32_t GetTimeoutMs() const override { return 1000; }
  std::stop_token GetStopToken() const override { return {}; }
  KrResult GetClosing() const override { return {}; }
  std::uint64_t GetTimeMs() const override { return 0; }
  std::uint64_t TakeEpoch() override { return ++mEpoch; }
  void Invalidate(std::span<krgenicam::Node* const> aNodes) override {
    ++walksCount;
    std::vector<krgenicam::Node*> waiting(aNodes.begin(), aNodes.end());
    std::set<krgenicam::Node*> seen;
    while (!waiting.empty()) {
      krgenicam::Node& node = *waiting.back();
      waiting.pop_back();
      if (!seen.insert(&node).second)
        continue;
      mInvalidated.insert(std::string(node.GetName()));
      node.Forget(waiting);
      waiting.insert(waiting.end(), node.GetDependents().begin(), node.GetDependents().end());
    }
  }

  // INodeIndex
  krgenicam::Node* GetNode(krgenicam::NodeIndex aIndex) const override {
    return aIndex < mNodes.size() ? mNodes[aIndex].get() : nullptr;
  }
  krgenicam::Node* FindNode(std::string_view aName) const override { return GetNode(mDescription.Find(aName)); }
  void AddFault(const krgenicam::Node&, std::uint32_t aLine, const std::string& aText) override {
    ADD_FAILURE() << "line " << aLine << ": " << aText;
  }
  // Registers have no formulas.
  bool ReserveFormulaOperations(std::size_t) override { return false; }

  KrGenMemoryPort memory;
  RecordingPort port{memory};
  std::size_t walksCount = 0; ///< How often nodes were invalidated.

private:
  krgenicam::Description mDescription;
  std::vector<std::unique_ptr<krgenicam::Node>> mNodes;
  std::set<std::string> mInvalidated;
  std::uint64_t mEpoch = 0;
};

/// An integer register at the port "Device".
inline std::string MakeRegister(const std::string& aName, std::uint64_t aAddress, std::size_t aLength,
                                const std::string& aCachable = "WriteThrough", const std::string& aMode = "RW") {
  return "<IntReg Name=\"" + aName + "\"><Address>" + std::to_string(aAddress) + "</Address><Length>" +
         std::to_string(aLength) + "</Length><AccessMode>" + aMode + "</AccessMode><pPort>Device</pPort><Cachable>" +
         aCachable + "</Cachable><Endianess>LittleEndian</Endianess></IntReg>\n";
}
