#include "diagnosisreadings.h"

#include <string_view>

using krsystem::AdapterBasis;
using krsystem::AdapterReading;
using krsystem::FindCauses;
using krsystem::HostReadings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST(FindCauses, AdapterIsSwitchedOff_IsAdapterDownAlone) {
  HostReadings host = MakeHost();
  GetEth0(host) = {.uniqueID = "id0",
                   .name = "eth0",
                   .isUp = false,
                   .hasCarrier = false,
                   .addresses = {{"10.0.1.9", "255.255.255.0"}},
                   .reversePathFilter = 1};

  EXPECT_THAT(FindCauses(host, {}),
              ElementsAre(KrFinding{KrFindingKind::AdapterDown, "eth0", "The network adapter eth0 is switched off.",
                                    "Switch it on if a camera is connected to it.\nsudo ip link set eth0 up"}));
}

TEST(FindCauses, AdapterWithoutLink_IsNoCarrierAlone) {
  HostReadings host = MakeHost();
  GetEth0(host).hasCarrier = false;
  GetEth0(host).addresses.clear();

  EXPECT_THAT(
      FindCauses(host, {}),
      ElementsAre(KrFinding{
          KrFindingKind::NoCarrier, "eth0",
          "The network adapter eth0 has no link: there is no cable, or nobody at its other end.",
          "Check the cable, and that the camera has power. LOWER_UP shows that there is a link.\nip link show eth0"}));
}

TEST(FindCauses, AdapterWithoutAddress_IsNoAddress) {
  for (const std::vector<krsystem::AdapterAddress>& none :
       {std::vector<krsystem::AdapterAddress>{}, std::vector<krsystem::AdapterAddress>{{"0.0.0.0", "0.0.0.0"}}}) {
    HostReadings host = MakeHost();
    GetEth0(host).addresses = none;

    EXPECT_THAT(
        FindCauses(host, {}),
        ElementsAre(KrFinding{
            KrFindingKind::NoAddress, "eth0",
            "The network adapter eth0 has no IPv4 address, so no camera can be reached behind it.",
            "Give it one in the subnet of the camera, in the system's network settings or until the next start; a "
            "camera that was never given an address mostly has one of 169.254.0.0/16.\n"
            "sudo ip address add 169.254.1.1/16 dev eth0"}));
  }
}

// What is told of an adapter by what it consists of, beside one with a plug.
struct BasisRow {
  const char* what;
  AdapterReading adapter;
  std::vector<KrFindingKind> kinds;
};

const BasisRow kBases[] = {
    {"PortWithoutAddress", {.uniqueID = "id2", .name = "probe0", .addresses = {}, .isPort = true}, {}},
    {"PortWithoutLink",
     {.uniqueID = "id2", .name = "probe0", .hasCarrier = false, .addresses = {}, .isPort = true},
     {}},
    {"PortThatIsDown", {.uniqueID = "id2", .name = "probe0", .isUp = false, .addresses = {}, .isPort = true}, {}},
    {"FilterOfAPort",
     {.uniqueID = "id2", .name = "probe0", .addresses = {}, .reversePathFilter = 1, .isPort = true},
     {}},
    {"PortsWithoutAddress",
     {.uniqueID = "id2", .name = "probe0", .addresses = {}, .basis = AdapterBasis::Ports},
     {KrFindingKind::NoAddress}},
    {"PortsWithoutLink",
     {.uniqueID = "id2", .name = "probe0", .hasCarrier = false, .addresses = {}, .basis = AdapterBasis::Ports},
     {KrFindingKind::NoCarrier}},
    {"LowerWithoutAddress", {.uniqueID = "id2", .name = "probe0", .addresses = {}, .hasOthersOn = true}, {}},
    {"LowerWithoutLink",
     {.uniqueID = "id2", .name = "probe0", .hasCarrier = false, .addresses = {}, .hasOthersOn = true},
     {KrFindingKind::NoCarrier}},
    {"UpperWithoutAddress",
     {.uniqueID = "id2", .name = "probe0", .addresses = {}, .basis = AdapterBasis::Adapter},
     {KrFindingKind::NoAddress}},
    {"UpperWithoutLink",
     {.uniqueID = "id2", .name = "probe0", .hasCarrier = false, .addresses = {}, .basis = AdapterBasis::Adapter},
     {}},
    {"BridgeWithoutPorts",
     {.uniqueID = "id2",
      .name = "probe0",
      .hasCarrier = false,
      .addresses = {{"172.17.0.1", "255.255.0.0"}},
      .basis = AdapterBasis::Nothing},
     {}},
    {"TunnelWithoutAddress",
     {.uniqueID = "id2", .name = "probe0", .addresses = {}, .basis = AdapterBasis::Nothing},
     {}},
    {"ContainersCable",
     {.uniqueID = "id2", .name = "probe0", .addresses = {}, .basis = AdapterBasis::VirtualCable},
     {}},
    {"ContainersCableWithoutLink",
     {.uniqueID = "id2", .name = "probe0", .hasCarrier = false, .addresses = {}, .basis = AdapterBasis::VirtualCable},
     {}},
    {"VirtualCableWithAddressWithoutLink",
     {.uniqueID = "id2",
      .name = "probe0",
      .hasCarrier = false,
      .addresses = {{"172.17.0.1", "255.255.0.0"}},
      .basis = AdapterBasis::VirtualCable},
     {KrFindingKind::NoCarrier}},
};

