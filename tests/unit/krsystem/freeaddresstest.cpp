#include "freeaddress.h"

#include "krsystem/ipv4address.h"
#include "krsystem/krsystem.h"
#include "systemfixtures.h"

#include <algorithm>

using krsystem::ChooseCandidates;
using krsystem::FormatIPv4;
using krsystem::ParseIPv4;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

struct CandidateRow {
  const char* name;
  const char* address;
  const char* mask;
  std::vector<KrString> taken;
  std::vector<KrString> candidates;
};

const std::vector<CandidateRow> kCandidates = {
    {"just above the adapter", "10.0.0.1", "255.255.255.0", {}, {"10.0.0.2", "10.0.0.3", "10.0.0.4"}},
    {"taken ones are passed over",
     "10.0.0.1",
     "255.255.255.0",
     {"10.0.0.2", "10.0.0.4"},
     {"10.0.0.3", "10.0.0.5", "10.0.0.6"}},
    {"round the end of the subnet", "10.0.0.253", "255.255.255.0", {}, {"10.0.0.254", "10.0.0.1", "10.0.0.2"}},
    {"past the fields 255 and 0", "10.0.0.253", "255.255.0.0", {}, {"10.0.0.254", "10.0.1.1", "10.0.1.2"}},
    {"within a subnet smaller than a field",
     "10.0.0.77",
     "255.255.255.240",
     {},
     {"10.0.0.78", "10.0.0.65", "10.0.0.66"}},
    {"of two hosts", "10.0.0.5", "255.255.255.252", {}, {"10.0.0.6"}},
    {"of two hosts, from the second", "10.0.0.6", "255.255.255.252", {}, {"10.0.0.5"}},
    {"of two hosts, both taken", "10.0.0.5", "255.255.255.252", {"10.0.0.6"}, {}},
    {"two addresses without network and broadcast", "10.0.0.4", "255.255.255.254", {}, {"10.0.0.5"}},
    {"two addresses, the other ends in 0", "10.0.0.1", "255.255.255.254", {}, {}},
    {"one address", "10.0.0.1", "255.255.255.255", {}, {}},
    {"no mask", "10.0.0.1", "0.0.0.0", {}, {}},
    {"a mask with a hole", "10.0.0.1", "255.0.255.0", {}, {}},
    {"link-local, the last but one block",
     "169.254.254.253",
     "255.255.0.0",
     {},
     {"169.254.254.254", "169.254.1.1", "169.254.1.2"}},
    {"half of all addresses", "127.255.255.254", "128.0.0.0", {}, {"0.0.0.1", "0.0.0.2", "0.0.0.3"}},
};

std::uint32_t Parse(const KrString& aText) {
  return ParseIPv4(aText).value();
}

std::vector<KrString> Format(const std::vector<std::uint32_t>& aAddresses) {
  std::vector<KrString> texts;
  std::ranges::transform(aAddresses, std::back_inserter(texts), FormatIPv4);
  return texts;
}

// A system with one adapter, and a network in which a test says who uses which address.
class FreeAddressTest : public testing::Test {
protected:
  explicit FreeAddressTest(const KrString& aAddress = "10.0.0.1") {
    mTransport->interfaces = {MakeAdapter("eth0", aAddress)};
    mSystem = std::make_unique<KrSystem>();
  }

  const KrNetworkAdapter& GetAdapter() const {
    return dynamic_cast<const KrNetworkAdapter&>(*mSystem->GetInterface(0));
  }
  KrResult Find() { return mSystem->FindFreeAddress(GetAdapter(), 0, mStop.get_token(), mFound); }
  // Records the batches and has everybody use the addresses up to one.
  void UseUpTo(const KrString& aLast) {
    mTransport->findUsed = [this, last = Parse(aLast)](const std::vector<std::uint32_t>& aAddresses,
                                                       const std::stop_token&, std::vector<std::uint32_t>& aUsed) {
      mBatches.push_back(Format(aAddresses));
      std::ranges::copy_if(aAddresses, std::back_inserter(aUsed), [last](std::uint32_t aOne) { return aOne <= last; });
      return KrResult();
    };
  }

  const RegisteredTransport mTransport;
  std::unique_ptr<KrSystem> mSystem;
  std::stop_source mStop;
  std::vector<std::vector<KrString>> mBatches;
  KrString mFound = "unchanged";
};

class FreeAddressWithoutOwnTest : public FreeAddressTest {
protected:
  FreeAddressWithoutOwnTest() : FreeAddressTest("0.0.0.0") {}
};

} // namespace

TEST(ChooseCandidates, Subnet_GivesTheNearestThatMayBeUsed) {
  for (const CandidateRow& row : kCandidates) {
    SCOPED_TRACE(row.name);
    std::set<std::uint32_t> taken;
    for (const KrString& address : row.taken)
      taken.insert(Parse(address));

    const std::vector<std::uint32_t> candidates = ChooseCandidates({Parse(row.address), Parse(row.mask)}, taken, 3);

    EXPECT_EQ(Format(candidates), row.candidates);
  }
}

