// Plug-ins that fail while they register, one way each (FAULT, set by CMake):
//   throw_error   registers a word, then throws a std::exception
//   throw_other   registers a word, then throws an int
//   crash         registers a word, then dies of a segmentation fault
// The tests put them beside working plug-ins, which must keep working.
#include <csignal>
#include <stdexcept>

#include "toolbase/auto_cli.h"

#define FAULT_throw_error 1
#define FAULT_throw_other 2
#define FAULT_crash 3
#define FAULT_KIND_(kind) FAULT_##kind
#define FAULT_KIND(kind) FAULT_KIND_(kind)

extern "C" __attribute__((visibility("default"))) void AutoCli_RegisterNamespaces(void** root) {
  auto& node = *static_cast<Toolbase::AutoCli::NamespaceNode*>(*root);
  node.RegisterNamespaceNode(Toolbase::AutoCli::Namespace::New(), "half-registered");
#if FAULT_KIND(FAULT) == FAULT_throw_error
  throw std::runtime_error("the configuration is missing");
#elif FAULT_KIND(FAULT) == FAULT_throw_other
  throw 42;
#else
  std::raise(SIGSEGV);
#endif
}
