// The command tree: namespaces (grouping nodes) and commands (leaves).
//
// Nodes are owned by their parents through std::shared_ptr; a node knows its
// parent through a weak reference, so a subtree can be built and attached
// before its parent has a path to the root. A plug-in hangs its tree on the
// root node it is handed by AutoCli_RegisterNamespaces.
#pragma once

#include <list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Toolbase::CallSpec {
class Input;
class Output;
class InputSpec;
class OutputSpec;
}  // namespace Toolbase::CallSpec

namespace Toolbase::AutoCli {

class Command;

enum class NodeType { Namespace, Command };

class NamespaceNode : public std::enable_shared_from_this<NamespaceNode> {
 public:
  NamespaceNode(NamespaceNode const&) = delete;
  NamespaceNode& operator=(NamespaceNode const&) = delete;
  virtual ~NamespaceNode();

  // The operations are defined here, as calls of the library's own functions,
  // so that a class derived in a plug-in fills its table of operations with
  // addresses inside the plug-in: loading the plug-in then resolves no symbol
  // for each inherited operation of each class.
  virtual std::shared_ptr<NamespaceNode> GetThis() { return shared_from_this(); }
  virtual NodeType GetType() const { return NodeType::Namespace; }
  // Names from the topmost ancestor down to this node.
  virtual std::list<std::string> GetPath() const { return PathWords(); }
  virtual std::string GetPathString(char separator) const { return JoinPath(separator); }
  virtual bool HasNamespaceNode(std::string const& name) const {
    return GetNamespaceNode(name) != nullptr;
  }
  // Children in the order they were registered.
  virtual std::vector<std::string> GetNamespaceNodeNames() const { return ChildNames(); }
  virtual std::vector<std::shared_ptr<NamespaceNode>> GetNamespaceNodes() const {
    return children_;
  }
  // The child of that name, or null.
  virtual std::shared_ptr<NamespaceNode> GetNamespaceNode(std::string const& name) const {
    return FindChild(name);
  }
  // Takes `node` as the child `name`. A name that is already taken throws
  // std::invalid_argument and leaves the node unchanged; so does a null node.
  virtual void RegisterNamespaceNode(std::shared_ptr<NamespaceNode> node, std::string name) {
    Attach(std::move(node), name);
  }
  virtual void RegisterNamespaceNode(std::shared_ptr<NamespaceNode> node, char const* name) {
    Attach(std::move(node), name ? name : "");
  }
  // Follows `words` from this node as far as they name children, removing
  // each word used; returns the last node reached (this node if none).
  virtual std::shared_ptr<NamespaceNode> ResolveNode(std::list<std::string>& words) {
    return Follow(words);
  }
  // The child namespace `name`, made and registered if missing.
  virtual std::shared_ptr<NamespaceNode> SubNamespace(std::string const& name) {
    return ChildNamespace(name);
  }
  // The command behind this node, or null for a namespace.
  virtual std::shared_ptr<Command> GetDispatcher() { return nullptr; }
  virtual void SetParent(std::shared_ptr<NamespaceNode> parent) { parent_ = std::move(parent); }
  virtual std::shared_ptr<NamespaceNode> GetParent() const { return parent_.lock(); }

  // A literal is kept by its address, not copied: the text must outlive the
  // node, as a plug-in's literals outlive the tree the plug-in builds.
  void SetDescription(char const* description) {
    owned_description_.clear();
    description_ = description ? description : "";
  }
  void SetDescription(std::string description) {
    owned_description_ = std::move(description);
    description_ = owned_description_;
  }
  std::string_view GetDescription() const { return description_; }
  // The name under which the parent holds this node; empty for a root.
  std::string const& GetName() const { return name_; }

 protected:
  NamespaceNode() = default;

 private:
  std::list<std::string> PathWords() const;
  std::string JoinPath(char separator) const;
  std::vector<std::string> ChildNames() const;
  std::shared_ptr<NamespaceNode> FindChild(std::string_view name) const;
  void Attach(std::shared_ptr<NamespaceNode> node, std::string_view name);
  std::shared_ptr<NamespaceNode> Follow(std::list<std::string>& words);
  std::shared_ptr<NamespaceNode> ChildNamespace(std::string const& name);

  std::string_view description_;
  std::string owned_description_;
  std::string name_;
  std::weak_ptr<NamespaceNode> parent_;
  // Children in the order registered; each knows its own name.
  std::vector<std::shared_ptr<NamespaceNode>> children_;
};

class Namespace : public NamespaceNode {
 public:
  static std::shared_ptr<Namespace> New();

 private:
  Namespace() = default;
};

// The declarative half of a command: description, parameters, output shape
// and presentation defaults. A leaf: it takes no children.
class CommandSpec : public NamespaceNode {
 public:
  ~CommandSpec() override;

  std::shared_ptr<CallSpec::InputSpec> GetInputSpec();
  std::shared_ptr<CallSpec::OutputSpec> GetOutputSpec();

  NodeType GetType() const override { return NodeType::Command; }
  bool HasNamespaceNode(std::string const&) const override { return false; }
  std::shared_ptr<NamespaceNode> GetNamespaceNode(std::string const&) const override {
    return nullptr;
  }
  // A command takes no children: these throw std::invalid_argument.
  void RegisterNamespaceNode(std::shared_ptr<NamespaceNode>, std::string name) override {
    RefuseChild(name);
  }
  void RegisterNamespaceNode(std::shared_ptr<NamespaceNode>, char const* name) override {
    RefuseChild(name ? name : "");
  }
  std::shared_ptr<NamespaceNode> ResolveNode(std::list<std::string>&) override {
    return GetThis();
  }

  // A later call replaces an earlier one.
  void SetDefaultOutputFormatter(char const* formatter) { formatter_ = formatter; }
  void SetDefaultOutputParameter(char const* key, char const* value) {
    directives_.insert_or_assign(std::string(key), value);
  }
  void SetDefaultOutputParameter(std::string key, std::string value) {
    directives_.insert_or_assign(std::move(key), std::move(value));
  }
  std::string const& GetDefaultOutputFormatter() const { return formatter_; }
  std::map<std::string, std::string> const& GetDefaultOutputParameters() const {
    return directives_;
  }

 protected:
  CommandSpec() = default;
  virtual std::shared_ptr<CallSpec::InputSpec> GetInputSpecInternal() = 0;
  virtual std::shared_ptr<CallSpec::OutputSpec> GetOutputSpecInternal() = 0;

 private:
  [[noreturn]] void RefuseChild(std::string_view name) const;

  std::string formatter_;
  std::map<std::string, std::string> directives_;
};

// A command: a CommandSpec that can run.
class Command : public CommandSpec {
 public:
  Command() = default;
  ~Command() override;

  std::shared_ptr<Command> GetDispatcher() override { return Self(); }
  // The framework's entry into the command; runs ExecuteInternal.
  virtual void Execute(std::shared_ptr<CallSpec::Input> const& input,
                       std::shared_ptr<CallSpec::Output> const& output) {
    ExecuteInternal(input, output);
  }

 protected:
  virtual void ExecuteInternal(std::shared_ptr<CallSpec::Input> const& input,
                               std::shared_ptr<CallSpec::Output> const& output) = 0;

 private:
  std::shared_ptr<Command> Self();
};

}  // namespace Toolbase::AutoCli

// The one entry of a plug-in: `root` is the address of the word that holds the
// host's root NamespaceNode*.
using AutoCliRegisterNamespacesFn = void (*)(void** root);
