#include "plugins.h"

#include <dlfcn.h>
#include <elf.h>
#include <pwd.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
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

// Why a plug-in folder or file cannot be trusted with the rights of this
// process, or empty: it must belong to root or to the user running the
// command, and no one else may write it (a group may when it is root's or the
// user's own).
std::string Untrusted(struct stat const& info) {
  if (info.st_uid != 0 && info.st_uid != geteuid()) {
    passwd const* owner = getpwuid(info.st_uid);
    return "it belongs to user " + (owner ? std::string(owner->pw_name) + " (" : "(") +
           std::to_string(info.st_uid) + "), not to root or to the user running toolbase";
  }
  if (info.st_mode & S_IWOTH) return "every user may write it";
  if ((info.st_mode & S_IWGRP) && info.st_gid != 0 && info.st_gid != getegid()) {
    return "group " + std::to_string(info.st_gid) + " may write it";
  }
  return "";
}

// The name of an ELF machine number, for a plug-in built for another one.
std::string MachineName(unsigned machine) {
  switch (machine) {
    case EM_386: return "x86";
    case EM_X86_64: return "x86-64";
    case EM_ARM: return "ARM";
    case EM_AARCH64: return "AArch64";
    case EM_PPC64: return "PowerPC 64";
    case EM_S390: return "S/390";
    case EM_RISCV: return "RISC-V";
    case EM_MIPS: return "MIPS";
    default: return "ELF machine " + std::to_string(machine);
  }
}

// What keeps `file` from loading when dlopen failed: read from its ELF header
// when that explains it (the loader reports another machine's library as a
// missing file), else the loader's own message.
std::string WhyNotLoaded(std::filesystem::path const& file, std::string const& loader) {
  unsigned char header[EI_NIDENT + 4] = {};
  std::ifstream in(file, std::ios::binary);
  if (!in.read(reinterpret_cast<char*>(header), sizeof header)) return loader;
  if (std::memcmp(header, ELFMAG, SELFMAG) != 0) return "it is not a shared object (no ELF header)";
  Elf64_Half type = 0;
  Elf64_Half machine = 0;
  std::memcpy(&type, header + EI_NIDENT, sizeof type);
  std::memcpy(&machine, header + EI_NIDENT + 2, sizeof machine);
  constexpr unsigned char kOwnData = std::endian::native == std::endian::little ? ELFDATA2LSB
                                                                               : ELFDATA2MSB;
  if (header[EI_DATA] != kOwnData) {
    type = static_cast<Elf64_Half>(type >> 8 | type << 8);
    machine = static_cast<Elf64_Half>(machine >> 8 | machine << 8);
  }
  constexpr unsigned char kOwnClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
  constexpr unsigned kOwnMachine =
#if defined(__x86_64__)
      EM_X86_64;
#elif defined(__i386__)
      EM_386;
#elif defined(__aarch64__)
      EM_AARCH64;
#elif defined(__arm__)
      EM_ARM;
#elif defined(__powerpc64__)
      EM_PPC64;
#elif defined(__s390__)
      EM_S390;
#elif defined(__riscv)
      EM_RISCV;
#else
      EM_NONE;
#endif
  if (kOwnMachine != EM_NONE && (machine != kOwnMachine || header[EI_CLASS] != kOwnClass)) {
    return "it is built for " + MachineName(machine) +
           (header[EI_CLASS] == ELFCLASS32 ? " (32-bit)" : "") + ", not for " +
           MachineName(kOwnMachine);
  }
  if (type != ET_DYN) return "it is an ELF file but not a shared object";
  return loader;
}

// The plug-in that registered the top-level word `word`, or empty.
std::string OwnerOf(std::string const& word) {
  for (auto const& plugin : Plugins()) {
    if (std::find(plugin.words.begin(), plugin.words.end(), word) != plugin.words.end()) {
      return plugin.file;
    }
  }
  return "";
}

