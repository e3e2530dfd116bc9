#include "clprotocol/clprotocolport.h"

#include "clprotocol/cldriver.h"
#include "clprotocol/cldriverlist.h"
#include "clprotocol/clidentifiers.h"
#include "clprotocol/clsession.h"
#include "krbase/krlogger.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace krcamerabridge {

namespace {

struct DriverTemplates {
  std::vector<std::string> templates = {};
  KrResult result = {};
};

DriverTemplates AskTemplates(const CLDriverFile& aFile, const CLDriverTimes& aTimes) {
  DriverTemplates answer;
  CLDriver driver(aFile, aTimes, nullptr);
  answer.result = driver.Start({});
  if (answer.result.IsOK())
    answer.result = driver.GetTemplates(answer.templates, {});
  driver.Close();
  return answer;
}

// Of several at a time, so that those that hang are waited for together.
std::vector<DriverTemplates> AskAllTemplates(const std::vector<CLDriverFile>& aFiles, const CLDriverTimes& aTimes) {
  constexpr std::size_t kMostAtATime = 8;
  std::vector<DriverTemplates> answers(aFiles.size());
  std::atomic<std::size_t> next{0};
  const auto askNext = [&] {
    for (std::size_t i = next++; i < aFiles.size(); i = next++)
      answers[i] = AskTemplates(aFiles[i], aTimes);
  };
  std::vector<std::jthread> threads(std::min(kMostAtATime, aFiles.size()));
  try {
    for (std::jthread& thread : threads)
      thread = std::jthread(askNext);
  } catch (const std::system_error&) {
    // Who asks helps where the host has too few threads.
    askNext();
  }
  threads.clear();
  return answers;
}

} // namespace

CLProtocolPort::CLProtocolPort(ICameraLine& aLine, const CLDriverTimes& aTimes)
    : SessionPort("CL Protocol"), mLine(aLine), mTimes(aTimes) {}

KrResult CLProtocolPort::GetTemplates(KrStringList& aTemplates, const CLDriverTimes& aTimes) {
  const std::vector<CLDriverFile> files = ListCLDrivers();
  const std::vector<DriverTemplates> answers = AskAllTemplates(files, aTimes);
  // What is wrong with all of them is said once.
  std::vector<std::string> failures;
  aTemplates.Clear();
  for (std::size_t i = 0; i < files.size(); ++i) {
    for (const std::string& text : answers[i].templates)
      aTemplates.Add(MakeCLFullID({files[i].directory, files[i].fileName, text}));
    if (answers[i].result.IsOK())
      continue;
    const std::string words = answers[i].result.GetDescription().ToUtf8();
    if (std::ranges::find(failures, words) != failures.end())
      continue;
    KrLogger("KrCameraBridge").Log(KrLogLevel::Warning, {"CLProtocolPort::GetTemplates", "clprotocolport"}, words);
    failures.push_back(words);
  }
  if (!aTemplates.IsEmpty() || failures.empty())
    return {};
  std::string text;
  for (const std::string& words : failures)
    text += (text.empty() ? "" : "\n") + words;
  return {KrResult::Code::SystemError, text};
}

KrResult CLProtocolPort::Probe(const KrString& aTemplate, KrString& aCameraID, KrStringList& aXMLIDs,
                               const std::stop_token& aStop) {
  if (KrResult result = CheckUnconnected(); !result.IsOK())
    return result;
  CLSession session(mLine, mTimes);
  std::vector<std::string> xmlIDs;
  if (KrResult result = session.Open(aTemplate.ToUtf8(), aStop); !result.IsOK())
    return result;
  if (KrResult result = session.GetXMLIDs(xmlIDs, aStop); !result.IsOK())
    return result;
  aCameraID = session.GetCameraID();
  aXMLIDs.Clear();
  for (const std::string& xmlID : xmlIDs)
    aXMLIDs.Add(xmlID);
  return {};
}

KrResult CLProtocolPort::Connect(const KrString& aTemplate, const KrString& aXMLID, KrGenDescription& aDescription,
                                 const std::stop_token& aStop) {
  if (KrResult result = CheckUnconnected(); !result.IsOK())
    return result;
  auto session = std::make_unique<CLSession>(mLine, mTimes);
  std::vector<std::string> xmlIDs;
  if (KrResult result = session->Open(aTemplate.ToUtf8(), aStop); !result.IsOK())
    return result;
  if (KrResult result = session->GetXMLIDs(xmlIDs, aStop); !result.IsOK())
    return result;
  if (std::ranges::find(xmlIDs, aXMLID.ToUtf8()) == xmlIDs.end())
    return {KrResult::Code::NotFound,
            "The CL Protocol camera has no description " + aXMLID + "; probe it for those that it has."};
  if (KrResult result = session->GoFast(aStop); !result.IsOK())
    return result;
  if (KrResult result = session->ReadDescription(aXMLID.ToUtf8(), aDescription, aStop); !result.IsOK())
    return result;
  mCameraID = session->GetCameraID();
  Begin(std::move(session));
  return {};
}

} // namespace krcamerabridge
