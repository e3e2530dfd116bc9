#pragma once
// What a camera file says, once every name and number in it has been checked. Reading the text is left to
// CameraFileReader, what becomes of it to FileDescription and CameraFilePort.

#include "camerafile/commandtemplate.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace krcamerabridge {

/// An answer that says that something is wrong.
struct FileError {
  CommandTemplate answer;
  std::string text; ///< What it means; empty where the camera's own words have to do.
  std::map<std::int64_t, std::string> codes;
  bool isDamage = false; ///< The command came damaged; it is sent again.
};

struct FileProtocol {
  std::uint32_t baudRate = 9600;
  bool isBinary = false;
  CommandTemplate commandStart;
  CommandTemplate commandEnd;
  CommandTemplate answerStart;
  CommandTemplate answerEnd;
  bool hasEcho = false;
  std::string echoEnd; ///< The end of the command as the camera repeats it.
  std::string prompt;
  std::uint32_t answerMs = 500;
  std::uint32_t pauseMs = 0;
  std::uint32_t repeats = 1;
  ChecksumRule check;
  std::vector<FileError> errors; ///< Their answers are whole messages.
  std::size_t probeFeature = 0;
};

enum class FileType : std::uint8_t { Integer, Float, String, Boolean, Enumeration, Command };

/// One value of an enumeration, or of a boolean (0 for off, 1 for on).
struct FileEntry {
  std::string name;
  std::string displayName = {};
  std::string toolTip = {};
  std::string wire = {};
  std::optional<std::int64_t> wireNumber = {}; ///< Where the wire is a number.
};

/// A bound of a number: a number, or a feature that has it.
struct FileBound {
  double number = 0;
  std::int64_t whole = 0; ///< Of integers.
  std::optional<std::size_t> featureIndex = {};
};

/// A feature has a certain value.
struct FileCondition {
  std::size_t featureIndex = 0;
  std::int64_t value = 0;
};

struct FileFeature {
  std::string name;
  FileType type = FileType::Integer;
  std::string displayName;
  std::string toolTip;
  std::string description;
  std::string visibility = "Beginner"; ///< As descriptions spell it, like the next.
  std::string representation;
  std::string unit;
  std::optional<FileBound> minimum;
  std::optional<FileBound> maximum;
  std::optional<FileBound> increment;
  double scale = 1; ///< The value is the camera's number times scale plus offset.
  double offset = 0;
  std::vector<FileEntry> entries;
  std::size_t maxLength = 64;
  std::optional<CommandTemplate> get; ///< Templates are whole messages.
  CommandTemplate getAnswer;
  std::optional<CommandTemplate> set;       ///< Of a command what executes it.
  std::optional<CommandTemplate> setAnswer; ///< None where the camera says nothing.
  std::optional<WireValue> start; ///< What the program remembers itself, as the user sees it; of entries the index.
  bool isConstant = false;
  bool isCached = true;
  std::uint32_t pollMs = 0;
  bool isStreamable = false;
  std::uint32_t answerMs = 0;
  std::uint32_t pauseMs = 0;
  std::vector<std::size_t> changes;       ///< Features that may be others when it is set.
  std::vector<FileCondition> availableIf; ///< All have to hold.
  std::vector<FileCondition> lockedIf;    ///< One is enough.

  bool IsReadable() const { return get || start; }
  bool IsWritable() const { return set || (start && !isConstant); }
};

struct FileCategory {
  std::string name;
  std::string displayName;
  std::string toolTip;
  std::string description;
  std::string visibility = "Beginner";
  std::vector<std::size_t> features;
  std::vector<std::size_t> categories; ///< In the model's list.
};

struct FileModel {
  std::string vendor;
  std::string model;
  std::string description;
  FileProtocol protocol;
  std::vector<FileFeature> features;
  std::vector<FileCategory> categories;
  std::vector<std::size_t> topCategories;
};

} // namespace krcamerabridge
