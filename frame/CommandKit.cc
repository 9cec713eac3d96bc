#include "frame/CommandKit.h"

#include <utility>

#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;

namespace {
std::shared_ptr<ParameterSpec> NewParameter(std::string const& name, ParameterType type,
                                            bool required, char const* shortName,
                                            std::string description) {
  auto parameter = ParameterSpec::New(name, type);
  parameter->SetRequired(required);
  if (shortName) parameter->SetShortName(shortName);
  parameter->SetDescription(std::move(description));
  return parameter;
}

struct SharedName {
  std::string const& name;
  char const* shortName;
};
// In the order of Shared.
const SharedName kSharedNames[] = {
    {kNicName, "n"},       {kOrnic, "n"},         {kVswitchName, "v"},
    {kPortgroupName, "p"}, {kInterfaceName, "i"}, {kNetstack, "N"},
};

std::shared_ptr<ParameterSpec> NewShared(Shared which, bool required, std::string description) {
  SharedName const& shared = kSharedNames[static_cast<int>(which)];
  return NewParameter(shared.name, ParameterType::String, required, shared.shortName,
                      std::move(description));
}
}  // namespace

const std::string kNicName = "nic-name";
const std::string kOrnic = "ornic";
const std::string kVswitchName = "vswitch-name";
const std::string kPortgroupName = "portgroup-name";
const std::string kInterfaceName = "interface-name";
const std::string kNetstack = "netstack";

std::shared_ptr<ParameterSpec> Required(std::string const& name, ParameterType type,
                                        char const* shortName, std::string description) {
  return NewParameter(name, type, true, shortName, std::move(description));
}

std::shared_ptr<ParameterSpec> Optional(std::string const& name, ParameterType type,
                                        char const* shortName, std::string description) {
  return NewParameter(name, type, false, shortName, std::move(description));
}

std::shared_ptr<ParameterSpec> Required(Shared which, std::string description) {
  return NewShared(which, true, std::move(description));
}

std::shared_ptr<ParameterSpec> Optional(Shared which, std::string description) {
  return NewShared(which, false, std::move(description));
}

bool TakeUint32(Input const& input, std::string const& name, uint32_t& field) {
  if (!input.HasParameter(name)) return false;
  field = static_cast<uint32_t>(input.GetParameterInt(name));
  return true;
}

std::shared_ptr<InputSpec> InputSpecOf(
    std::initializer_list<std::shared_ptr<ParameterSpec>> parameters) {
  auto spec = InputSpec::New();
  for (auto const& parameter : parameters) spec->AddParameter(parameter);
  return spec;
}

std::shared_ptr<OutputSpec> RootSpec(std::shared_ptr<Toolbase::MetaObj::MetaObject> const& root) {
  auto spec = OutputSpec::New();
  spec->SetRootObject(root);
  return spec;
}

}  // namespace CorvaneCli::NetworkNamespace
