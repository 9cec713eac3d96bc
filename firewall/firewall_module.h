// What the firewall commands share.
#pragma once

namespace CorvaneCli::NetworkNamespace {

// The kernel module that is the host firewall.
inline constexpr char kFirewallModuleName[] = "haldenfw";

}  // namespace CorvaneCli::NetworkNamespace
