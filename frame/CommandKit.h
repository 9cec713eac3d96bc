// What every command class of the plug-in shares: its declaration, its New()
// and the building blocks of its specifications.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>

#include "toolbase/auto_cli.h"
#include "toolbase/call_spec.h"

namespace Toolbase::MetaObj {
class MetaList;
class MetaObject;
class MetaStruct;
}  // namespace Toolbase::MetaObj

// The members of a command class, written first inside its braces, all
// public; what the class declares after it is public too. A command is made
// only by its static New(), which links the node's self reference.
#define NETWORK_COMMAND(Class)                                                      \
 public:                                                                            \
  Class();                                                                          \
  static std::shared_ptr<Class> New();                                              \
  ~Class() override;                                                                \
  std::shared_ptr<Toolbase::CallSpec::InputSpec> GetInputSpecInternal() override;   \
  std::shared_ptr<Toolbase::CallSpec::OutputSpec> GetOutputSpecInternal() override; \
  void ExecuteInternal(std::shared_ptr<Toolbase::CallSpec::Input> const& input,     \
                       std::shared_ptr<Toolbase::CallSpec::Output> const& output) override;

// New(), the destructor and GetOutputSpecInternal() of a command class, in its
// source file. `root` names the kind of the command's output, whose empty
// prototype is built anew at each call: Bool, Int or String, Struct (the
// class's GetOutputStructure()) or Rows (a list of them).
#define NETWORK_COMMAND_NEW(Class, root)                                              \
  std::shared_ptr<Class> Class::New() { return std::shared_ptr<Class>(new Class()); } \
  Class::~Class() = default;                                                          \
  std::shared_ptr<Toolbase::CallSpec::OutputSpec> Class::GetOutputSpecInternal() {    \
    return RootSpec(NETWORK_ROOT_##root);                                             \
  }
#define NETWORK_ROOT_Bool Toolbase::MetaObj::MetaBool::New()
#define NETWORK_ROOT_Int Toolbase::MetaObj::MetaInt::New()
#define NETWORK_ROOT_String Toolbase::MetaObj::MetaString::New()
#define NETWORK_ROOT_Struct GetOutputStructure()
#define NETWORK_ROOT_Rows \
  Toolbase::MetaObj::MetaList::New(Toolbase::MetaObj::MetaType::Struct, GetOutputStructure())

namespace CorvaneCli::NetworkNamespace {

// A parameter that must be given, or one that may be left out: long name,
// kind, short name (null for none) and help text.
std::shared_ptr<Toolbase::CallSpec::ParameterSpec> Required(std::string const& name,
                                                            Toolbase::CallSpec::ParameterType type,
                                                            char const* shortName,
                                                            std::string description);
std::shared_ptr<Toolbase::CallSpec::ParameterSpec> Optional(std::string const& name,
                                                            Toolbase::CallSpec::ParameterType type,
                                                            char const* shortName,
                                                            std::string description);

// The string parameters that many commands take, each with one long and one
// short name; the help text is the command's own.
enum class Shared {
  NicName,        // "nic-name", -n
  Ornic,          // "ornic", -n
  VswitchName,    // "vswitch-name", -v
  PortgroupName,  // "portgroup-name", -p
  InterfaceName,  // "interface-name", -i
  Netstack,       // "netstack", -N
};
extern const std::string kNicName;
extern const std::string kOrnic;
extern const std::string kVswitchName;
extern const std::string kPortgroupName;
extern const std::string kInterfaceName;
extern const std::string kNetstack;

// One of those parameters, required or optional, with its help text.
std::shared_ptr<Toolbase::CallSpec::ParameterSpec> Required(Shared which, std::string description);
std::shared_ptr<Toolbase::CallSpec::ParameterSpec> Optional(Shared which, std::string description);

// When `name` was given, its value narrowed to the 32 bits of the host field
// `field`, as the host record takes it: the range is the library's matter.
// Returns whether it was given.
bool TakeUint32(Toolbase::CallSpec::Input const& input, std::string const& name, uint32_t& field);

// A new input specification with `parameters`, in their order.
std::shared_ptr<Toolbase::CallSpec::InputSpec> InputSpecOf(
    std::initializer_list<std::shared_ptr<Toolbase::CallSpec::ParameterSpec>> parameters);

// A new output specification whose root is the prototype `root`.
std::shared_ptr<Toolbase::CallSpec::OutputSpec> RootSpec(
    std::shared_ptr<Toolbase::MetaObj::MetaObject> const& root);

}  // namespace CorvaneCli::NetworkNamespace
