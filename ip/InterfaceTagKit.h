// What the interface tag commands share: the vocabulary of tags, as the host
// control library names them, and the report of a bad tag name.
#pragma once

#include <memory>
#include <string>

#include "frame/KitDeclarations.h"

namespace CorvaneCli::NetworkNamespace {

extern const std::string kTagInterfaceName;
extern const std::string kTagName;

// The names of the tags 1 to 13, in order, joined by ", ".
std::string SupportedTagList();

// Adds "Invalid tag name NAME" and, as a second message, the supported tags.
void ReportBadTagName(Toolbase::CallSpec::Output& output, std::string const& name);

// The required `interface-name` (with its command's description) and
// `tagname` parameters of tag add and remove.
std::shared_ptr<Toolbase::CallSpec::ParameterSpec> NewTagInterfaceParameter(
    char const* description);
std::shared_ptr<Toolbase::CallSpec::ParameterSpec> NewTagNameParameter();

}  // namespace CorvaneCli::NetworkNamespace
