// A third party's plug-in, built against the platform headers only (by CMake
// for the tests, by install_test.sh against the installed headers and
// pkg-config file). It uses every hook a plug-in has:
//   hello greet [--name N]          greets N (completed from `hello name list`)
//   hello name add --name N         adds N to the guest book
//   hello name list                 lists the guest book
// and, through its session, the global option `--guest-book FILE` (the file
// the names are kept in, one a line), a transaction over that file, and the
// completion source of --name.
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "toolbase/auto_cli.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "toolbase/session.h"

namespace {

using namespace Toolbase;

// The guest book of this process: the file, the names as loaded, and the
// transaction state.
struct Book {
  std::string path;
  bool loaded = false;
  std::vector<std::string> names;
  bool in_transaction = false;
  bool read_only = false;
  std::vector<std::string> begin;
  std::vector<std::string> savepoint;
};

Book& TheBook() {
  static Book book;
  return book;
}

std::vector<std::string>& Names() {
  Book& book = TheBook();
  if (!book.loaded) {
    std::ifstream file(book.path);
    for (std::string line; std::getline(file, line);) book.names.push_back(line);
    book.loaded = true;
  }
  return book.names;
}

bool Write() {
  Book& book = TheBook();
  if (book.read_only) return false;
  std::ofstream file(book.path, std::ios::trunc);
  for (auto const& name : book.names) file << name << '\n';
  return static_cast<bool>(file);
}

char const* UseBook(char const* path) {
  if (!path || !*path) return "Option --guest-book needs a file name";
  TheBook().path = path;
  TheBook().loaded = false;
  TheBook().names.clear();
  return nullptr;
}

char const* Begin() {
  Book& book = TheBook();
  if (book.in_transaction) return "The guest book is already in a transaction";
  book.in_transaction = true;
  book.begin = book.savepoint = Names();
  return nullptr;
}
void Savepoint() { TheBook().savepoint = TheBook().names; }
void Rollback() { TheBook().names = TheBook().savepoint; }
char const* Commit() {
  Book& book = TheBook();
  book.in_transaction = false;
  if (book.names == book.begin) return nullptr;
  return Write() ? nullptr : "Cannot write the guest book";
}
void Abort() {
  TheBook().in_transaction = false;
  TheBook().names = TheBook().begin;
}
void ReadOnly() { TheBook().read_only = true; }

std::shared_ptr<CallSpec::InputSpec> NameSpec(bool required) {
  auto spec = CallSpec::InputSpec::New();
  auto name = CallSpec::ParameterSpec::New("name", CallSpec::String);
  name->SetDescription("A guest's name.");
  name->SetRequired(required);
  spec->AddParameter(name);
  return spec;
}

class HelloGreet : public AutoCli::Command {
 public:
  static std::shared_ptr<HelloGreet> New() { return std::shared_ptr<HelloGreet>(new HelloGreet()); }

 protected:
  HelloGreet() { SetDescription("Greet someone."); }
  std::shared_ptr<CallSpec::InputSpec> GetInputSpecInternal() override { return NameSpec(false); }
  std::shared_ptr<CallSpec::OutputSpec> GetOutputSpecInternal() override {
    auto spec = CallSpec::OutputSpec::New();
    spec->SetRootObject(MetaObj::MetaString::New());
    return spec;
  }
  void ExecuteInternal(std::shared_ptr<CallSpec::Input> const& input,
                       std::shared_ptr<CallSpec::Output> const& output) override {
    std::string name = input->HasParameter("name") ? input->GetParameter("name") : "world";
    output->SetRootObject(MetaObj::MetaString::New("Hello, " + name + "!"));
  }
};

class HelloNameAdd : public AutoCli::Command {
 public:
  static std::shared_ptr<HelloNameAdd> New() {
    return std::shared_ptr<HelloNameAdd>(new HelloNameAdd());
  }

 protected:
  HelloNameAdd() { SetDescription("Add a guest to the guest book."); }
  std::shared_ptr<CallSpec::InputSpec> GetInputSpecInternal() override { return NameSpec(true); }
  std::shared_ptr<CallSpec::OutputSpec> GetOutputSpecInternal() override {
    auto spec = CallSpec::OutputSpec::New();
    spec->SetRootObject(MetaObj::MetaBool::New());
    return spec;
  }
  void ExecuteInternal(std::shared_ptr<CallSpec::Input> const& input,
                       std::shared_ptr<CallSpec::Output> const& output) override {
    if (TheBook().path.empty()) return output->AddErrorMessage("No guest book: give --guest-book");
    Names().push_back(input->GetParameter("name"));
    if (!TheBook().in_transaction && !Write()) {
      return output->AddErrorMessage("Cannot write the guest book");
    }
    output->SetRootObject(MetaObj::MetaBool::New(true));
  }
};

class HelloNameList : public AutoCli::Command {
 public:
  static std::shared_ptr<HelloNameList> New() {
    return std::shared_ptr<HelloNameList>(new HelloNameList());
  }

 protected:
  HelloNameList() { SetDescription("List the guest book."); }
  std::shared_ptr<CallSpec::InputSpec> GetInputSpecInternal() override {
    return CallSpec::InputSpec::New();
  }
  std::shared_ptr<CallSpec::OutputSpec> GetOutputSpecInternal() override {
    auto spec = CallSpec::OutputSpec::New();
    spec->SetRootObject(MetaObj::MetaList::New(MetaObj::MetaType::Struct));
    return spec;
  }
  void ExecuteInternal(std::shared_ptr<CallSpec::Input> const&,
                       std::shared_ptr<CallSpec::Output> const& output) override {
    auto list = MetaObj::MetaList::New(MetaObj::MetaType::Struct);
    for (auto const& name : Names()) {
      auto guest = MetaObj::MetaStruct::New("Guest");
      guest->SetField("Name", name);
      list->Add(guest);
    }
    output->SetRootObject(list);
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) void AutoCli_RegisterNamespaces(void** root) {
  auto& node = *static_cast<AutoCli::NamespaceNode*>(*root);
  auto hello = AutoCli::Namespace::New();
  hello->SetDescription("Greetings.");
  hello->RegisterNamespaceNode(HelloGreet::New(), "greet");
  auto name = AutoCli::Namespace::New();
  name->SetDescription("The guest book.");
  name->RegisterNamespaceNode(HelloNameAdd::New(), "add");
  name->RegisterNamespaceNode(HelloNameList::New(), "list");
  hello->RegisterNamespaceNode(name, "name");
  node.RegisterNamespaceNode(hello, "hello");
}

extern "C" __attribute__((visibility("default"))) void AutoCli_RegisterSession(
    AutoCli::Session* session) {
  session->AddGlobalOption(
      {"guest-book", "file", "The guest book: one name a line.", UseBook, true});
  session->SetTransaction({Begin, Savepoint, Rollback, Commit, Abort, ReadOnly});
  session->AddCompletionSource({"name", "hello name list", "Name"});
}