class FindCausesOfBases : public testing::TestWithParam<BasisRow> {};

TEST_P(FindCausesOfBases, Adapter_IsToldOfWhereACameraMayBeBehindIt) {
  HostReadings host = MakeHost();
  host.adapters.push_back(GetParam().adapter);

  const std::vector<KrFinding> findings = FindCauses(host, {});

  EXPECT_EQ(ListKinds(findings), GetParam().kinds);
  for (const KrFinding& finding : findings)
    EXPECT_EQ(finding.subject, "probe0");
}

INSTANTIATE_TEST_SUITE_P(Bases, FindCausesOfBases, testing::ValuesIn(kBases),
                         [](const auto& aInfo) { return aInfo.param.what; });

TEST(FindCauses, VirtualCableOnAHostWithoutHardware_CountsAsAPlug) {
  HostReadings host = MakeHost();
  host.adapters.erase(host.adapters.begin() + 2);
  GetEth0(host).basis = AdapterBasis::VirtualCable;
  GetEth0(host).addresses.clear();

  EXPECT_THAT(ListKinds(FindCauses(host, {})), ElementsAre(KrFindingKind::NoAddress)) << "as in a container";
  GetEth0(host).hasCarrier = false;
  EXPECT_THAT(ListKinds(FindCauses(host, {})), ElementsAre(KrFindingKind::NoCarrier));
}

TEST(FindCauses, NoCarrier_OfWhatHasNoPlug_SpeaksOfNoCableOfItsOwn) {
  HostReadings host = MakeHost();
  GetEth0(host).hasCarrier = false;
  GetEth0(host).basis = AdapterBasis::VirtualCable;
  host.adapters[2].hasCarrier = false;
  host.adapters[2].basis = AdapterBasis::Ports;

  EXPECT_THAT(
      FindCauses(host, {}),
      ElementsAre(
          KrFinding{KrFindingKind::NoCarrier, "eth0", "The network adapter eth0 has no link: its other end is off.",
                    "Switch on the other end of this virtual cable. LOWER_UP shows that there is a link.\n"
                    "ip link show eth0"},
          KrFinding{KrFindingKind::NoCarrier, "eth1", "None of the ports of the network adapter eth1 has a link.",
                    "Check the cables of its ports, that the ports are switched on, and that the camera has "
                    "power.\nip link show master eth1"}));
}

TEST(FindCauses, HostWithTheLoopbackAdapterAlone_IsNoAdapter) {
  HostReadings host = MakeHost();
  const KrFinding noAdapter = {
      KrFindingKind::NoAdapter, "",
      "This computer has no network adapter but the loopback one, so no camera on the network can be found.",
      "Add an adapter, or its driver; give a container or a network namespace one of the host's, or start the program "
      "outside of it.\nip link show"};

  host.adapters.resize(1);
  EXPECT_THAT(FindCauses(host, {}), ElementsAre(noAdapter));
  host.adapters.clear();
  EXPECT_THAT(FindCauses(host, {}), ElementsAre(noAdapter)) << "not even that";
}

TEST(FindCauses, HostWithoutAdapters_IsWellWhereNobodyLooksOnThem) {
  HostReadings host = MakeHost();
  host.adapters.clear();
  host.hasNetworkTransport = false;

  EXPECT_THAT(FindCauses(host, {}), IsEmpty());
}

TEST(FindCauses, LoopbackInAnyState_IsNotTalkedOf) {
  HostReadings host = MakeHost();
  host.adapters[0] = {.uniqueID = "lo", .name = "lo", .isLoopback = true, .addresses = {}, .reversePathFilter = 1};
  host.adapters.push_back({.uniqueID = "lo2", .name = "lo2", .isLoopback = true, .isUp = false, .addresses = {}});

  EXPECT_THAT(FindCauses(host, {}), IsEmpty());
}

