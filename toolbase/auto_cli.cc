#include "toolbase/auto_cli.h"

#include <stdexcept>

#include "toolbase/call_spec.h"

namespace Toolbase::AutoCli {

NamespaceNode::~NamespaceNode() = default;

std::list<std::string> NamespaceNode::PathWords() const {
  std::list<std::string> path;
  if (!name_.empty()) path.push_front(name_);
  for (auto node = GetParent(); node; node = node->GetParent()) {
    if (!node->GetName().empty()) path.push_front(node->GetName());
  }
  return path;
}

std::string NamespaceNode::JoinPath(char separator) const {
  std::string text;
  for (auto const& word : GetPath()) {
    if (!text.empty()) text += separator;
    text += word;
  }
  return text;
}

std::vector<std::string> NamespaceNode::ChildNames() const {
  std::vector<std::string> names;
  names.reserve(children_.size());
  for (auto const& child : children_) names.push_back(child->name_);
  return names;
}

std::shared_ptr<NamespaceNode> NamespaceNode::FindChild(std::string_view name) const {
  for (auto const& child : children_) {
    if (child->name_ == name) return child;
  }
  return nullptr;
}

void NamespaceNode::Attach(std::shared_ptr<NamespaceNode> node, std::string_view name) {
  if (!node) {
    throw std::invalid_argument("cannot register a null node as '" + std::string(name) + "'");
  }
  if (name.empty()) throw std::invalid_argument("cannot register a node without a name");
  if (FindChild(name)) {
    throw std::invalid_argument("'" + std::string(name) + "' is already registered in '" +
                                GetPathString(' ') + "'");
  }
  node->name_ = name;
  node->SetParent(GetThis());
  // Most namespaces hold a handful of children: one allocation for them.
  if (children_.empty()) children_.reserve(8);
  children_.push_back(std::move(node));
}

std::shared_ptr<NamespaceNode> NamespaceNode::Follow(std::list<std::string>& words) {
  if (words.empty()) return GetThis();
  auto child = GetNamespaceNode(words.front());
  if (!child) return GetThis();
  words.pop_front();
  return child->ResolveNode(words);
}

std::shared_ptr<NamespaceNode> NamespaceNode::ChildNamespace(std::string const& name) {
  if (auto child = GetNamespaceNode(name)) return child;
  std::shared_ptr<NamespaceNode> child = Namespace::New();
  RegisterNamespaceNode(child, name);
  return child;
}

std::shared_ptr<Namespace> Namespace::New() {
  // Object and count in one allocation.
  struct Made : Namespace {};
  return std::make_shared<Made>();
}

CommandSpec::~CommandSpec() = default;

std::shared_ptr<CallSpec::InputSpec> CommandSpec::GetInputSpec() {
  auto spec = GetInputSpecInternal();
  return spec ? spec : CallSpec::InputSpec::New();
}

std::shared_ptr<CallSpec::OutputSpec> CommandSpec::GetOutputSpec() {
  auto spec = GetOutputSpecInternal();
  return spec ? spec : CallSpec::OutputSpec::New();
}

void CommandSpec::RefuseChild(std::string_view name) const {
  throw std::invalid_argument("command '" + GetPathString(' ') + "' cannot hold '" +
                              std::string(name) + "'");
}

Command::~Command() = default;

std::shared_ptr<Command> Command::Self() { return std::dynamic_pointer_cast<Command>(GetThis()); }

}  // namespace Toolbase::AutoCli
