// The real host: the network stack of the namespace the process runs in,
// seen through the same HostModel as the simulated host.
//
// The kernel is the truth for what it holds (devices, bridges, addresses,
// routes, neighbors, namespaces). What it cannot hold (a port group's name,
// an interface's port group) the backend keeps in a small file of its own,
// per network namespace, under /run, so that it ends with the kernel state it
// describes. A load reads the kernel and lays it over what was kept; a change
// is planned as kernel steps from the host before to the host after, each
// with its undo, applied, then verified by reading the kernel again.
//
// Each family of what the backend maps (linux_<family>.cc) reads its part of
// the host, plans its steps and names what it keeps.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host_backend.h"
#include "host_model.h"

namespace OrvkCtl::Linux {

using Sim::AreaSet;
using Sim::HostModel;

// The text of the host kind, for messages: "a linux host".
inline constexpr char kHostKind[] = "linux";

// The folder under which the backend reads and writes the files of the
// host that are not the kernel's (resolver configuration, hosts file, its
// own state): "/" on a real host; TOOLBASE_LINUX_ROOT names another, for
// tests.
std::string const& RootFolder();

// One change made to the kernel, and the change that undoes it (empty when
// there is nothing to undo).
struct Step {
  std::string what;  // for messages: "create bridge vSwitch1"
  std::function<void()> apply;
  std::function<void()> undo;
};
using Plan = std::vector<Step>;

// What one family of the mapping does. Families read and plan in the order
// of Families(): what others hang on (namespaces, bridges) comes first.
struct Family {
  char const* name;
  // The areas whose loading needs this family read.
  AreaSet areas;
  // Fills its part of `host` from the kernel. `host` holds what was kept
  // when it is called; the family replaces whatever the kernel holds.
  void (*read)(HostModel& host);
  // Appends to `plan` the kernel steps that make `before` into `after`.
  void (*plan)(HostModel const& before, HostModel const& after, Plan& plan);
  // Copies from `after` into `reread` the fields the backend keeps itself
  // (not the kernel), before the two are compared.
  void (*keep)(HostModel const& after, HostModel& reread);
};
std::vector<Family> const& Families();

// The families, each in its linux_<family>.cc.
Family NetstackFamily();
Family VswitchFamily();
Family NicFamily();
Family IpFamily();
Family IpsecFamily();
Family HostFamily();
Family FirewallFamily();
Family RuntimeFamily();

// The backend's own ends of its interfaces' veth pairs, the ports of the
// bridges, are named "tb-<interface>"; no NIC is named so.
inline constexpr char kOwnLinkPrefix[] = "tb-";
inline bool IsOwnLink(std::string const& name) { return name.rfind(kOwnLinkPrefix, 0) == 0; }

// Throws HostCtlException: `what` is not available on a linux host.
[[noreturn]] void NotAvailable(std::string const& what);

}  // namespace OrvkCtl::Linux