// Loads one plug-in and registers its tree and session; throws
// std::runtime_error naming the file and what is wrong when it cannot. The
// plug-in builds its tree on a root of its own, which joins the process's
// root only when the whole of it registered and none of its words is taken.
void LoadOne(std::filesystem::path const& file, AutoCli::NamespaceNode& root,
             std::ostream& warnings) {
  void* handle = dlopen(file.c_str(), RTLD_LAZY | RTLD_LOCAL);
  if (!handle) {
    std::string const loader = dlerror();
    throw std::runtime_error("cannot load plug-in " + file.string() + ": " +
                             WhyNotLoaded(file, loader));
  }
  auto entry =
      reinterpret_cast<AutoCliRegisterNamespacesFn>(dlsym(handle, "AutoCli_RegisterNamespaces"));
  if (!entry) {
    dlclose(handle);
    throw std::runtime_error("plug-in " + file.string() + " has no AutoCli_RegisterNamespaces");
  }
  auto session = reinterpret_cast<AutoCliRegisterSessionFn>(dlsym(handle, "AutoCli_RegisterSession"));
  auto own_root = AutoCli::Namespace::New();
  void* word = static_cast<AutoCli::NamespaceNode*>(own_root.get());
  std::string const failed = "plug-in " + file.string() + " failed to register: ";
  try {
    entry(&word);
  } catch (std::exception const& error) {
    throw std::runtime_error(failed + error.what());
  } catch (...) {
    throw std::runtime_error(failed + "it threw something that is not a std::exception");
  }
  LoadedPlugin loaded{file.string(), handle, own_root->GetNamespaceNodeNames(), {}, false, {}, {}};
  for (auto const& name : loaded.words) {
    if (root.GetNamespaceNode(name)) {
      std::string const owner = OwnerOf(name);
      throw std::runtime_error(failed + "'" + name + "' is already registered" +
                               (owner.empty() ? "" : " by plug-in " + owner));
    }
  }
  for (auto const& node : own_root->GetNamespaceNodes()) {
    root.RegisterNamespaceNode(node, node->GetName());
  }
  auto& plugins = Plugins();
  std::erase_if(plugins, [&](LoadedPlugin const& other) { return other.file == loaded.file; });
  plugins.push_back(std::move(loaded));
  if (session) {
    SessionRegistry registry(plugins.back());
    try {
      session(&registry);
    } catch (...) {
      LoadedPlugin& partial = plugins.back();
      partial.options.clear();
      partial.sources.clear();
      partial.has_transaction = false;
      registry.refused.push_back("a session that failed to register");
    }
    for (auto const& what : registry.refused) {
      warnings << "Warning: plug-in " << file.string() << " offers " << what
               << "; it is ignored\n";
    }
  }
}

// A file as the system knows it, to find one plug-in under two names.
using FileId = std::pair<dev_t, ino_t>;

// Checks that `file` is a regular file this process may trust (see
// Untrusted); throws std::runtime_error naming it and what is wrong.
FileId TrustedFile(std::filesystem::path const& file) {
  struct stat info {};
  if (::stat(file.c_str(), &info) != 0) {
    throw std::runtime_error("cannot load plug-in " + file.string() + ": " + std::strerror(errno));
  }
  if (!S_ISREG(info.st_mode)) {
    throw std::runtime_error("plug-in " + file.string() + " is not a regular file");
  }
  if (auto why = Untrusted(info); !why.empty()) {
    throw std::runtime_error("plug-in " + file.string() + " is not trusted: " + why);
  }
  return {info.st_dev, info.st_ino};
}

// A plug-in that crashes while it loads (in its constructors or its
// registration) cannot be unwound. When the executable asked for it
// (RestartWithoutCrashedPlugins), the process then names the plug-in and
// starts again, with the same arguments, without it: the plug-ins skipped so
// are kept in kSkipVariable, one path a line. Nothing has been read or
// printed by then but warnings (held back until the plug-ins are loaded).
constexpr char kSkipVariable[] = "TOOLBASE_SKIP_PLUGINS";
constexpr int kFatalSignals[] = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT};

char** restart_arguments = nullptr;

// What the signal handler needs, made before the plug-in runs: the message
// and the environment to start again with. Null message: no plug-in loading.
struct CrashPlan {
  char const* message = nullptr;
  size_t length = 0;
  char** environment = nullptr;
};
CrashPlan crash_plan;

void WriteAll(char const* text, size_t length) {
  while (length > 0) {
    ssize_t const written = ::write(STDERR_FILENO, text, length);
    if (written <= 0) return;
    text += written;
    length -= static_cast<size_t>(written);
  }
}

void OnCrash(int signal) {
  if (crash_plan.message) {
    char const* what = signal == SIGSEGV  ? "segmentation fault"
                       : signal == SIGBUS ? "bus error"
                       : signal == SIGILL ? "illegal instruction"
                       : signal == SIGFPE ? "arithmetic exception"
                                          : "aborted";
    WriteAll(crash_plan.message, crash_plan.length);
    WriteAll(what, std::strlen(what));
    WriteAll("); skipped\n", 11);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    execve("/proc/self/exe", restart_arguments, crash_plan.environment);
  }
  // The handler was reset on entry: the signal now ends the process.
  raise(signal);
}