// Which filter hears a device of a foreign subnet, with which way to everywhere.
struct FilterRow {
  const char* what;
  std::int32_t filter;
  bool isRouteHere;
  bool isRouteElsewhere;
  const char* text;   // Empty where the device is heard.
  const char* remedy; // What follows the first sentence.
};

constexpr const char* kStrictText = "The kernel drops what comes to eth0 from addresses of other subnets (strict "
                                    "reverse-path filter), so a camera with such an address may not be seen.";
constexpr const char* kLooseText = "The kernel drops what comes to eth0 from addresses of other subnets (loose "
                                   "reverse-path filter, on a host without a default route), so a camera with such an "
                                   "address may not be seen.";
constexpr const char* kOff = "\nsudo sysctl -w net.ipv4.conf.all.rp_filter=0 net.ipv4.conf.eth0.rp_filter=0";

const FilterRow kFilters[] = {
    {"OffWithoutRoute", 0, false, false, "", ""},
    {"StrictWithoutRoute", 1, false, false, kStrictText, kOff},
    {"StrictWithARouteElsewhere", 1, false, true, kStrictText, "\nsudo sysctl -w net.ipv4.conf.eth0.rp_filter=2"},
    {"StrictWithTheRoute", 1, true, false, "", ""},
    {"LooseWithoutRoute", 2, false, false, kLooseText, kOff},
    {"LooseWithARouteElsewhere", 2, false, true, "", ""},
    {"LooseWithTheRoute", 2, true, false, "", ""},
};

class FindCausesOfFilters : public testing::TestWithParam<FilterRow> {};

TEST_P(FindCausesOfFilters, Filter_IsFoundWhereItDropsForeignSubnets) {
  HostReadings host = MakeHost();
  GetEth0(host).reversePathFilter = GetParam().filter;
  GetEth0(host).hasDefaultRoute = GetParam().isRouteHere;
  host.adapters[2].hasDefaultRoute = GetParam().isRouteElsewhere;

  const std::vector<KrFinding> findings = FindCauses(host, {});

  if (std::string_view(GetParam().text).empty()) {
    EXPECT_THAT(findings, IsEmpty());
    return;
  }
  ASSERT_THAT(ListKinds(findings), ElementsAre(KrFindingKind::ReversePathFilter));
  EXPECT_EQ(findings[0].subject, "eth0");
  EXPECT_EQ(findings[0].text, GetParam().text);
  EXPECT_THAT(findings[0].remedy.ToUtf8(), testing::EndsWith(GetParam().remedy));
}

INSTANTIATE_TEST_SUITE_P(Filters, FindCausesOfFilters, testing::ValuesIn(kFilters),
                         [](const auto& aInfo) { return aInfo.param.what; });

TEST(FindCauses, ReversePathFilterOfAVLAN_IsNamedAsTheKernelHasIt) {
  HostReadings host = MakeHost();
  GetEth0(host).name = "eth0.5";
  GetEth0(host).reversePathFilter = 1;

  const std::vector<KrFinding> findings = FindCauses(host, {});

  ASSERT_EQ(findings.size(), 1u);
  EXPECT_THAT(findings[0].remedy.ToUtf8(), testing::HasSubstr("net.ipv4.conf.eth0/5.rp_filter=0"));
}

TEST(FindCauses, ReceiveBufferLimit_BelowTwoFrames_IsFound) {
  HostReadings host = MakeHost();
  host.receiveBufferLimitBytes = 212'992;

  EXPECT_THAT(FindCauses(host, {}),
              ElementsAre(KrFinding{KrFindingKind::ReceiveBufferLimit, "",
                                    "A socket is given 212992 bytes for what it receives (net.core.rmem_max), and two "
                                    "frames of a usual camera take 8388608: frames may be incomplete.",
                                    "Raise the limit; a file in /etc/sysctl.d keeps it.\n"
                                    "sudo sysctl -w net.core.rmem_max=33554432"}));
  host.receiveBufferLimitBytes = 8'388'608;
  EXPECT_THAT(FindCauses(host, {}), IsEmpty());
  host.receiveBufferLimitBytes.reset();
  EXPECT_THAT(FindCauses(host, {}), IsEmpty()) << "nobody could read it";
}

