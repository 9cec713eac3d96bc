#include "plugins.h"

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <ostream>
#include <stdexcept>

#include "build_config.h"
#include "options.h"
#include "toolbase/auto_cli.h"

namespace Toolbase::Cli {
namespace {

std::vector<LoadedPlugin>& Plugins() {
  static std::vector<LoadedPlugin> plugins;
  return plugins;
}

// The registry a plug-in's AutoCli_RegisterSession fills: it adds to the
// entry of the plug-in being loaded.
class SessionRegistry final : public AutoCli::Session {
 public:
  explicit SessionRegistry(LoadedPlugin& plugin) : plugin_(plugin) {}

  void AddGlobalOption(AutoCli::GlobalOption const& option) override {
    if (!option.name || !*option.name || !option.apply) {
      Refuse("a global option without a name or an apply function");
    } else if (FindFrameworkOption(option.name) || FindPluginOption(option.name) ||
               std::strcmp(option.name, "complete") == 0) {
      Refuse(std::string("the global option --") + option.name + ", which is already taken");
    } else {
      plugin_.options.push_back(option);
    }
  }
  void SetTransaction(AutoCli::Transaction const& transaction) override {
    if (!transaction.begin || !transaction.savepoint || !transaction.rollback ||
        !transaction.commit || !transaction.abort) {
      return Refuse("a transaction without all of begin, savepoint, rollback, commit and abort");
    }
    plugin_.transaction = transaction;
    plugin_.has_transaction = true;
  }
  void AddCompletionSource(AutoCli::CompletionSource const& source) override {
    if (!source.parameter || !source.command || !source.field) {
      return Refuse("a completion source without parameter, command or field");
    }
    plugin_.sources.push_back(source);
  }

  std::vector<std::string> refused;

 private:
  void Refuse(std::string const& what) { refused.push_back(what); }

  LoadedPlugin& plugin_;
};

// Loads one plug-in and registers its tree and session; throws
// std::runtime_error with the reason when it cannot.
void LoadOne(std::filesystem::path const& file, AutoCli::NamespaceNode& root,
             std::ostream& warnings) {
  void* handle = dlopen(file.c_str(), RTLD_LAZY | RTLD_LOCAL);
  if (!handle) throw std::runtime_error("cannot load plug-in " + file.string() + ": " + dlerror());
  auto entry =
      reinterpret_cast<AutoCliRegisterNamespacesFn>(dlsym(handle, "AutoCli_RegisterNamespaces"));
  if (!entry) {
    dlclose(handle);
    throw std::runtime_error("plug-in " + file.string() + " has no AutoCli_RegisterNamespaces");
  }
  auto session = reinterpret_cast<AutoCliRegisterSessionFn>(dlsym(handle, "AutoCli_RegisterSession"));
  auto before = root.GetNamespaceNodeNames();
  void* word = &root;
  try {
    entry(&word);
  } catch (std::exception const& error) {
    throw std::runtime_error("plug-in " + file.string() + " failed to register: " + error.what());
  }
  LoadedPlugin loaded{file.string(), handle, {}, {}, false, {}, {}};
  for (auto const& name : root.GetNamespaceNodeNames()) {
    if (std::find(before.begin(), before.end(), name) == before.end()) {
      loaded.words.push_back(name);
    }
  }
  auto& plugins = Plugins();
  std::erase_if(plugins, [&](LoadedPlugin const& other) { return other.file == loaded.file; });
  plugins.push_back(std::move(loaded));
  if (session) {
    SessionRegistry registry(plugins.back());
    session(&registry);
    for (auto const& what : registry.refused) {
      warnings << "Warning: plug-in " << file.string() << " offers " << what
               << "; it is ignored\n";
    }
  }
}

std::vector<std::filesystem::path> SharedObjects(std::string const& directory,
                                                 std::error_code& error) {
  std::vector<std::filesystem::path> files;
  for (auto const& entry : std::filesystem::directory_iterator(directory, error)) {
    if (entry.path().extension() == ".so") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

std::vector<LoadedPlugin> const& LoadedPlugins() { return Plugins(); }

std::vector<std::string> PluginSearchPath() {
  std::vector<std::string> folders;
  if (char const* path = std::getenv("TOOLBASE_PLUGIN_PATH")) {
    std::string_view rest = path;
    while (!rest.empty()) {
      auto const end = std::min(rest.find(':'), rest.size());
      if (end > 0) folders.emplace_back(rest.substr(0, end));
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
  }
  // Plain text, not paths: this runs before every command.
  char exe[4096];
  ssize_t const length = readlink("/proc/self/exe", exe, sizeof exe);
  if (length <= 0 || static_cast<size_t>(length) >= sizeof exe) return folders;
  std::string folder(exe, static_cast<size_t>(length));
  folder.resize(folder.rfind('/') + 1);
  folders.push_back(folder + "plugins");
  folders.push_back(folder + kInstalledPluginDir);
  return folders;
}

void LoadPlugins(std::vector<std::string> const& folders, AutoCli::NamespaceNode& root,
                 std::ostream& warnings) {
  std::vector<std::string> names;
  for (auto const& folder : folders) {
    std::error_code error;
    auto files = SharedObjects(folder, error);
    if (error) continue;
    for (auto const& file : files) {
      auto name = file.filename().string();
      if (std::find(names.begin(), names.end(), name) != names.end()) continue;
      names.push_back(name);
      try {
        LoadOne(file, root, warnings);
      } catch (std::exception const& failure) {
        warnings << "Warning: " << failure.what() << "; skipped\n";
      }
    }
  }
}

void LoadPlugins(std::string const& directory, AutoCli::NamespaceNode& root) {
  std::error_code error;
  auto files = SharedObjects(directory, error);
  if (error) {
    throw std::runtime_error("cannot read plug-in folder " + directory + ": " + error.message());
  }
  for (auto const& file : files) LoadOne(file, root, std::cerr);
}

AutoCli::GlobalOption const* FindPluginOption(std::string const& name) {
  for (auto const& plugin : Plugins()) {
    for (auto const& option : plugin.options) {
      if (name == option.name) return &option;
    }
  }
  return nullptr;
}

std::vector<AutoCli::Transaction> PluginTransactions() {
  std::vector<AutoCli::Transaction> found;
  for (auto const& plugin : Plugins()) {
    if (!plugin.has_transaction) continue;
    bool const known = std::any_of(found.begin(), found.end(), [&](auto const& other) {
      return other.begin == plugin.transaction.begin;
    });
    if (!known) found.push_back(plugin.transaction);
  }
  return found;
}

char const* BeginTransactions(std::vector<AutoCli::Transaction> const& transactions,
                              bool read_only) {
  for (auto const& transaction : transactions) {
    if (read_only && transaction.read_only) transaction.read_only();
  }
  for (size_t i = 0; i < transactions.size(); ++i) {
    if (char const* failure = transactions[i].begin()) {
      for (size_t j = 0; j < i; ++j) transactions[j].abort();
      return failure;
    }
  }
  return nullptr;
}

AutoCli::CompletionSource const* FindCompletionSource(std::string const& word,
                                                      std::string const& parameter) {
  for (auto const& plugin : Plugins()) {
    if (std::find(plugin.words.begin(), plugin.words.end(), word) == plugin.words.end()) continue;
    for (auto const& source : plugin.sources) {
      if (parameter == source.parameter) return &source;
    }
  }
  return nullptr;
}

}  // namespace Toolbase::Cli