// Watches for crashes while plug-ins load, when a restart is possible.
class CrashGuard {
 public:
  CrashGuard() {
    if (!restart_arguments) return;
    std::string const prefix = std::string(kSkipVariable) + "=";
    for (char** entry = environ; *entry; ++entry) {
      if (std::strncmp(*entry, prefix.c_str(), prefix.size()) == 0) {
        skipped_ = *entry + prefix.size();
      } else {
        environment_.push_back(*entry);
      }
    }
    environment_.push_back(nullptr);  // the skip list, set for each plug-in
    environment_.push_back(nullptr);
    struct sigaction action {};
    action.sa_handler = OnCrash;
    action.sa_flags = SA_RESETHAND | SA_NODEFER;
    sigemptyset(&action.sa_mask);
    for (size_t i = 0; i < std::size(kFatalSignals); ++i) {
      sigaction(kFatalSignals[i], &action, &previous_[i]);
    }
    active_ = true;
  }
  ~CrashGuard() {
    if (!active_) return;
    Leave();
    for (size_t i = 0; i < std::size(kFatalSignals); ++i) {
      sigaction(kFatalSignals[i], &previous_[i], nullptr);
    }
  }
  CrashGuard(CrashGuard const&) = delete;
  CrashGuard& operator=(CrashGuard const&) = delete;

  // True when an earlier start of this process saw `file` crash.
  bool Skipped(std::string const& file) const {
    std::string_view rest = skipped_;
    while (!rest.empty()) {
      auto const end = std::min(rest.find('\n'), rest.size());
      if (rest.substr(0, end) == file) return true;
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return false;
  }
  void Enter(std::string const& file) {
    if (!active_) return;
    setting_ = std::string(kSkipVariable) + "=" + skipped_ + (skipped_.empty() ? "" : "\n") + file;
    environment_[environment_.size() - 2] = setting_.data();
    message_ = "Warning: plug-in " + file + " crashed while loading (";
    crash_plan = {message_.c_str(), message_.size(), environment_.data()};
  }
  void Leave() { crash_plan.message = nullptr; }

 private:
  bool active_ = false;
  std::string skipped_;
  std::vector<char*> environment_;
  std::string setting_;
  std::string message_;
  struct sigaction previous_[std::size(kFatalSignals)] {};
};

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

void RestartWithoutCrashedPlugins(char** argv) { restart_arguments = argv; }

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
  std::vector<std::pair<std::string, FileId>> loaded;
  // Held back until every plug-in is loaded: a restart after a crash would
  // print them again.
  std::ostringstream pending;
  CrashGuard guard;
  for (auto const& folder : folders) {
    // One stat for the folder and one for each file: a plug-in runs with the
    // rights of the user running toolbase.
    struct stat info {};
    if (::stat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) continue;
    if (auto why = Untrusted(info); !why.empty()) {
      pending << "Warning: plug-in folder " << folder << " is not trusted: " << why
              << "; its plug-ins are skipped\n";
      continue;
    }
    std::error_code error;
    auto files = SharedObjects(folder, error);
    if (error) continue;
    for (auto const& file : files) {
      auto name = file.filename().string();
      if (std::find(names.begin(), names.end(), name) != names.end()) continue;
      names.push_back(name);
      if (guard.Skipped(file.string())) continue;
      try {
        FileId const id = TrustedFile(file);
        for (auto const& [other, other_id] : loaded) {
          if (other_id == id) {
            throw std::runtime_error("plug-in " + file.string() + " is the same file as " +
                                     other + ", already loaded");
          }
        }
        guard.Enter(file.string());
        LoadOne(file, root, pending);
        guard.Leave();
        loaded.emplace_back(file.string(), id);
      } catch (std::exception const& failure) {
        guard.Leave();
        pending << "Warning: " << failure.what() << "; skipped\n";
      }
    }
  }
  warnings << pending.str();
}

void LoadPlugins(std::string const& directory, AutoCli::NamespaceNode& root) {
  struct stat info {};
  if (::stat(directory.c_str(), &info) == 0) {
    if (auto why = Untrusted(info); !why.empty()) {
      throw std::runtime_error("plug-in folder " + directory + " is not trusted: " + why);
    }
  }
  std::error_code error;
  auto files = SharedObjects(directory, error);
  if (error) {
    throw std::runtime_error("cannot read plug-in folder " + directory + ": " + error.message());
  }
  for (auto const& file : files) {
    TrustedFile(file);
    LoadOne(file, root, std::cerr);
  }
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