TEST(FindCauses, ReceiveBufferLimit_WithoutAnAdapterForCameras_IsNotTalkedOf) {
  HostReadings host = MakeHost();
  host.receiveBufferLimitBytes = 212'992;
  host.adapters.erase(host.adapters.begin() + 1, host.adapters.end());

  EXPECT_THAT(ListKinds(FindCauses(host, {})), ElementsAre(KrFindingKind::NoAdapter)) << "the loopback adapter alone";
  host.adapters.push_back({.uniqueID = "id0",
                           .name = "docker0",
                           .addresses = {{"172.17.0.1", "255.255.0.0"}},
                           .basis = AdapterBasis::Nothing});
  EXPECT_THAT(FindCauses(host, {}), IsEmpty()) << "an adapter of programs";
}

constexpr const char* kSubnetRemedy =
    "Give one of the two, and the cameras behind it, addresses of another subnet, in the system's network settings. "
    "Mind by which of them you are logged in.";

TEST(FindCauses, TwoAdaptersInOneSubnet_IsSubnetNotUnique) {
  HostReadings host = MakeHost();
  host.adapters[2].addresses = {{"10.0.2.1", "255.255.255.0"}, {"10.0.0.77", "255.255.255.0"}};

  EXPECT_THAT(FindCauses(host, {}),
              ElementsAre(KrFinding{KrFindingKind::SubnetNotUnique, "eth1",
                                    "The network adapters eth1 (10.0.0.77, mask 255.255.255.0) and eth0 (10.0.0.1, "
                                    "mask 255.255.255.0) lie in one subnet: the kernel sends by one of them only, and "
                                    "cameras behind the other one cannot be reached.",
                                    kSubnetRemedy}));
}

TEST(FindCauses, SubnetWithinAnother_IsSubnetNotUniqueToldOfTheOuterOne) {
  HostReadings host = MakeHost();
  for (const bool isInnerFirst : {true, false}) {
    const krsystem::AdapterAddress inner = {"10.1.1.1", "255.255.255.0"};
    const krsystem::AdapterAddress outer = {"10.0.0.1", "255.0.0.0"};
    host.adapters[1].addresses = {isInnerFirst ? inner : outer};
    host.adapters[2].addresses = {isInnerFirst ? outer : inner};
    const KrString innerName = isInnerFirst ? "eth0" : "eth1";
    const KrString outerName = isInnerFirst ? "eth1" : "eth0";

    EXPECT_THAT(FindCauses(host, {}),
                ElementsAre(KrFinding{KrFindingKind::SubnetNotUnique, "eth1",
                                      "The subnet of the network adapter " + innerName +
                                          " (10.1.1.1, mask 255.255.255.0) lies within that of " + outerName +
                                          " (10.0.0.1, mask 255.0.0.0): what is for it is sent by " + innerName +
                                          " alone, and cameras behind " + outerName +
                                          " with an address of it cannot be reached.",
                                      kSubnetRemedy}));
  }
}

TEST(FindCauses, ManyAdaptersInOneSubnet_AreToldOfOnceEach) {
  HostReadings host = MakeHost();
  host.adapters.clear();
  for (int i = 0; i < 4; ++i) {
    const KrString name = "eth" + KrString(std::to_string(i));
    host.adapters.push_back({.uniqueID = name, .name = name, .addresses = {{"169.254.1.1", "255.255.0.0"}}});
  }
  host.adapters[3].isUp = false;

  EXPECT_THAT(ListKinds(FindCauses(host, {})),
              ElementsAre(KrFindingKind::AdapterDown, KrFindingKind::SubnetNotUnique, KrFindingKind::SubnetNotUnique));
}

TEST(FindCauses, AdapterThatTwoTransportsRead_IsToldOfOnce) {
  HostReadings host = MakeHost();
  GetEth0(host).reversePathFilter = 1;
  host.adapters.push_back(GetEth0(host));

  EXPECT_THAT(ListKinds(FindCauses(host, {})), ElementsAre(KrFindingKind::ReversePathFilter));
}

TEST(FindCauses, NamesThatAShellMightObey_AreInNoCommand) {
  for (const char* name : {"eth0;reboot", "$(reboot)", "`reboot`", "-delete", "a b", "a'b", "a\nb", "a|b", "ä"}) {
    HostReadings host = MakeHost();
    GetEth0(host).name = name;
    GetEth0(host).isUp = false;

    const std::vector<KrFinding> findings = FindCauses(host, {});

    ASSERT_EQ(findings.size(), 1u) << name;
    EXPECT_EQ(findings[0].subject, name);
    EXPECT_EQ(findings[0].remedy, "Switch it on if a camera is connected to it.") << name;
  }
}

} // namespace