TEST_F(FreeAddressTest, FindFreeAddress_NobodyAnswers_IsTheNextOne) {
  UseUpTo("0.0.0.0");

  EXPECT_TRUE(Find().IsOK());

  EXPECT_EQ(mFound, "10.0.0.2");
  EXPECT_THAT(mBatches, ElementsAre(SizeIs(krsystem::kAddressBatch)));
  EXPECT_THAT(mTransport->askedInterfaces, ElementsAre(mTransport->interfaces[0]));
}

TEST_F(FreeAddressTest, FindFreeAddress_SomeAreUsed_IsTheFirstThatIsNot) {
  UseUpTo("10.0.0.12");

  EXPECT_TRUE(Find().IsOK());

  EXPECT_EQ(mFound, "10.0.0.13");
  ASSERT_THAT(mBatches, SizeIs(2));
  EXPECT_EQ(mBatches[1].front(), "10.0.0.10");
}

TEST_F(FreeAddressTest, FindFreeAddress_DevicesAndAdaptersAreKnown_AreNotAskedAbout) {
  krsystem::TolvanProtocolFields tolvan;
  tolvan.uniqueID = "t";
  tolvan.ipAddress = "10.0.0.3";
  krsystem::NetworkAdapterFields other = MakeAdapter("eth1", "10.0.0.4");
  other.defaultGateway = "10.0.0.5";
  mTransport->interfaces.push_back(other);
  mTransport->answers = {{0, MakeCamera("a", "10.0.0.2")}, {1, tolvan}};
  EXPECT_TRUE(mSystem->Find().IsOK());
  UseUpTo("0.0.0.0");

  EXPECT_TRUE(Find().IsOK());

  EXPECT_EQ(mFound, "10.0.0.6");
  ASSERT_THAT(mBatches, SizeIs(1));
  EXPECT_EQ(mBatches[0].front(), "10.0.0.6");
}

TEST_F(FreeAddressTest, FindFreeAddress_EverythingIsUsed_IsNotFoundAfterAFewBatches) {
  UseUpTo("255.255.255.255");

  const KrResult result = Find();

  EXPECT_TRUE(result == KrResult::Code::NotFound);
  EXPECT_EQ(result.GetDescription(), "No free address was found in the subnet of 10.0.0.1 (mask 255.255.255.0); choose "
                                     "one yourself, or give the adapter a larger subnet.");
  EXPECT_EQ(mFound, "unchanged");
  EXPECT_THAT(mBatches, SizeIs(krsystem::kMostAddressBatches));
}

TEST_F(FreeAddressTest, FindFreeAddress_CancelledBefore_IsAbortedAndAsksNobody) {
  UseUpTo("0.0.0.0");
  mStop.request_stop();

  EXPECT_TRUE(Find() == KrResult::Code::Aborted);

  EXPECT_THAT(mBatches, IsEmpty());
}

TEST_F(FreeAddressTest, FindFreeAddress_CancelledMeanwhile_IsAborted) {
  mTransport->findUsed = [this](const std::vector<std::uint32_t>&, const std::stop_token& aCancel,
                                std::vector<std::uint32_t>&) {
    mStop.request_stop();
    return aCancel.stop_requested() ? KrResult(KrResult::Code::Aborted) : KrResult();
  };

  EXPECT_TRUE(Find() == KrResult::Code::Aborted);

  EXPECT_EQ(mFound, "unchanged");
}

TEST_F(FreeAddressTest, FindFreeAddress_TransportCannotAsk_IsNotSupported) {
  EXPECT_TRUE(Find() == KrResult::Code::NotSupported);
}

TEST_F(FreeAddressTest, FindFreeAddress_TransportThrows_IsSystemError) {
  mTransport->throws = true;

  EXPECT_TRUE(Find() == KrResult::Code::SystemError);
}

TEST_F(FreeAddressTest, FindFreeAddress_AdapterOfNoSystem_IsNotSupported) {
  const KrNetworkAdapter adapter(MakeAdapter("eth9"));

  EXPECT_TRUE(mSystem->FindFreeAddress(adapter, 0, {}, mFound) == KrResult::Code::NotSupported);
}

TEST_F(FreeAddressTest, FindFreeAddress_IndexBeyondTheAddresses_IsInvalidInput) {
  EXPECT_TRUE(mSystem->FindFreeAddress(GetAdapter(), 1, {}, mFound) == KrResult::Code::InvalidInput);
}

TEST_F(FreeAddressWithoutOwnTest, FindFreeAddress_AddressOfZeros_IsInvalidInput) {
  const KrResult result = Find();

  EXPECT_TRUE(result == KrResult::Code::InvalidInput);
  EXPECT_EQ(result.GetDescription(), "Looking for a free address: eth0 has no address there; give it one first.");
}
