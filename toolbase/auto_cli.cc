#include "toolbase/auto_cli.h"

#include <stdexcept>

#include "toolbase/call_spec.h"

namespace Toolbase::AutoCli {

NamespaceNode::~NamespaceNode() = default;

std::shared_ptr<NamespaceNode> NamespaceNode::GetThis() { return shared_from_this(); }

NodeType NamespaceNode::GetType() const { return NodeType::Namespace; }

std::list<std::string> NamespaceNode::GetPath() const {
  std::list<std::string> path;
  if (!name_.empty()) path.push_front(name_);
  for (auto node = GetParent(); node; node = node->GetParent()) {
    if (!node->GetName().empty()) path.push_front(node->GetName());
  }
  return path;
}

std::string NamespaceNode::GetPathString(char separator) const {
  std::string text;
  for (auto const& word : GetPath()) {
    if (!text.empty()) text += separator;
    text += word;
  }
  return text;
}

bool NamespaceNode::HasNamespaceNode(std::string const& name) const {
  return GetNamespaceNode(name) != nullptr;
}

std::vector<std::string> NamespaceNode::GetNamespaceNodeNames() const {
  std::vector<std::string> names;
  names.reserve(children_.size());
  for (auto const& child : children_) names.push_back(child->name_);
  return names;
}

std::vector<std::shared_ptr<NamespaceNode>> NamespaceNode::GetNamespaceNodes() const {
  return children_;
}

std::shared_ptr<NamespaceNode> NamespaceNode::GetNamespaceNode(std::string const& name) const {
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
  for (auto const& child : children_) {
    if (child->name_ == name) {
      throw std::invalid_argument("'" + std::string(name) + "' is already registered in '" +
                                  GetPathString(' ') + "'");
    }
  }
  node->name_ = name;
  node->SetParent(GetThis());
  // Most namespaces hold a handful of children: one allocation for them.
  if (children_.empty()) children_.reserve(8);
  children_.push_back(std::move(node));
}

void NamespaceNode::RegisterNamespaceNode(std::shared_ptr<NamespaceNode> node, std::string name) {
  Attach(std::move(node), name);
}

void NamespaceNode::RegisterNamespaceNode(std::shared_ptr<NamespaceNode> node, char const* name) {
  Attach(std::move(node), name ? name : "");
}

std::shared_ptr<NamespaceNode> NamespaceNode::ResolveNode(std::list<std::string>& words) {
  if (words.empty()) return GetThis();
  auto child = GetNamespaceNode(words.front());
  if (!child) return GetThis();
  words.pop_front();
  return child->ResolveNode(words);
}

std::shared_ptr<NamespaceNode> NamespaceNode::SubNamespace(std::string const& name) {
  if (auto child = GetNamespaceNode(name)) return child;
  std::shared_ptr<NamespaceNode> child = Namespace::New();
  RegisterNamespaceNode(child, name);
  return child;
}

std::shared_ptr<Command> NamespaceNode::GetDispatcher() { return nullptr; }

void NamespaceNode::SetParent(std::shared_ptr<NamespaceNode> parent) { parent_ = parent; }

std::shared_ptr<NamespaceNode> NamespaceNode::GetParent() const { return parent_.lock(); }

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

NodeType CommandSpec::GetType() const { return NodeType::Command; }

bool CommandSpec::HasNamespaceNode(std::string const&) const { return false; }

std::shared_ptr<NamespaceNode> CommandSpec::GetNamespaceNode(std::string const&) const {
  return nullptr;
}

void CommandSpec::RegisterNamespaceNode(std::shared_ptr<NamespaceNode>, std::string name) {
  throw std::invalid_argument("command '" + GetPathString(' ') + "' cannot hold '" + name + "'");
}

void CommandSpec::RegisterNamespaceNode(std::shared_ptr<NamespaceNode> node, char const* name) {
  RegisterNamespaceNode(std::move(node), std::string(name ? name : ""));
}

std::shared_ptr<NamespaceNode> CommandSpec::ResolveNode(std::list<std::string>&) {
  return GetThis();
}

Command::~Command() = default;

std::shared_ptr<Command> Command::GetDispatcher() {
  return std::dynamic_pointer_cast<Command>(GetThis());
}

void Command::Execute(std::shared_ptr<CallSpec::Input> const& input,
                      std::shared_ptr<CallSpec::Output> const& output) {
  ExecuteInternal(input, output);
}

}  // namespace Toolbase::AutoCli
