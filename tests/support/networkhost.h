#pragma once
// A computer of a test's network: a network namespace with adapters and addresses of its own. It is a name for the
// kernel alone: programs and threads that are to live there are put there by whoever starts them. How hosts are
// connected is left to the lab.

#include <functional>
#include <string>
#include <vector>

/// One namespace, from construction to destruction, with its loopback adapter up.
///
/// Thread: one at a time, but GetNamespaceFile and Run from any. Ownership: owns the namespace, which ends with it and
/// the last program and socket in it, and takes its adapters along.
class NetworkHost {
public:
  /// Fails the test when no namespace can be made, as outside of scripts/with-network.sh.
  explicit NetworkHost(std::string aName);
  ~NetworkHost();
  NetworkHost(const NetworkHost&) = delete;
  NetworkHost& operator=(const NetworkHost&) = delete;

  const std::string& GetName() const { return mName; }
  /// The file by which programs (nsenter --net=FILE, ip link set … netns FILE) are told of the namespace.
  std::string GetNamespaceFile() const;

  /// Runs a function on a thread in the namespace and waits for its end: sockets that it makes belong there for good.
  void Run(const std::function<void()>& aWork) const;

  /// The operations of an adapter, as NetworkLab's for the test's own.
  void SetAddress(const std::string& aAdapter, const std::string& aAddressAndPrefix) const;
  void SetUp(const std::string& aAdapter) const;
  void SetDown(const std::string& aAdapter) const;
  /// Runs `ip` with arguments in the namespace; a failure fails the test.
  void RunIp(const std::vector<std::string>& aArguments) const;

private:
  const std::string mName;
  int mNamespace = -1;
};

/// Runs a program to its end; what it says on its standard error comes back when it fails, else an empty text.
std::string RunProgram(const std::vector<std::string>& aCommandLine);
