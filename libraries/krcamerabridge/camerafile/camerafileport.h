#pragma once
// The registers of a camera that a camera file describes: each access becomes a command and its answer.

#include "camerafile/camerafile.h"
#include "camerafile/commandexchange.h"
#include "line/formerrate.h"
#include "line/icameraline.h"
#include "line/icameraport.h"
#include "line/portworker.h"

#include <cstdint>
#include <memory>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace krcamerabridge {

/// Takes the accesses, each as long as the camera needs. Thread: the worker's alone. Ownership: borrows the line.
class CameraFileDevice final : public ILineDevice {
public:
  CameraFileDevice(std::shared_ptr<const FileModel> aModel, ICameraLine& aLine);

  KrResult Read(std::uint64_t aAddress, std::span<std::uint8_t> aData, const std::stop_token& aStop) override;
  KrResult Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData, const std::stop_token& aStop) override;
  /// Asks for the feature that the file names for it, or the first that can be asked.
  KrResult Probe(const std::stop_token& aStop) override;

private:
  /// InvalidInput for what is not exactly one feature's register.
  KrResult FindFeature(std::uint64_t aAddress, std::size_t aLength, std::size_t& aIndex) const;
  KrResult Ask(std::size_t aIndex, const std::stop_token& aStop, WireValue& aShown);
  KrResult Tell(std::size_t aIndex, const WireValue& aShown, const std::stop_token& aStop);
  /// The bytes of a value, unless they do not fit, or would steer the camera.
  KrResult Encode(const FileFeature& aFeature, const WireValue& aShown, const WireFormat& aFormat,
                  std::string& aBytes) const;
  /// The template with the values of features that the program remembers in their places, and that of the feature where
  /// there is one.
  KrResult Bind(const CommandTemplate& aTemplate, const FileFeature* aFeature, const WireValue* aShown,
                CommandTemplate& aBound) const;
  KrResult BindOrder(const FileFeature& aFeature, const CommandTemplate& aCommand, const CommandTemplate* aAnswer,
                     const WireValue* aShown, CommandOrder& aOrder) const;

  const std::shared_ptr<const FileModel> mModel;
  CommandExchange mExchange;
  std::vector<WireValue> mHeld; ///< By feature; of those that have a start.
};

/// Thread: any, but for SetRate, before all accesses, and destruction, which ends them first. Ownership: shares the
/// file's model; borrows the line.
class CameraFilePort final : public ICameraPort {
public:
  CameraFilePort(const CameraFile& aFile, ICameraLine& aLine);
  ~CameraFilePort() override { Disconnect({}); }

  /// Gives the line the camera's rate. NotSupported where it cannot have that; a line whose rate nobody can tell is
  /// taken to have the right one.
  KrResult SetRate();
  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel = {}) override;
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel = {}) override;

  /// Ends the accesses, and gives the line its former rate when the last command has left it; a camera is not told.
  void Disconnect(const std::stop_token& aStop) override;
  /// Ends the accesses that wait, and all later ones, with Aborted.
  void End() { mWorker.End(); }
  /// Asks the camera whether it is there, with a time limit in milliseconds: any answer but silence says so.
  KrResult Greet(std::uint32_t aTimeoutMs, const std::stop_token& aCancel = {});
  /// The longest that an access can take with all its repetitions, in milliseconds: the time limit for a parameter
  /// array.
  std::uint32_t GetLongestAccessMs() const;

private:
  const std::shared_ptr<const FileModel> mModel;
  ICameraLine& mLine;
  FormerRate mFormerRate;
  CameraFileDevice mDevice;
  PortWorker mWorker; // Last, so that it ends before what it uses.
};

} // namespace krcamerabridge
